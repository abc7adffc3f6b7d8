// Opening and closing a recording, the time point and the focal plane, and their controls.
#include "error_line.h"
#include "keygen.h"
#include "long_run.h"
#include "orvbrowser.h"

#include "ORV_roiio.h"

#include <QSignalBlocker>

#include <algorithm>

namespace {

constexpr int first_focal_plane = 20;    // where a recording opens

// Like std::clamp, but with any bounds: while they are being set one may already have passed the other.
int within(int value, int low, int high) { return std::max(low, std::min(value, high)); }

// What a person typed: empty is 0, and what is no number leaves the old value.
int typed_number(const QString& text, int old)
{
    if (text.isEmpty())
        return 0;
    bool is_number = false;
    const int number = text.toInt(&is_number, 10);
    return is_number ? number : old;
}

}    // namespace

std::string ORVBrowser::digit3(int n) { return ::digit3(n); }

std::string ORVBrowser::make_img_base(string dataset)
{
    std::string root = qgetenv("ORVBROWSER_IMAGE_ROOT").toStdString();
    if (root.empty())
        root = "/image/";
    if (!root.ends_with('/'))
        root += '/';
    return root + dataset + "/";
}

std::string ORVBrowser::image_filename()
{
    return m_img_base + digit3(m_time_point) + "-" + digit3(m_focal_plane) + ".jpg";
}

void ORVBrowser::setMaxTimePoint(int t)
{
    m_max_time_point = t;
    slider_time_point->setMaximum(t);
}

void ORVBrowser::setMinTimePoint(int t)
{
    m_min_time_point = t;
    slider_time_point->setMinimum(t);
}

void ORVBrowser::setMaxFocalPlane(int z)
{
    m_max_focal_plane = z;
    slider_focal_plane->setMaximum(z);
}

void ORVBrowser::setMinFocalPlane(int z)
{
    m_min_focal_plane = z;
    slider_focal_plane->setMinimum(z);
}

ORVBrowser::position_controls ORVBrowser::time_controls()
{
    return {m_time_point, *slider_time_point, *lineEdit_time_point, m_is_mirroring_time};
}

ORVBrowser::position_controls ORVBrowser::plane_controls()
{
    return {m_focal_plane, *slider_focal_plane, *lineEdit_focal_plane, m_is_mirroring_plane};
}

// The slider and the field mirror the position and tell so. What reaches their slots meanwhile asks for
// nothing: else one step would build the picture three times. Whoever else listens may step on.
void ORVBrowser::set_position(const position_controls& controls, int value)
{
    controls.position = value;
    const bool was_mirroring = std::exchange(controls.is_mirroring, true);
    controls.slider.setValue(value);
    controls.field.setText(QString::number(controls.position));
    controls.is_mirroring = was_mirroring;
    dirty = true;
    paint_canvas();
}

void ORVBrowser::setCurrentTimePoint(int t)
{
    set_position(time_controls(), within(t, m_min_time_point, m_max_time_point));
}

void ORVBrowser::setCurrentFocalPlane(int z)
{
    set_position(plane_controls(), within(z, m_min_focal_plane, m_max_focal_plane));
}

void ORVBrowser::timeNext()
{
    if (m_time_point < m_max_time_point)
        setCurrentTimePoint(m_time_point + 1);
}

void ORVBrowser::timePrev()
{
    if (m_time_point > m_min_time_point)
        setCurrentTimePoint(m_time_point - 1);
}

void ORVBrowser::focusUp()
{
    if (m_focal_plane > m_min_focal_plane)
        setCurrentFocalPlane(m_focal_plane - 1);
}

void ORVBrowser::focusDown()
{
    if (m_focal_plane < m_max_focal_plane)
        setCurrentFocalPlane(m_focal_plane + 1);
}

void ORVBrowser::slider_time_point_valueChanged(int v)
{
    if (!m_is_mirroring_time)
        setCurrentTimePoint(v);
}

void ORVBrowser::slider_focal_plane_valueChanged(int v)
{
    if (!m_is_mirroring_plane)
        setCurrentFocalPlane(v);
}

void ORVBrowser::lineEdit_time_point_textChanged(const QString& s)
{
    if (!m_is_mirroring_time)
        setCurrentTimePoint(typed_number(s, m_time_point));
}

void ORVBrowser::lineEdit_focal_plane_textChanged(const QString& s)
{
    if (!m_is_mirroring_plane)
        setCurrentFocalPlane(typed_number(s, m_focal_plane));
}

void ORVBrowser::setDataset(string name)
{
    m_dataset = std::move(name);
    const QString text = QString::fromStdString(m_dataset);
    if (lineEdit_dataset->text() != text)
        lineEdit_dataset->setText(text);
    show_changes();
}

void ORVBrowser::lineEdit_dataset_textChanged(const QString& s)
{
    const std::string name = s.toStdString();
    // A name that is no valid text would come back from the field changed.
    if (s != QString::fromStdString(m_dataset))
        setDataset(name);
    m_dataset1 = m_dataset2 = m_dataset3 = name;
}

void ORVBrowser::build_roidb()
{
    forget_recording();
    m_roidb = std::make_unique<roidb_plus>(m_dataset);
    // What the caches hold belongs to the recording before.
    if (m_imgdb)
        build_imgdb();
    if (m_q_roiimgdb)
        build_q_roiimgdb();
    LongRun run(*this);
    for (int t = m_min_time_point; t <= m_max_time_point; ++t) {
        for (int z = m_min_focal_plane; z <= m_max_focal_plane; ++z) {
            if (!run.process_events())
                return;
            const std::string name = m_roi_base + digit3(t) + "-" + digit3(z) + "." + m_roi_ext;
            iroifstream plane;
            plane.open(name);
            if (!plane) {
                error_line("Cannot open ", name);
                continue;
            }
            plane.seek_roi();
            for (roi r; plane >> r;)
                if (r.x() != 0 || r.y() != 0)
                    m_roidb->entry_plus(r);
        }
    }
    announce_recording();
    finish();
}

void ORVBrowser::build_imgdb() { m_imgdb = std::make_unique<ImageDB>(); }

void ORVBrowser::build_q_roiimgdb()
{
    forget_recording();    // a run that holds rasters must end
    m_q_roiimgdb = std::make_unique<q_roiimgdb>();
}

void ORVBrowser::pushButton_read_clicked()
{
    const QPointer<ORVBrowser> self(this);
    take_info({});    // the focal planes that another recording has told would bound what is read
    take_focal_planes();
    read_common();
    build_roidb();
    if (!self || !m_roidb)    // a handler closed it again
        return;
    build_imgdb();
    build_q_roiimgdb();
    finish();
}

void ORVBrowser::read_common()
{
    setCurrentTimePoint(0);
    setCurrentFocalPlane(first_focal_plane);
    reset_recording_state();
    lineEdit_dataset->setEnabled(false);
    lineEdit_focal_plane->setEnabled(true);
    lineEdit_time_point->setEnabled(true);
    slider_time_point->setEnabled(true);
    slider_focal_plane->setEnabled(true);
    setTrackingButtonsEnabled(m_busy_runs == 0);    // a run that is ending enables them itself
    pushButton_auto->setEnabled(true);
    pushButton_reset->setEnabled(true);
    pushButton_stop->setEnabled(true);
    frame_canvas->setFocus();
}

// The heads picked in the add and remove modes stay.
void ORVBrowser::reset_recording_state()
{
    forget_recording();
    forget_everything();
    for (bool* flag :
         {&m_auto, &m_manual_elite, &m_lineage_mode, &m_show_tracked_rois_mode, &m_add_lineage_mode,
          &m_remove_lineage_mode, &m_auto_split, &m_show_centroid, &m_merge_mode, &m_split_mode, &dirty})
        *flag = false;
    // A button or a cursor that still showed a flag would now tell a lie.
    const QSignalBlocker quiet(pushButton_auto);
    pushButton_auto->setChecked(false);
    show_fitting_cursor();
}

void ORVBrowser::close_common()
{
    forget_recording();
    lineEdit_focal_plane->setEnabled(false);
    lineEdit_time_point->setEnabled(false);
    setTrackingButtonsEnabled(false);
    pushButton_auto->setEnabled(false);
    pushButton_reset->setEnabled(false);
    pushButton_stop->setEnabled(false);
    m_roidb.reset();
    m_imgdb.reset();
    m_q_roiimgdb.reset();
    announce_recording();
    lineEdit_dataset->setEnabled(true);
    take_focal_planes();
    setCurrentTimePoint(0);
    setCurrentFocalPlane(0);
    m_pix = QPixmap();
    frame_canvas->set_picture(m_pix);
}

void ORVBrowser::pushButton_close_clicked() { close_common(); }

void ORVBrowser::pushButton_exit_clicked() { QCoreApplication::quit(); }

void ORVBrowser::take_time_bounds()
{
    setMaxTimePoint(m_roidb->t_max());
    setMinTimePoint(m_roidb->t_min());
    // Between the two, the slider may have been forced to where neither bound is kept.
    if (m_time_point != within(m_time_point, m_min_time_point, m_max_time_point) ||
        m_time_point != slider_time_point->value())
        setCurrentTimePoint(m_time_point);
}

// A recording may tell its focal planes; the bounds of before are in force again when it is closed.
void ORVBrowser::take_focal_planes()
{
    std::optional<key_range> planes = has_rois() ? m_info.focal_planes : std::nullopt;
    if (!m_planes_before && planes)
        m_planes_before = key_range{m_min_focal_plane, m_max_focal_plane};
    if (!planes)
        planes = std::exchange(m_planes_before, std::nullopt);
    if (!planes)
        return;
    setMaxFocalPlane(planes->last);
    setMinFocalPlane(planes->first);
    if (m_focal_plane != within(m_focal_plane, planes->first, planes->last) ||
        m_focal_plane != slider_focal_plane->value())
        setCurrentFocalPlane(m_focal_plane);
}

void ORVBrowser::change_info(const recording_info& info)
{
    set_info(info);
    take_focal_planes();
    show_changes();
}
