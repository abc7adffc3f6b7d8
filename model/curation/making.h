// making.h - how units and links are made, and what is spared when there are some already.
#pragma once
#include "grouping.h"

enum class unit_rule {
    nearest,    // grouping.h and linking.h
    overlap,    // ROIs that share pixels flow together, and so do units of successive time points
};

enum class spared {
    nothing,    // all anew
    what_is,    // only what is in no unit, or has no link, is made
    touched,    // what a person has made or changed, or marked as elite
};

struct making {
    unit_rule rule = unit_rule::nearest;
    double share =
        nearest_rule().share;    // nearest: of the smaller outline; overlap: of the larger one, 0 one pixel
    spared spares = spared::what_is;
};
