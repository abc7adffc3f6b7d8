// The window's start and end, and what its other files share.
#include "orvbrowser.h"

#include "keyboard_rules.h"

#include <QAbstractEventDispatcher>
#include <QCloseEvent>
#include <QWindow>

namespace {

// How deep runs may be started from within each other. A key held down would otherwise pile them up
// until the stack ends.
constexpr int max_event_depth = 8;

}    // namespace

ORVBrowser::ORVBrowser(QWidget* parent, const char* name, Qt::WindowFlags flags) : QWidget(parent, flags)
{
    setObjectName(name ? name : "ORVBrowser");
    createWidgets();
    languageChange();
    resize(QSize(620, 878).expandedTo(minimumSizeHint()));
    connectWidgets();
    textLabel3->setBuddy(tabWidget_control_panel);
    new KeyboardRules(*this, *this, *frame_canvas);
    frame_canvas->installEventFilter(this);
    init();
}

ORVBrowser::~ORVBrowser() { destroy(); }

void ORVBrowser::init()
{
    setTrackingButtonsEnabled(false);
    for (QWidget* control :
         {static_cast<QWidget*>(pushButton_auto), static_cast<QWidget*>(pushButton_stop),
          static_cast<QWidget*>(pushButton_reset), static_cast<QWidget*>(lineEdit_focal_plane),
          static_cast<QWidget*>(lineEdit_time_point), static_cast<QWidget*>(slider_time_point),
          static_cast<QWidget*>(slider_focal_plane)})
        control->setEnabled(false);
    m_roidb = nullptr;
    m_imgdb = nullptr;
    m_q_roiimgdb = nullptr;
    initColors();
    m_time_point = 0;
    m_focal_plane = 0;

    m_dataset = "dataset";
    m_roi_ext = "fwd";
    m_dic_base = "/image";
    m_dataset1 = m_dataset2 = m_dataset3 = m_dataset;
    m_org_dir = "";
    m_img_head = "-img0";
    m_lnk_base = "/home/orvbrowser/Result/t008_z073/LNK_";
    m_roi_ext_dir = "/" + m_roi_ext + "/";
    m_roi_ext1 = m_roi_ext;
    m_img_base = m_dic_base + m_dataset1 + m_org_dir + m_dataset2 + m_img_head;
    m_roi_base = m_lnk_base + m_dataset3 + m_roi_ext_dir;

    setMinTimePoint(0);
    setMaxTimePoint(150);
    setMinFocalPlane(default_focal_planes.first);
    setMaxFocalPlane(default_focal_planes.last);
    m_cache_time = 10;
    setDataset(m_dataset);
    setMouseTracking(true);
    frame_canvas->setMouseTracking(true);
}

void ORVBrowser::destroy() { pushButton_close_clicked(); }

void ORVBrowser::setApplication(QApplication* app) { m_app = app; }

void ORVBrowser::closeEvent(QCloseEvent* e)
{
    if (is_running()) {
        close_runs();
        pushButton_auto->setChecked(false);
        m_auto_split = false;
    }
    QWidget::closeEvent(e);
}

void ORVBrowser::showEvent(QShowEvent* e)
{
    if (QWindow* const shown_in = window()->windowHandle())
        shown_in->installEventFilter(this);
    QWidget::showEvent(e);
}

bool ORVBrowser::eventFilter(QObject* watched, QEvent* e)
{
    if (watched == frame_canvas && e->type() == QEvent::Leave && has_rois())
        light_roi("");
    if (watched == window()->windowHandle() && e->type() == QEvent::Expose)
        ask_for_missing_image();
    return QWidget::eventFilter(watched, e);
}

// Inside a handler that runs while events are processed already, the loop around it goes on with them.
void ORVBrowser::processEvents()
{
    if (m_event_depth == 0)
        process_events_of_run(QEventLoop::AllEvents);
}

bool ORVBrowser::can_process_events() const noexcept { return m_event_depth < max_event_depth; }

bool ORVBrowser::process_events_of_run(QEventLoop::ProcessEventsFlags flags)
{
    QAbstractEventDispatcher* const dispatcher = QAbstractEventDispatcher::instance();
    if (!can_process_events() || !dispatcher)
        return false;
    const QPointer<ORVBrowser> self(this);    // a handler may delete the window
    ++m_event_depth;
    const bool had_events = dispatcher->processEvents(flags);
    if (self)
        --m_event_depth;
    return had_events;
}

bool ORVBrowser::carry_on() { return process_events_of_run(QEventLoop::AllEvents); }

void ORVBrowser::show_changes()
{
    dirty = true;
    paint_canvas();
}

void ORVBrowser::finish()
{
    show_changes();
    processEvents();
}
