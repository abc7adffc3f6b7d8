// lineage_stroke.h - one stroke of the lineage overlay, in the order of drawing: a circle around a centroid,
// or the line of a link. In image pixels.
#pragma once
#include "ORV_pos.h"

#include <QColor>

struct lineage_stroke {
    static constexpr int radius = 2;    // of a circle, in pixels of whatever it is drawn on

    bool is_circle;
    pos3d from;
    pos3d to;    // of a line
    QColor color;
};
