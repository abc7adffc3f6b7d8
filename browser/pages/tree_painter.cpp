#include "tree_painter.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double smallest_radius = 1.5;    // pixels; smaller units are not drawn one by one
constexpr double click_distance = 8;       // pixels
constexpr double ring_gap = 4;             // pixels, around the chosen nucleus
constexpr double between_numbers = 22;     // pixels, of the time axis
constexpr double smallest_name = 7;        // pixels of height
constexpr double largest_name = 12;
constexpr QColor time_point_color(0x22, 0x88, 0x44);

struct legend_row {
    const char* color;
    const char* text;
};

constexpr legend_row legend[] = {
    {"#5577aa", "unit"},     {"#11a0a0", "reviewed"}, {"#e0b000", "elite"},
    {"#dd2222", "doubtful"}, {"#ff8800", "dead end"}, {"#9933cc", "unlinked"},
};

// The first that holds gives the colour: findings, then what was decided.
QColor color_of(const tree_node& node)
{
    if (node.is_doubtful)
        return legend[3].color;
    if (node.is_unlinked)
        return legend[5].color;
    if (node.is_dead_end)
        return legend[4].color;
    if (node.is_elite)
        return legend[2].color;
    return node.is_reviewed ? legend[1].color : legend[0].color;
}

bool needs_a_look(const tree_node& node) { return node.is_doubtful || node.is_dead_end || node.is_unlinked; }

double radius_of(const tree_view& view)
{
    return std::min({5.0, view.column_width / 4, view.row_height / 3});
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

bool is_straight_below(const tree_node& node, const tree_node& parent)
{
    return parent.column == node.column && parent.t + 1 == node.t;
}

bool goes_straight_on(const lineage_tree& tree, const tree_node& node)
{
    return std::ranges::any_of(node.children,
                               [&](std::size_t child) { return is_straight_below(tree.nodes[child], node); });
}

// Where the line that runs straight down to the node begins, no earlier than just before time point t.
const tree_node& top_of_branch(const lineage_tree& tree, const tree_node& node, int t)
{
    const tree_node* top = &node;
    while (top->t >= t && is_straight_below(*top, tree.nodes[top->parent]))
        top = &tree.nodes[top->parent];
    return *top;
}

// A branch is one line, however long.
void paint_branches(QPainter& painter, const lineage_tree& tree, const tree_view& view, const QRectF& area,
                    row_range rows)
{
    painter.setPen(QPen(QColor("#8899bb"), 1));
    QList<QLineF> lines;
    for (std::size_t row = rows.first; row < rows.last; ++row)
        for_each_in(tree, view, row, area.left(), area.right(), [&](const tree_node& node) {
            if (row + 1 < rows.last && goes_straight_on(tree, node))
                return;
            const tree_node& top = top_of_branch(tree, node, tree.first_t + static_cast<int>(rows.first));
            if (&top != &node)
                lines.append({view.place(tree, top), view.place(tree, node)});
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

double height_of(const lineage_tree& tree, const tree_view& view, int t)
{
    return view.origin.y() + (t - tree.first_t) * view.row_height;
}

void paint_time_point(QPainter& painter, const QRectF& area, double y)
{
    painter.setPen(QPen(time_point_color, 1, Qt::DashLine));
    painter.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
}

// 1, 2, 5, 10, 20, 50 ... time points, so that their numbers stand apart.
int time_points_per_number(double row_height)
{
    int decade = 1;
    for (;; decade *= 10)
        for (const int step : {decade, 2 * decade, 5 * decade})
            if (step * row_height >= between_numbers)
                return step;
}

void paint_number(QPainter& painter, double right, double y, int t)
{
    const QRectF box(right - tree_view::axis_width, y - 10, tree_view::axis_width - 8, 20);
    painter.drawText(box, Qt::AlignRight | Qt::AlignVCenter, QString::number(t));
    painter.drawLine(QPointF(right - 5, y), QPointF(right, y));
}

// The time point on view has its number always, and the others where they leave it room.
void paint_axis(QPainter& painter, const lineage_tree& tree, const tree_view& view, const QRectF& part,
                int time_point)
{
    const double now = height_of(tree, view, time_point);
    const int step = time_points_per_number(view.row_height);
    const auto is_shown = [&](double y) { return y >= part.top() && y <= part.bottom(); };
    const int end = tree.first_t + static_cast<int>(tree.rows.size());
    painter.setPen(Qt::black);
    painter.drawLine(part.topLeft(), part.bottomLeft());
    for (int t = (tree.first_t + step - 1) / step * step; t < end; t += step)
        if (const double y = height_of(tree, view, t);
            is_shown(y) && std::abs(y - now) > between_numbers * 0.7)
            paint_number(painter, part.left(), y, t);
    painter.setPen(time_point_color);
    if (is_shown(now))
        paint_number(painter, part.left(), now, time_point);
}

// Along its branch, downwards: there names of neighbours have room.
void paint_name(QPainter& painter, const tree_view& view, const QPointF& at, double radius,
                const tree_node& node)
{
    const int pixels = static_cast<int>(std::min(largest_name, view.column_width - radius_of(view) - 1));
    if (node.name.empty() || pixels < smallest_name)
        return;
    painter.save();
    QFont font = painter.font();
    font.setPixelSize(pixels);
    painter.setFont(font);
    painter.setPen(Qt::black);
    painter.translate(at + QPointF(radius + 1, -radius));
    painter.rotate(90);
    painter.drawText(QPointF(0, 0), QString::fromStdString(node.name));
    painter.restore();
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
    painter.drawEllipse(at, radius + ring_gap, radius + ring_gap);
}

void paint_legend(QPainter& painter, const QRectF& area)
{
    double x = area.left() + 12;
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
    return {axis_width + 2 * margin + tree.columns * column_width,
            legend_height + 2 * margin + static_cast<double>(tree.rows.size()) * row_height};
}

QRectF tree_view::part_for_tree(const QRectF& paper)
{
    return paper.adjusted(axis_width, legend_height, 0, 0);
}

tree_view tree_view::fitted(const lineage_tree& tree, const QRectF& paper, double smallest)
{
    const QRectF part = part_for_tree(paper).adjusted(margin, margin, -margin, -margin);
    const auto step = [&](double length, double steps) {
        return std::clamp(length / std::max(1.0, steps), smallest, largest_fitted_step);
    };
    tree_view view;
    view.column_width = step(part.width(), tree.columns);
    view.row_height = step(part.height(), static_cast<double>(tree.rows.size()));
    view.origin = part.topLeft();
    return view;
}

void paint_tree(QPainter& painter, const lineage_tree& tree, const tree_view& view, const QRectF& area,
                const tree_marks& marks)
{
    painter.fillRect(area, Qt::white);
    const QRectF part = tree_view::part_for_tree(area);
    painter.save();
    painter.setClipRect(part, Qt::IntersectClip);
    const row_range rows = rows_in(tree, view, part.top(), part.bottom());
    paint_branches(painter, tree, view, part, rows);
    paint_time_point(painter, part, height_of(tree, view, marks.time_point));
    const double radius = radius_of(view);
    for (std::size_t row = rows.first; row < rows.last; ++row)
        for_each_in(tree, view, row, part.left(), part.right(), [&](const tree_node& node) {
            const QPointF at = view.place(tree, node);
            if (radius >= smallest_radius || needs_a_look(node) || node.unit == marks.marked_unit)
                paint_node(painter, at, std::max(radius, smallest_radius), node, marks);
            paint_name(painter, view, at, node.unit == marks.marked_unit ? radius + ring_gap : radius, node);
        });
    painter.restore();
    paint_axis(painter, tree, view, part, marks.time_point);
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
