// tree_painter.h - draws a lineage tree, or the part of it that is in view.
#pragma once
#include "lineage_tree.h"

#include <QPainter>
#include <QRectF>

#include <optional>

// How the tree lies on the paper: pixels per column and per time point, and where (0, first_t) is. The legend
// runs along the top of the paper and the time axis along its left edge; the tree has the rest.
struct tree_view {
    static constexpr double legend_height = 24;    // pixels
    static constexpr double axis_width = 44;
    static constexpr double margin = 30;    // around the tree
    static constexpr double smallest_step = 0.2;
    static constexpr double readable_step = 3.6;
    static constexpr double largest_fitted_step = 36;

    QPointF origin{axis_width + margin, legend_height + margin};
    double column_width = 18;
    double row_height = 14;

    // That shows all of the tree on a paper, or its beginning where steps would be smaller than the smallest.
    [[nodiscard]] static tree_view fitted(const lineage_tree& tree, const QRectF& paper, double smallest);
    [[nodiscard]] static QRectF part_for_tree(const QRectF& paper);

    [[nodiscard]] QPointF place(const lineage_tree& tree, const tree_node& node) const;
    [[nodiscard]] QSizeF size_of(const lineage_tree& tree) const;    // of the whole tree, with its margins
};

// What is marked besides the units themselves.
struct tree_marks {
    int time_point = 0;         // drawn as a line across
    std::string marked_unit;    // drawn with a ring; may be ""
};

// Draws what lies in `area`. Where units would be smaller than a pixel or two, only the branches and the
// units that need a look are drawn.
void paint_tree(QPainter& painter, const lineage_tree& tree, const tree_view& view, const QRectF& area,
                const tree_marks& marks);

// The unit at a point of the paper, or nothing.
[[nodiscard]] std::optional<std::size_t> node_at(const lineage_tree& tree, const tree_view& view,
                                                 QPointF point);
