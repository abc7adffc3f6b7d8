// The picture on the canvas: the image of the current position and the outlines of its ROIs.
#include "error_line.h"
#include "orvbrowser.h"
#include "roi_colors.h"

#include <QFile>
#include <QPaintEvent>
#include <QPainter>

#include <utility>

namespace {

constexpr int not_shown = -2;                    // where others have the index of their colour
constexpr QRect whole_canvas(0, 0, 601, 601);    // that the picture is made for, whatever is seen of it

QRect rect_of(const pixel_box& box) { return {QPoint(box.left, box.top), QPoint(box.right, box.bottom)}; }

}    // namespace

void ORVBrowser::paintEvent(QPaintEvent*) { refresh_picture(); }

// Only the canvas: the controls repaint themselves where they change.
void ORVBrowser::paint_canvas()
{
    if (!isVisible() || !updatesEnabled())
        return;    // the next paint event does it
    refresh_picture();
    frame_canvas->repaint();
}

bool ORVBrowser::is_picture_current() const
{
    return !dirty && m_time_point == m_drawn_time_point && m_focal_plane == m_drawn_focal_plane;
}

void ORVBrowser::refresh_picture()
{
    if (!m_imgdb || is_picture_current())
        return;
    dirty = false;
    m_drawn_time_point = m_time_point;
    m_drawn_focal_plane = m_focal_plane;
    myPaint();
    frame_canvas->set_picture(m_pix);
}

// The window system shows the window anew: an image that was missing may be there by now.
void ORVBrowser::ask_for_missing_image()
{
    if (!m_imgdb || m_imgdb->cached(m_time_point, m_focal_plane))
        return;
    dirty = true;
    update();
}

// Brings the picture up to date at once, like show_changes(), when only the looks of ROIs may have
// changed: paints anew only where they have. Lineage lines may cross any place.
void ORVBrowser::show_changed_rois()
{
    const QPixmap* const image = isOpen() ? image_on_view() : nullptr;
    const bool can_paint_parts = isVisible() && updatesEnabled() && is_picture_current() &&
                                 !m_show_centroid && image && image->size() == m_pix.size();
    const std::optional<QRect> area = can_paint_parts ? area_of_changed_rois() : std::nullopt;
    if (!area) {
        show_changes();
        return;
    }
    if (area->isNull())
        return;
    frame_canvas->release_picture();
    QPainter(&m_pix).drawPixmap(*area, *image, *area);
    paint_rois(m_pix, *area);
    release_dropped_rasters();
    frame_canvas->show_changed_picture(m_pix, *area);
}

// Where ROIs look otherwise than the picture shows them. Nothing when that is not known of each.
std::optional<QRect> ORVBrowser::area_of_changed_rois()
{
    const set<string> reached = units_reached_on_view();
    QRect area;
    const auto plane = m_q_roiimgdb->plane(*m_roidb, m_time_point, m_focal_plane);
    for (const plane_roi& r : plane->rois) {
        if (r.painted_as == plane_roi::not_painted)
            return std::nullopt;
        if (r.painted_as != look_of(*r.key, reached))
            area |= rect_of(r.box);
    }
    return area;
}

void ORVBrowser::myPaint()
{
    if (!m_imgdb)
        return;
    m_pix = background();
    drawROI(m_pix);
    if (m_show_centroid)
        drawLineage(m_pix);
    release_dropped_rasters();
}

// The image of this position. Where there is none, or it ends before the ROIs do, they are shown all
// the same, as far as the canvas reaches.
QPixmap ORVBrowser::background()
{
    const bool is_known = m_imgdb->cached(m_time_point, m_focal_plane);
    const QString filename = QFile::decodeName(image_filename().c_str());
    const QPixmap image = m_imgdb->img(m_time_point, m_focal_plane, filename, m_cache_time);
    QRect covered = image.rect();
    if (image.isNull())
        covered = whole_canvas;
    else if (has_rois()) {
        const auto plane = m_q_roiimgdb->plane(*m_roidb, m_time_point, m_focal_plane);
        for (plane_roi& r : plane->rois)
            if (m_q_roiimgdb->raster_of(r)->size() > 0)
                covered |= rect_of(r.box) & whole_canvas;
    }
    if (covered == image.rect())
        return image;
    if (!image.isNull() && !is_known)
        error_line("Image smaller than its ROIs: ", filename.toStdString());
    QPixmap picture(covered.size());
    picture.fill(palette().color(QPalette::Window));
    QPainter(&picture).drawPixmap(0, 0, image);
    return picture;
}

const QPixmap* ORVBrowser::image_on_view() const
{
    return m_imgdb ? m_imgdb->cached(m_time_point, m_focal_plane) : nullptr;
}

// A plane that has left the cache since the picture was made does not know any more how it is shown.
void ORVBrowser::visit_shown_rois(const std::function<void(const plane_roi&, const QColor&)>& visit)
{
    if (!has_rois())
        return;
    const auto plane = m_q_roiimgdb->plane(*m_roidb, m_time_point, m_focal_plane);
    std::optional<set<string>> reached;
    const auto look_now = [&](const plane_roi& r) {
        if (!reached)
            reached = units_reached_on_view();
        return look_of(*r.key, *reached);
    };
    for (plane_roi& r : plane->rois) {
        m_q_roiimgdb->raster_of(r);
        const int look = r.painted_as == plane_roi::not_painted ? look_now(r) : r.painted_as;
        if (look != not_shown)
            visit(r, color[look]);
    }
    release_dropped_rasters();
}

void ORVBrowser::drawROI(QPixmap& pix) { paint_rois(pix, pix.rect()); }

// Of the ROIs on view, those that reach into the area, and nothing outside it. What the canvas shows them
// as is kept for show_changed_rois().
void ORVBrowser::paint_rois(QPixmap& pix, const QRect& area)
{
    if (!has_rois())
        return;
    const bool is_canvas = &pix == &m_pix;
    const set<string> reached = units_reached_on_view();
    QPainter painter(&pix);
    painter.setClipRect(area);
    const auto plane = m_q_roiimgdb->plane(*m_roidb, m_time_point, m_focal_plane);
    for (plane_roi& r : plane->rois) {
        m_q_roiimgdb->raster_of(r);
        const int look = look_of(*r.key, reached);
        if (is_canvas && (area == pix.rect() || rect_of(r.box).intersects(area)))
            r.painted_as = look;
        if (look != not_shown && rect_of(r.box).intersects(area))
            paint_roi(painter, r, look);
    }
}

// The units of the time point on view that descend from the lineage head or led to it.
std::set<std::string> ORVBrowser::units_reached_on_view()
{
    return m_lineage_mode_roi_set.empty() ? set<string>()
                                          : units_reached_at(m_time_point, *m_lineage_mode_roi_set.begin());
}

// `reached` holds the units_reached_on_view().
int ORVBrowser::color_index(const string& key, const set<string>& reached)
{
    const std::string unit = head(key);
    int s = isSelected(key) ? SELECTED : DEFAULT;
    if (m_removed_roi_set.contains(key))
        s |= REMOVED;
    if (m_mouse_over_roi_set.contains(key))
        s |= HIGHLIGHT;
    if (isFwdTracked(key))
        s |= FORWARD;
    if (isBwdTracked(key))
        s |= BACKWARD;
    if (!m_lineage_mode_roi_set.empty()) {
        if (unit == *m_lineage_mode_roi_set.begin())
            s |= LINEAGE;
        else if (reached.contains(unit))
            s |= FORWARD | BACKWARD;
    }
    if (isElite(unit))
        s |= ELITE;
    return s;
}

// The index of its colour, or not_shown.
int ORVBrowser::look_of(const string& key, const set<string>& reached)
{
    const int s = color_index(key, reached);
    const bool is_hidden = m_show_tracked_rois_mode && (s & (FORWARD | BACKWARD)) == 0;
    return is_hidden ? not_shown : s;
}

void ORVBrowser::paint_roi(QPainter& painter, plane_roi& r, int look)
{
    painter.setPen(QPen(color[look], 1, Qt::SolidLine));
    const QPolygon& outline = m_q_roiimgdb->raster_of(r)->qpointarray();
    if (outline.size() == 1)
        painter.drawPoint(outline.first());
    else
        painter.drawPolygon(outline);
}
