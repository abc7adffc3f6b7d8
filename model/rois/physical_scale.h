// physical_scale.h - how large pixels and steps between focal planes are, in micrometres.
#pragma once

// The step from one focal plane to the next in pixel widths, for a recording that does not tell its sizes.
constexpr double focal_plane_step = 100.0 / 21.0;

struct physical_scale {
    double pixel_um = 0.105;    // width and height of a pixel
    double plane_um = 0.5;      // from one focal plane to the next

    bool operator==(const physical_scale&) const = default;

    // The step between focal planes in pixel widths. The quotient of the default sizes need not be
    // focal_plane_step to the last bit.
    [[nodiscard]] constexpr double plane_step() const noexcept
    {
        return *this == physical_scale() ? focal_plane_step : plane_um / pixel_um;
    }

    // z focal planes in pixel widths, for centroids and what is compared with them. Multiplied before it is
    // divided, which need not be z times plane_step() to the last bit: which nucleus is the nearer may hang
    // on it.
    [[nodiscard]] constexpr double in_pixels(double z) const noexcept { return plane_um * z / pixel_um; }
};
