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

// A circle around the centroid; nothing for a unit without a pixel.
void ORVBrowser::add_centroid(std::vector<lineage_stroke>& strokes, const string& unit, const char* bright,
                              const char* dark)
{
    const pos3d centroid = g(unit);
    if (is_finite(centroid))
        strokes.push_back({true, centroid, {}, QColor(is_on_view(unit) ? bright : dark)});
}

void ORVBrowser::add_links(std::vector<lineage_stroke>& strokes, const string& unit)
{
    const pos3d centroid = g(unit);
    const QColor bright_or_dark(is_on_view(unit) ? "#ffffff" : "#999999");
    for (const std::string& parent : parents(unit)) {
        const pos3d centroid_p = g(parent);
        if (is_finite(centroid) && is_finite(centroid_p))
            strokes.push_back({false, centroid, centroid_p, bright_or_dark});
    }
}

std::vector<lineage_stroke> ORVBrowser::lineage_strokes()
{
    std::vector<lineage_stroke> strokes;
    if (m_linkage_multimap.empty() || !has_rois())
        return strokes;
    if (m_min_time_point < m_time_point)
        for (const std::string& unit : units(m_time_point - 1))
            add_centroid(strokes, unit, "#4444ff", "#222299");
    for (const std::string& unit : units(m_time_point)) {
        add_centroid(strokes, unit, "#ff0000", "#990000");
        add_links(strokes, unit);
    }
    return strokes;
}

void ORVBrowser::drawLineage(QPixmap& dic)
{
    constexpr int radius = lineage_stroke::radius;
    constexpr int full_turn = 360 * 16;
    const std::vector<lineage_stroke> strokes = lineage_strokes();
    if (strokes.empty())
        return;
    QPainter painter(&dic);
    for (const lineage_stroke& stroke : strokes) {
        painter.setPen(QPen(stroke.color, 1, Qt::SolidLine));
        const QPoint corner = truncated(stroke.from - pos3d(radius, radius, 0));
        if (stroke.is_circle)
            painter.drawChord(corner.x(), corner.y(), 2 * radius + 1, 2 * radius + 1, 0, full_turn);
        else
            painter.drawLine(truncated(stroke.from), truncated(stroke.to));
    }
}
