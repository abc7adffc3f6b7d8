// two_ellipsoids.h - where the pixels of two nuclei that are one for the detector part.
//
// Points are in pixel widths, all three axes alike (a focal plane counts as several). Each nucleus is taken
// for an ellipsoid of Gaussian density; pixels go to the one that explains them better, and both ellipsoids
// follow their pixels until nothing changes (classification EM: Celeux and Govaert (1992), Computational
// Statistics & Data Analysis 14, 315-332). In one plane the same makes two ellipses.
#pragma once
#include "ORV_pos.h"

#include <array>
#include <optional>
#include <span>
#include <utility>
#include <vector>

// Symmetric: xx, xy, xz, yy, yz, zz.
using symmetric_matrix = std::array<double, 6>;

struct pixel_ellipsoid {
    pos3d centre;
    symmetric_matrix inverse{};    // of the covariance
    double constant = 0;           // ln det of the covariance - 2 ln of its share of the pixels

    // The smaller, the more likely is the point its own.
    [[nodiscard]] double distance(pos3d p) const noexcept;
};

// A cut in space.
struct two_sides {
    pixel_ellipsoid plus;
    pixel_ellipsoid minus;
    std::optional<double> boundary;    // set: cut between planes there, the higher ones are plus
    pos3d normal;                      // unit vector from the minus side to the plus side
    double offset = 0;                 // how far the cut is moved along the normal, pixel widths
    double gain = 0;                   // how much better two ellipsoids explain the pixels than one

    [[nodiscard]] bool is_plus(pos3d p) const noexcept;
    [[nodiscard]] pos3d middle() const { return (plus.centre + minus.centre) / 2 + normal * offset; }
};

constexpr double least_gain_of_two = 0.1;    // a lower gain: one nucleus

// The best cut, from the longest axis on, or from two points of which one lies in each nucleus. Where one
// between two planes is about as good, it is that. Nothing when either side would have too few pixels.
// The first of the two points lies on the plus side, but for a cut between planes.
// Of many pixels a fixed part is looked at: the time does not grow with their number.
[[nodiscard]] std::optional<two_sides>
find_two_ellipsoids(std::span<const pos3d> pixels,
                    const std::optional<std::pair<pos3d, pos3d>>& from = std::nullopt);

// The cut between planes at this height.
[[nodiscard]] two_sides cut_between_planes(double boundary);
