// grouping.h - which ROIs of one time point show the same nucleus.
//
// The rule "nearest": an ROI goes with the ROI of the next focal plane that shares enough of its pixels and
// whose centre is the nearest, where each is the other's nearest. So a unit is a chain, one ROI a plane, and
// two nuclei side by side never flow together. Where one plane is missing, the chain goes on behind it. A
// chain through two nuclei, one above the other, is narrow between them (a waist): it is cut there.
#pragma once
#include "roi_mask.h"

#include <functional>
#include <span>
#include <vector>

struct nearest_rule {
    // Two ROIs may be of one nucleus when they share this part of the smaller one's pixels.
    double share = 0.3;

    // Focal planes from one ROI of a chain to the next, at most. 1: no missing plane is bridged.
    int reach = 2;

    // Across a missing plane, each of the two ROIs has at least this part of the largest area in its chain:
    // a nucleus that has tapered off has ended.
    double open = 0.5;

    // Between two ROIs that share at most this part of what their neighbours share on either side, a chain
    // is cut. 0: none is.
    double waist = 0.75;
};

// Indices of ROIs, in ascending order; the first names the unit.
using roi_group = std::vector<std::size_t>;

// The units of the ROIs of one time point: every ROI is in one, those that go with no other alone. In
// ascending order of their first ROIs; near-linear in their number. Nothing once carry_on, asked at each ROI,
// answers no.
// REQUIRES: the rasters are mapped, in the order of their keys.
[[nodiscard]] std::vector<roi_group> group_nearest(std::span<const roi_mask* const> rois,
                                                   const nearest_rule& rule = {},
                                                   const std::function<bool()>& carry_on = {});
