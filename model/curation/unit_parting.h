// unit_parting.h - which pixels of a unit would go where if it were cut in two.
//
// It knows masks alone. The ROIs of the plus side become one unit, those of the minus side the other.
#pragma once
#include "roi_mask.h"
#include "two_ellipsoids.h"

#include <string>
#include <utility>
#include <vector>

// What of a unit is cut, and where.
struct parting_request {
    // The plane that the ROI to be cut lies on; the others keep their sides. Nothing: all of the unit.
    std::optional<int> outline_plane;

    // Cut between this plane and the next one that the unit has.
    std::optional<int> above_plane;

    // Where the two nuclei are, in pixel widths, where that is known: plus, minus.
    std::optional<std::pair<pos3d, pos3d>> centres;

    double offset = 0;    // pixel widths along the normal
};

struct roi_parting {
    enum class side : unsigned char { outside, plus, minus };

    std::string key;
    int z = 0;
    pixel_box box;              // of the ROI
    std::vector<side> sides;    // of the pixels of the box, row by row
    bool is_divided = false;    // else all of it is on one side
    bool is_plus = false;       // where it goes then
};

struct unit_parting {
    two_sides where;
    std::vector<roi_parting> rois;    // ascending by key

    // False when all of it lies on one side.
    [[nodiscard]] bool has_both_sides() const;
    [[nodiscard]] bool is_two_nuclei() const noexcept { return where.gain >= least_gain_of_two; }
};

constexpr double side_of_whole_roi = 0.8;    // an ROI with this part on one side goes there whole

using keyed_raster = std::pair<std::string, const roi_mask*>;

// The pixels of rasters, in pixel widths; plane_step is the distance of focal planes.
[[nodiscard]] std::vector<pos3d> pixels_of(const std::vector<keyed_raster>& rasters, double plane_step);

// Nothing when there are not two sides.
// REQUIRES: the rasters are mapped, ascending by key
[[nodiscard]] std::optional<unit_parting> part_rasters(const std::vector<keyed_raster>& rasters,
                                                       double plane_step, const parting_request& how = {});
