#include "tree_painter.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double margin = 40;              // pixels around the tree
constexpr double smallest_radius = 1.5;    // pixels; smaller units are not drawn one by one
constexpr double click_distance = 8;       // pixels

struct legend_row {
    const char* color;
    const char* text;
};

constexpr legend_row legend[] = {
    {"#5577aa", "unit"},     {"#e0b000", "elite"},    {"#dd2222", "doubtful"},
    {"#ff8800", "dead end"}, {"#9933cc", "unlinked"},
};

// The first finding that holds gives the colour.
QColor color_of(const tree_node& node)
{
    if (node.is_doubtful)
        return legend[2].color;
    if (node.is_unlinked)
        return legend[4].color;
    if (node.is_dead_end)
        return legend[3].color;
    return node.is_elite ? legend[1].color : legend[0].color;
}

bool needs_a_look(const tree_node& node) { return node.is_doubtful || node.is_dead_end || node.is_unlinked; }

double radius_of(const tree_view& view)
{
    return std::min({5.0, view.column_width / 3, view.row_height / 3});
}

// The rows that a strip of the paper shows.
struct row_range {
    std::size_t first;
    std::size_t last;    // exclusive
};

row_range rows_in(const lineage_tree& tree, const tree_view& view, double top, double bottom)
{
    const auto row = [&](double y) {
        return std::clamp(std::floor((y - view.origin.y()) / view.row_height), -1.0,
                          static_cast<double>(tree.rows.size()));
    };
    const double first = std::max(0.0, row(top) - 1);
    return {static_cast<std::size_t>(first),
            std::min(tree.rows.size(), static_cast<std::size_t>(std::max(0.0, row(bottom) + 2)))};
}

// Runs visit() for the nodes of a row whose column lies within the strip.
template <class Visit>
void for_each_in(const lineage_tree& tree, const tree_view& view, std::size_t row, double left, double right,
                 const Visit& visit)
{
    const auto& indices = tree.rows[row];
    const double first = (left - view.origin.x()) / view.column_width - 1;
    const double last = (right - view.origin.x()) / view.column_width + 1;
    auto i = std::lower_bound(indices.begin(), indices.end(), first, [&](std::size_t index, double column) {
        return tree.nodes[index].column < column;
    });
    for (; i != indices.end() && tree.nodes[*i].column <= last; ++i)
        visit(tree.nodes[*i]);
}

// The slanted links whose child stands in these rows or just below.
auto slanted_in(const lineage_tree& tree, row_range rows)
{
    const auto from_row = [&](std::size_t row) {
        return std::partition_point(tree.slanted.begin(), tree.slanted.end(), [&](const tree_link& link) {
            return tree.nodes[link.child].t < tree.first_t + static_cast<int>(row);
        });
    };
    return std::pair(from_row(rows.first), from_row(rows.last + 1));
}

void paint_branches(QPainter& painter, const lineage_tree& tree, const tree_view& view, const QRectF& area,
                    row_range rows)
{
    painter.setPen(QPen(QColor("#8899bb"), 1));
    QList<QLineF> lines;
    for (std::size_t row = rows.first; row < rows.last; ++row)
        for_each_in(tree, view, row, area.left(), area.right(), [&](const tree_node& node) {
            const tree_node& parent = tree.nodes[node.parent];
            if (parent.column == node.column && parent.t + 1 == node.t)
                lines.append({view.place(tree, parent), view.place(tree, node)});
        });
    const auto [first, last] = slanted_in(tree, rows);
    for (auto entry = first; entry != last; ++entry) {
        const tree_link& link = *entry;
        const QLineF line(view.place(tree, tree.nodes[link.parent]),
                          view.place(tree, tree.nodes[link.child]));
        const QRectF box = QRectF(line.p1(), line.p2()).normalized().adjusted(-1, -1, 1, 1);
        if (box.intersects(area))
            lines.append(line);
    }
    painter.drawLines(lines);
}

void paint_time_point(QPainter& painter, const lineage_tree& tree, const tree_view& view, const QRectF& area,
                      int t)
{
    const double y = view.origin.y() + (t - tree.first_t) * view.row_height;
    painter.setPen(QPen(QColor("#22aa44"), 1, Qt::DashLine));
    painter.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
    painter.drawText(QPointF(area.left() + 4, y - 3), QString::number(t));
}

void paint_node(QPainter& painter, const QPointF& at, double radius, const tree_node& node,
                const tree_marks& marks)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(color_of(node));
    painter.drawEllipse(at, radius, radius);
    if (node.unit != marks.marked_unit)
        return;
    painter.setPen(QPen(Qt::black, 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(at, radius + 4, radius + 4);
}

void paint_legend(QPainter& painter, const QRectF& area)
{
    double x = area.left() + 40;
    const double y = area.top() + 16;
    for (const auto& [color, text] : legend) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(color));
        painter.drawEllipse(QPointF(x, y - 4), 4, 4);
        painter.setPen(Qt::black);
        painter.drawText(QPointF(x + 8, y), text);
        x += 30 + painter.fontMetrics().horizontalAdvance(text);
    }
}

}    // namespace

QPointF tree_view::place(const lineage_tree& tree, const tree_node& node) const
{
    return origin + QPointF(node.column * column_width, (node.t - tree.first_t) * row_height);
}

QSizeF tree_view::size_of(const lineage_tree& tree) const
{
    return {2 * margin + tree.columns * column_width,
            2 * margin + static_cast<double>(tree.rows.size()) * row_height};
}

void paint_tree(QPainter& painter, const lineage_tree& tree, const tree_view& view, const QRectF& area,
                const tree_marks& marks)
{
    painter.fillRect(area, Qt::white);
    const row_range rows = rows_in(tree, view, area.top(), area.bottom());
    paint_branches(painter, tree, view, area, rows);
    const double radius = radius_of(view);
    for (std::size_t row = rows.first; row < rows.last; ++row)
        for_each_in(tree, view, row, area.left(), area.right(), [&](const tree_node& node) {
            if (radius >= smallest_radius || needs_a_look(node) || node.unit == marks.marked_unit)
                paint_node(painter, view.place(tree, node), std::max(radius, smallest_radius), node, marks);
        });
    paint_time_point(painter, tree, view, area, marks.time_point);
    paint_legend(painter, area);
}

std::optional<std::size_t> node_at(const lineage_tree& tree, const tree_view& view, QPointF point)
{
    std::optional<std::size_t> nearest;
    double distance = click_distance;
    const row_range rows = rows_in(tree, view, point.y() - click_distance, point.y() + click_distance);
    for (std::size_t row = rows.first; row < rows.last; ++row)
        for_each_in(tree, view, row, point.x() - click_distance, point.x() + click_distance,
                    [&](const tree_node& node) {
                        const double d = QLineF(point, view.place(tree, node)).length();
                        if (d > distance)
                            return;
                        distance = d;
                        nearest = static_cast<std::size_t>(&node - tree.nodes.data());
                    });
    return nearest;
}
