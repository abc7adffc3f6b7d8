// unit_shape.h - a unit as numbers: what the rules for findings look at, without its pixels.
#pragma once
#include "physical_scale.h"
#include "unit_parting.h"

#include <optional>
#include <vector>

struct roi_shape {
    int plane = 0;
    int area = 0;            // pixels
    pos2d centre;            // pixels
    int shared_above = 0;    // pixels shared with the next ROI of the unit
};

struct unit_shape {
    std::vector<roi_shape> rois;    // ascending by plane
    long long pixels = 0;
    double volume = 0;    // cubic micrometres; 0: it has no pixels
    double radius = 0;    // of the sphere of this volume, micrometres
    pos3d centre;         // micrometres
    pixel_box box;        // of all its ROIs
    double radius_in_pixels = 0;

    [[nodiscard]] bool is_lone() const noexcept { return rois.size() == 1; }
    [[nodiscard]] int lowest() const noexcept { return rois.empty() ? 0 : rois.front().plane; }
    [[nodiscard]] int highest() const noexcept { return rois.empty() ? 0 : rois.back().plane; }
    [[nodiscard]] bool may_meet(const unit_shape& o) const noexcept
    {
        return box.meets(o.box) && lowest() <= o.highest() && o.lowest() <= highest();
    }
};

// REQUIRES: the rasters are mapped, ascending by key
[[nodiscard]] unit_shape shape_of(const std::vector<keyed_raster>& rasters, const physical_scale& scale);

// The distance of the centres in sums of the radii: at 1 the spheres touch.
[[nodiscard]] double distance(const unit_shape& a, const unit_shape& b);

// ---- Where a unit may be two, one above the other; the plane below the place.

// Two ROIs lie on this plane.
[[nodiscard]] std::optional<int> doubled_plane(const unit_shape& unit);

// Where a plane is missing and the centre steps by 0.7 radii or more: the largest such step.
[[nodiscard]] std::optional<int> step_at_gap(const unit_shape& unit);

// The inner pair of ROIs that shares least against the widest on its two sides, below 0.95 of it, where the
// centre steps by half a radius or more.
[[nodiscard]] std::optional<int> step_at_waist(const unit_shape& unit);
