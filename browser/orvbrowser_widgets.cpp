// The window's widgets, their texts and their connections.
#include "orvbrowser.h"

#include <QKeySequence>

namespace {

// One row of the widget table: where a button stands on its page and what sets it apart.
struct button_row {
    QPushButton* ORVBrowser::*button;
    const char* name;
    QRect place;
    Qt::FocusPolicy focus;
};

constexpr Qt::FocusPolicy keyboard = Qt::TabFocus;    // a click leaves the keyboard to the canvas
constexpr Qt::FocusPolicy no_focus = Qt::NoFocus;

const button_row file_buttons[] = {
    {&ORVBrowser::pushButton_read_roifile, "pushButton_read_roifile", {10, 20, 90, 40}, no_focus},
    {&ORVBrowser::pushButton_read_info, "pushButton_read_info", {100, 20, 90, 40}, no_focus},
    {&ORVBrowser::pushButton_save_info, "pushButton_save_info", {100, 60, 90, 40}, no_focus},
    {&ORVBrowser::pushButton_save_roifile, "pushButton_save_roifile", {10, 60, 90, 40}, keyboard},
    {&ORVBrowser::pushButton_drop_false_positive,
     "pushButton_drop_false_positive",
     {280, 20, 60, 80},
     keyboard},
    {&ORVBrowser::pushButton_clean, "pushButton_clean", {350, 20, 60, 80}, no_focus},
    {&ORVBrowser::pushButton_restore, "pushButton_restore", {420, 20, 100, 80}, no_focus},
    {&ORVBrowser::pushButton_exit, "pushButton_exit", {530, 75, 55, 25}, keyboard},
    {&ORVBrowser::pushButton_read_FP, "pushButton_read_FP", {190, 20, 90, 40}, keyboard},
    {&ORVBrowser::pushButton_save_FP, "pushButton_save_FP", {190, 60, 90, 40}, keyboard},
};

const button_row tracking_buttons[] = {
    {&ORVBrowser::pushButton_auto, "pushButton_auto", {75, 15, 100, 40}, keyboard},
    {&ORVBrowser::pushButton_forward_tracking, "pushButton_forward_tracking", {175, 15, 200, 40}, keyboard},
    {&ORVBrowser::pushButton_z, "pushButton_z", {375, 15, 100, 40}, keyboard},
    {&ORVBrowser::pushButton_stop, "pushButton_stop", {75, 55, 100, 40}, keyboard},
    {&ORVBrowser::pushButton_backward_tracking, "pushButton_backward_tracking", {175, 55, 200, 40}, keyboard},
    {&ORVBrowser::pushButton_select_all, "pushButton_select_all", {375, 55, 100, 40}, no_focus},
    {&ORVBrowser::pushButton_reset, "pushButton_reset", {488, 54, 70, 40}, no_focus},
};

struct button_text {
    QPushButton* ORVBrowser::*button;
    const char* text;
    const char* tip;
};

const button_text button_texts[] = {
    {&ORVBrowser::pushButton_read_roifile, QT_TRANSLATE_NOOP("ORVBrowser", "Read ROIs"),
     QT_TRANSLATE_NOOP("ORVBrowser", "Open a recording from its ROI file; the one that is open is closed")},
    {&ORVBrowser::pushButton_read_info, QT_TRANSLATE_NOOP("ORVBrowser", "Read Info"),
     QT_TRANSLATE_NOOP("ORVBrowser", "Add the selection kept in an info file")},
    {&ORVBrowser::pushButton_save_info, QT_TRANSLATE_NOOP("ORVBrowser", "Save Info"),
     QT_TRANSLATE_NOOP("ORVBrowser", "Save which ROIs are selected to an info file")},
    {&ORVBrowser::pushButton_save_roifile, QT_TRANSLATE_NOOP("ORVBrowser", "Save ROIs"),
     QT_TRANSLATE_NOOP("ORVBrowser",
                       "Save all ROIs to an ROI file; false positives that were not dropped are saved too")},
    {&ORVBrowser::pushButton_drop_false_positive, QT_TRANSLATE_NOOP("ORVBrowser", "Drop\nFP"),
     QT_TRANSLATE_NOOP("ORVBrowser", "Take every ROI marked as a false positive out of the recording")},
    {&ORVBrowser::pushButton_clean, QT_TRANSLATE_NOOP("ORVBrowser", "Clean\nUp"),
     QT_TRANSLATE_NOOP("ORVBrowser",
                       "Mark every ROI that is neither selected nor tracked as a false positive")},
    {&ORVBrowser::pushButton_restore,
     QT_TRANSLATE_NOOP("ORVBrowser", "Restore ROIs\nin the later \ntime points\nfrom current"),
     QT_TRANSLATE_NOOP(
         "ORVBrowser",
         "Replace the ROIs of all later time points by those of an ROI file of this recording")},
    {&ORVBrowser::pushButton_exit, QT_TRANSLATE_NOOP("ORVBrowser", "Exit"),
     QT_TRANSLATE_NOOP("ORVBrowser", "End the program; what is not saved is lost")},
    {&ORVBrowser::pushButton_read_FP, QT_TRANSLATE_NOOP("ORVBrowser", "Read FP"),
     QT_TRANSLATE_NOOP("ORVBrowser", "Add the marks kept in a false-positive file")},
    {&ORVBrowser::pushButton_save_FP, QT_TRANSLATE_NOOP("ORVBrowser", "Save FP"),
     QT_TRANSLATE_NOOP("ORVBrowser", "Save which ROIs are marked as false positives to a file")},
    {&ORVBrowser::pushButton_z, QT_TRANSLATE_NOOP("ORVBrowser", "Z"),
     QT_TRANSLATE_NOOP(
         "ORVBrowser",
         "Select across focal planes what overlaps the selection of this time point by more than half (Z)")},
    {&ORVBrowser::pushButton_stop, QT_TRANSLATE_NOOP("ORVBrowser", "Stop"),
     QT_TRANSLATE_NOOP("ORVBrowser", "Switch Auto off: tracking ends after the step it is in")},
    {&ORVBrowser::pushButton_reset, QT_TRANSLATE_NOOP("ORVBrowser", "Reset"),
     QT_TRANSLATE_NOOP("ORVBrowser", "Forget what was tracked, and all units, links and elite marks; "
                                     "selection and false positives stay")},
    {&ORVBrowser::pushButton_select_all, QT_TRANSLATE_NOOP("ORVBrowser", "Select all"),
     QT_TRANSLATE_NOOP("ORVBrowser", "Select every ROI of this time point that is no false positive")},
    {&ORVBrowser::pushButton_backward_tracking, QT_TRANSLATE_NOOP("ORVBrowser", "Backward tracking"),
     QT_TRANSLATE_NOOP(
         "ORVBrowser",
         "Step to the time point before and mark what overlaps the ROIs selected or tracked backward")},
    {&ORVBrowser::pushButton_auto, QT_TRANSLATE_NOOP("ORVBrowser", "Auto"),
     QT_TRANSLATE_NOOP("ORVBrowser", "Tracking goes on to the end of the recording, or until Stop")},
    {&ORVBrowser::pushButton_forward_tracking, QT_TRANSLATE_NOOP("ORVBrowser", "Forward tracking"),
     QT_TRANSLATE_NOOP(
         "ORVBrowser",
         "Step to the next time point and mark what overlaps the ROIs selected or tracked forward")},
};

struct click_connection {
    QPushButton* ORVBrowser::*button;
    void (ORVBrowser::*slot)();
};

const click_connection click_connections[] = {
    {&ORVBrowser::pushButton_backward_tracking, &ORVBrowser::pushButton_backward_tracking_clicked},
    {&ORVBrowser::pushButton_select_all, &ORVBrowser::pushButton_select_all_clicked},
    {&ORVBrowser::pushButton_reset, &ORVBrowser::pushButton_reset_clicked},
    {&ORVBrowser::pushButton_stop, &ORVBrowser::pushButton_stop_clicked},
    {&ORVBrowser::pushButton_z, &ORVBrowser::pushButton_z_clicked},
    {&ORVBrowser::pushButton_save_FP, &ORVBrowser::pushButton_save_FP_clicked},
    {&ORVBrowser::pushButton_read_FP, &ORVBrowser::pushButton_read_FP_clicked},
    {&ORVBrowser::pushButton_exit, &ORVBrowser::pushButton_exit_clicked},
    {&ORVBrowser::pushButton_restore, &ORVBrowser::pushButton_restore_clicked},
    {&ORVBrowser::pushButton_clean, &ORVBrowser::pushButton_clean_clicked},
    {&ORVBrowser::pushButton_drop_false_positive, &ORVBrowser::pushButton_drop_false_positive_clicked},
    {&ORVBrowser::pushButton_save_roifile, &ORVBrowser::pushButton_save_roifile_clicked},
    {&ORVBrowser::pushButton_save_info, &ORVBrowser::pushButton_save_info_clicked},
    {&ORVBrowser::pushButton_read_info, &ORVBrowser::pushButton_read_info_clicked},
    {&ORVBrowser::pushButton_read_roifile, &ORVBrowser::pushButton_read_roifile_clicked},
};

template <class Widget>
Widget* place(Widget* widget, const char* name, QRect where)
{
    widget->setObjectName(name);
    widget->setGeometry(where);
    return widget;
}

QSlider* horizontal_slider(QWidget* parent)
{
    auto* const slider = new QSlider(Qt::Horizontal, parent);
    slider->setFocusPolicy(keyboard);
    return slider;
}

}    // namespace

void ORVBrowser::createWidgets()
{
    frame_canvas = place(new PictureFrame(this), "frame_canvas", {10, 10, 601, 601});
    frame_canvas->setEnabled(true);
    frame_canvas->setFocusPolicy(Qt::StrongFocus);
    frame_canvas->setFrameStyle(QFrame::StyledPanel | QFrame::Plain);

    textLabel3 = place(new QLabel(this), "textLabel3", {20, 620, 70, 20});
    lineEdit_time_point = place(new QLineEdit(this), "lineEdit_time_point", {110, 620, 30, 20});
    slider_time_point = place(horizontal_slider(this), "slider_time_point", {150, 620, 450, 20});
    textLabel4 = place(new QLabel(this), "textLabel4", {20, 645, 80, 20});
    lineEdit_focal_plane = place(new QLineEdit(this), "lineEdit_focal_plane", {110, 645, 30, 20});
    slider_focal_plane = place(horizontal_slider(this), "slider_focal_plane", {150, 645, 450, 20});
    lineEdit_dataset = place(new QLineEdit(this), "lineEdit_dataset", {135, 670, 355, 25});
    lineEdit_dataset->setAlignment(Qt::AlignCenter);

    tabWidget_control_panel = place(new QTabWidget(this), "tabWidget_control_panel", {10, 710, 600, 150});
    tabWidget_control_panel->setFocusPolicy(Qt::NoFocus);
    file = new QWidget(tabWidget_control_panel);
    file->setObjectName("file");
    mainPage = new QWidget(tabWidget_control_panel);
    mainPage->setObjectName("mainPage");
    const auto fill = [this](QWidget* page, const auto& rows) {
        for (const button_row& row : rows) {
            this->*row.button = place(new QPushButton(page), row.name, row.place);
            (this->*row.button)->setFocusPolicy(row.focus);
        }
    };
    fill(file, file_buttons);
    fill(mainPage, tracking_buttons);
    pushButton_auto->setCheckable(true);
    tabWidget_control_panel->addTab(file, {});
    tabWidget_control_panel->addTab(mainPage, {});
}

void ORVBrowser::languageChange()
{
    setWindowTitle(tr("Nuclear Detector"));
    textLabel3->setText(tr("Time Point"));
    textLabel4->setText(tr("Focal Plane"));
    lineEdit_time_point->setText(tr("0"));
    lineEdit_focal_plane->setText(tr("0"));
    lineEdit_dataset->setText(tr("dataset"));
    for (const auto& [button, text, tip] : button_texts) {
        (this->*button)->setText(tr(text));
        (this->*button)->setToolTip(tr(tip));
    }
    pushButton_clean->setShortcut(QKeySequence());
    tabWidget_control_panel->setTabText(tabWidget_control_panel->indexOf(file), tr("File"));
    tabWidget_control_panel->setTabText(tabWidget_control_panel->indexOf(mainPage), tr("KVT"));
}

void ORVBrowser::connectWidgets()
{
    connect(lineEdit_dataset, &QLineEdit::textChanged, this, &ORVBrowser::lineEdit_dataset_textChanged);
    connect(lineEdit_time_point, &QLineEdit::textChanged, this, &ORVBrowser::lineEdit_time_point_textChanged);
    connect(lineEdit_focal_plane, &QLineEdit::textChanged, this,
            &ORVBrowser::lineEdit_focal_plane_textChanged);
    connect(slider_time_point, &QSlider::valueChanged, this, &ORVBrowser::slider_time_point_valueChanged);
    connect(slider_focal_plane, &QSlider::valueChanged, this, &ORVBrowser::slider_focal_plane_valueChanged);
    connect(pushButton_forward_tracking, &QPushButton::clicked, this,
            &ORVBrowser::pushButton_forward_tracking_clicked);
    connect(pushButton_auto, &QPushButton::toggled, this, &ORVBrowser::pushButton_auto_toggled);
    for (const auto& [button, slot] : click_connections)
        connect(this->*button, &QPushButton::clicked, this, slot);

    setTabOrder(tabWidget_control_panel, lineEdit_time_point);
    setTabOrder(lineEdit_time_point, lineEdit_focal_plane);
    setTabOrder(lineEdit_focal_plane, lineEdit_dataset);
    setTabOrder(lineEdit_dataset, slider_time_point);
    setTabOrder(slider_time_point, slider_focal_plane);
}

void ORVBrowser::setTrackingButtonsEnabled(bool on)
{
    pushButton_forward_tracking->setEnabled(on);
    pushButton_backward_tracking->setEnabled(on);
    pushButton_z->setEnabled(on);
}
