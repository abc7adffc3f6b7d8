// lineage_comparison.h - how two corrections of one recording differ.
#pragma once
#include "lineage_file.h"

#include <string>
#include <vector>

struct lineage_difference {
    std::string kind;    // unit, link, gap, elite or name
    int t = 0;           // time point of the unit, of the later one of two
    std::string unit;    // its head where it is
    char in = 'a';       // a or b: where it is, while the other lacks it
};

struct lineage_comparison {
    std::vector<lineage_difference> differences;    // in the order of time points, units, kinds
    std::size_t only_a = 0;                         // how many of them are in a
    std::size_t only_b = 0;

    // Agreement: twice what both have, by what they have together; 1 where neither has any. Units are the
    // same when their ROIs are.
    double units_f = 1;
    double links_f = 1;
};

// A link, a gap, a mark or a name is the same when its units are. So that one ROI more does not part what is
// else the same, units that share more than half of their ROIs stand for each other there.
[[nodiscard]] lineage_comparison compare_lineages(const lineage& a, const lineage& b);
