// cutting_plane.h - the pixels of a unit, counted on either side of a plane.
//
// Points are in pixels: a focal plane counts as several of them. A pixel stands for the
// column from its own plane to the next.
#pragma once
#include "ORV_pos.h"
#include "physical_scale.h"
#include "q_roiimg.h"

#include <cstdint>
#include <vector>

// What a plane does to a unit.
struct plane_section {
    unsigned int size = 0;    // the pixels whose column crosses the plane
    bool plus = false;        // some pixel lies on the plane or on the side of its normal
    bool minus = false;       // some pixel lies on the other side
};

class unit_pixels {
public:
    // `plane_step`: from one focal plane to the next, in pixel widths.
    explicit unit_pixels(double plane_step = focal_plane_step) : _plane_step(plane_step) {}

    void add(const q_roiimg& raster);

    // The plane through `point` with the unit normal `nom`.
    [[nodiscard]] plane_section section(pos3d nom, pos3d point) const;

private:
    // The pixels of one row of one raster; their columns are _x[first .. last).
    struct row {
        std::size_t first;
        std::size_t last;
        double y;
        double z;         // of the plane
        double next_z;    // of the next plane
    };

    double _plane_step;
    std::vector<double> _x;
    std::vector<row> _rows;
};
