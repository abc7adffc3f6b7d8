// true_cuts.h - how good the cut by two ellipsoids is on nuclei that the detector took for one.
#pragma once
#include "physical_scale.h"
#include "truth_file.h"

#include "ORV_roidb.h"

struct cut_score {
    int right = 0;    // both halves are pure and complete to 90 per cent of their pixels
    int of = 0;
};

// Begun from where the two were at the time point before, where both are shown; and without.
struct cut_scores {
    cut_score joined_known, joined;    // nuclei with a joined outline whose parts the truth tells
    cut_score stacked_known,
        stacked;    // one above the other, so that a chain of ROIs goes on from one to the other
};

// Of all such pairs of nuclei, cut as one unit.
[[nodiscard]] cut_scores score_cuts(const truth& known, const roidb& rois, const physical_scale& scale);
