// physical_scale.h - how large pixels and steps between focal planes are, in micrometres.
#pragma once

struct physical_scale {
    double pixel_um = 0.105;    // width and height of a pixel
    double plane_um = 0.5;      // from one focal plane to the next

    bool operator==(const physical_scale&) const = default;
};
