// The lineage overlay: where the units of this and of the previous time point are, and who descends
// from whom.
#include "orvbrowser.h"

#include <QPainter>

#include <cmath>

namespace {

QPoint truncated(pos3d p) { return {static_cast<int>(p.x()), static_cast<int>(p.y())}; }

}    // namespace

bool ORVBrowser::is_on_view(const string& unit)
{
    return z_min(unit) <= m_focal_plane && m_focal_plane <= z_max(unit);
}

// A circle of diameter 5 around the centroid; nothing for a unit without a pixel.
void ORVBrowser::paint_centroid(QPainter& painter, const string& unit, const char* bright, const char* dark)
{
    constexpr int radius = 2;
    constexpr int full_turn = 360 * 16;
    const pos3d centroid = g(unit);
    if (!is_finite(centroid))
        return;
    painter.setPen(QPen(QColor(is_on_view(unit) ? bright : dark), 1, Qt::SolidLine));
    const QPoint corner = truncated(centroid - pos3d(radius, radius, 0));
    painter.drawChord(corner.x(), corner.y(), 2 * radius + 1, 2 * radius + 1, 0, full_turn);
}

void ORVBrowser::paint_links(QPainter& painter, const string& unit)
{
    const pos3d centroid = g(unit);
    painter.setPen(QPen(QColor(is_on_view(unit) ? "#ffffff" : "#999999"), 1, Qt::SolidLine));
    for (const std::string& parent : parents(unit)) {
        const pos3d centroid_p = g(parent);
        if (is_finite(centroid) && is_finite(centroid_p))
            painter.drawLine(truncated(centroid), truncated(centroid_p));
    }
}

void ORVBrowser::drawLineage(QPixmap& dic)
{
    if (m_linkage_multimap.empty() || !has_rois())
        return;
    QPainter painter(&dic);
    if (m_min_time_point < m_time_point)
        for (const std::string& unit : units(m_time_point - 1))
            paint_centroid(painter, unit, "#4444ff", "#222299");
    for (const std::string& unit : units(m_time_point)) {
        paint_centroid(painter, unit, "#ff0000", "#990000");
        paint_links(painter, unit);
    }
}
