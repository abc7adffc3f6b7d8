// making.h - how units and links are made, and what is spared when there are some already.
#pragma once
#include "grouping.h"

#include <cstddef>
#include <set>
#include <string>
#include <vector>

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

// ROIs that belong together, and the one that names their unit.
struct key_group {
    std::string named;
    std::set<std::string> members;
};
using key_groups = std::vector<key_group>;

// What making units does at a time point. Units that would come back as they are do not go.
struct making_plan {
    std::set<std::string> gone;
    key_groups come;
};

// What would be at a time point once units were made.
struct units_made {
    std::size_t number = 0;
    std::set<std::string> gone;    // of those that were there
};
