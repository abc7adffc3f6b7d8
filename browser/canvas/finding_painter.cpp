#include "finding_painter.h"

#include "keygen.h"

#include <algorithm>
#include <cmath>

const QColor plus_color(255, 150, 0, 120);
const QColor minus_color(0, 190, 255, 120);

namespace {

const QColor other_color(255, 255, 255, 220);

QRect box_of(const roi_parting& part)
{
    return {QPoint(part.box.left, part.box.top), QPoint(part.box.right, part.box.bottom)};
}

// In picture pixels, from the middles of pixels on.
QPointF middle_of(ORVBrowser& window, const std::string& unit)
{
    const pos3d g = window.g(unit);
    return {g.x() + 0.5, g.y() + 0.5};
}

void paint_arrow(QPainter& painter, QPointF from, QPointF to)
{
    constexpr double head = 9;    // screen pixels
    painter.setPen(QPen(other_color, 2, Qt::DashLine));
    painter.drawLine(from, to);
    const QPointF way = to - from;
    const double length = std::hypot(way.x(), way.y());
    if (length < 1)
        return;
    const QPointF along = way / length * head;
    const QPointF across(-along.y() / 2, along.x() / 2);
    painter.setPen(Qt::NoPen);
    painter.setBrush(other_color);
    painter.drawPolygon(QPolygonF({to, to - along + across, to - along - across}));
}

void paint_parting(QPainter& painter, const view_transform& view, int z, const unit_parting& parting)
{
    for (const roi_parting& part : parting.rois)
        if (part.z == z)
            painter.drawImage(view.screen_area(box_of(part)), picture_of(part));
}

QImage picture_of(const q_roiimg& raster, const QColor& color)
{
    QImage image(raster.width(), raster.height(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (raster.value(x, y) > 0)
                image.setPixelColor(x, y, color);
    return image;
}

// What a unit has on this plane, in one colour.
void paint_unit(QPainter& painter, ORVBrowser& window, const view_transform& view, const std::string& unit)
{
    window.visit_shown_rois([&](const plane_roi& r, const QColor&) {
        if (*r.key != unit && window.head(*r.key) != unit)
            return;
        const QRect box(QPoint(r.box.left, r.box.top), QPoint(r.box.right, r.box.bottom));
        painter.drawImage(view.screen_area(box), picture_of(*r.raster, plus_color));
    });
}

// Where another unit lies on this plane, be it at another time point.
void paint_other(QPainter& painter, ORVBrowser& window, const view_transform& view, const std::string& unit)
{
    painter.setPen(QPen(other_color, 2, Qt::DotLine));
    painter.setBrush(Qt::NoBrush);
    for (const std::string& key : window.member(unit)) {
        const auto found = window.rois().db.find(key);
        if (found == window.rois().db.end() || found->second.z() != window.focal_plane())
            continue;
        q_roiimg raster(found->second);
        raster.map();
        QPolygonF outline;
        for (const QPoint p : raster.qpointarray())
            outline << view.screen_point(p);
        painter.drawPolygon(outline);
    }
}

}    // namespace

QImage picture_of(const roi_parting& part)
{
    const QRect box = box_of(part);
    QImage image(box.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    for (int y = 0; y < box.height(); ++y)
        for (int x = 0; x < box.width(); ++x) {
            const auto pixel = static_cast<std::size_t>(y) * static_cast<std::size_t>(box.width()) +
                               static_cast<std::size_t>(x);
            const bool is_inside = part.sides[pixel] != roi_parting::side::outside;
            const bool is_plus =
                part.is_divided ? part.sides[pixel] == roi_parting::side::plus : part.is_plus;
            if (is_inside)
                image.setPixelColor(x, y, is_plus ? plus_color : minus_color);
        }
    return image;
}

void paint_finding(QPainter& painter, ORVBrowser& window, const view_transform& view, const finding& f,
                   const unit_parting* parting)
{
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    if (parting && f.t == window.time_point())
        paint_parting(painter, view, window.focal_plane(), *parting);
    if (f.proposal == proposal_kind::merge) {
        paint_unit(painter, window, view, f.unit);
        for (const std::string& other : f.with)
            paint_unit(painter, window, view, other);
    } else
        for (const std::string& other : f.with)
            paint_other(painter, window, view, other);
    const bool is_about_link = f.proposal == proposal_kind::link || f.proposal == proposal_kind::unlink;
    const auto& units = window.head_members();    // an edit may have taken away what is on view
    for (const std::string& other : f.with) {
        if (!is_about_link || !units.contains(other) || !units.contains(f.unit))
            continue;
        const bool is_later = decode(other).t() > decode(f.unit).t();
        const QPointF from = view.screen_point(middle_of(window, is_later ? f.unit : other));
        const QPointF to = view.screen_point(middle_of(window, is_later ? other : f.unit));
        paint_arrow(painter, from, to);
    }
}
