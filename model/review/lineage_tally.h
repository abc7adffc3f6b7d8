// lineage_tally.h - how many ROIs, units, links and findings there are.
#pragma once
#include "curation.h"

#include <map>

struct tally {
    int rois = 0;
    int units = 0;
    int links = 0;        // counted at the child's time point
    int doubtful = 0;     // units with two or more stored links to parents
    int dead_ends = 0;    // units without a child, but for the last time point
    int unlinked = 0;     // units without a parent, but for the first time point

    void add(const tally& other) noexcept;
};

// One tally per time point that has any ROI, unit or link.
[[nodiscard]] std::map<int, tally> count_lineage(const curation& model);
