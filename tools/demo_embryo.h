// demo_embryo.h - a growing embryo: nuclei that move, divide and touch.
//
// Positions and lengths are in pixel widths, all three axes alike; one focal
// plane is focal_plane_step pixel widths deep (physical_scale.h). Everything follows from the options and
// their seed.
#pragma once
#include "ORV_pos.h"
#include "physical_scale.h"

#include <cstdint>
#include <string>
#include <vector>

// How closely the nuclei live together, and how hard that makes them to tell apart. Lengths in radii.
struct demo_crowding {
    double filling = 0.33;          // radius, as a part of the edge of the cube of space that a nucleus has
    double clearance = 1.12;        // nuclei keep this times the distance at which they touch
    double above = 0.25;            // and this much more of it when one lies above the other
    double longest = 1.3;           // longest axis to shortest, at most
    double tilt = 0;                // of the longest axis against the focal planes, radians at most
    double roughness = 0;           // of an outline, as a part of its radius
    double motion = 0.03;           // own movement that a time point adds
    double farthest = 0.55;         // way from one time point to the next, at most
    double daughter = 0.72;         // radius after a division; grows to 1
    bool condensed = true;          // before a division a nucleus is small, flat and bright
    bool truth_of_parts = false;    // the truth has the two outlines of those that are one for the detector
};

struct demo_options {
    std::string name = "demo";    // the recording's, one word that can name a folder
    std::uint64_t seed = 1;
    int time_points = 12;
    int planes = 40;
    int nuclei = 30;    // at the last time point
    int width = 400;    // pixels
    int height = 400;
    double missing_rate = 0.02;    // share of the outlines that the detector misses
    double false_rate = 0.02;      // outlines of nothing, as a share of the others
    double joined_rate = 0.03;     // share of the nuclei that set out for a neighbour, per time point
    int jpeg_quality = 85;
    demo_crowding crowding = {};
};

// One nucleus at one time point: an ellipsoid. Its axis ry lies in the image; rx is turned from the image's
// x about z, by the angle, and then out of the image, by the tilt.
struct demo_nucleus {
    int label = 0;    // from 1
    pos3d centre;
    double rx = 0, ry = 0, rz = 0;    // semi-axes
    double cos_angle = 1, sin_angle = 0;
    double cos_tilt = 1, sin_tilt = 0;    // towards higher planes
    double brightness = 1;

    // The offset from the centre in units of the semi-axes: its length is 1 on the surface.
    [[nodiscard]] pos3d in_own_axes(pos3d offset) const noexcept;

    // From the centre to the highest point, along z.
    [[nodiscard]] double half_height() const noexcept;
};

// One nucleus through time; time points inclusive.
struct demo_track {
    int label = 0;
    int first = 0;
    int last = 0;
    int parent = 0;    // 0: none
};

// Two nuclei that touch so closely that the detector sees one; time points inclusive.
struct demo_contact {
    int label = 0;
    int other = 0;
    int first = 0;
    int last = 0;
};

struct demo_embryo {
    std::vector<std::vector<demo_nucleus>> nuclei;    // per time point, ascending by label
    std::vector<demo_track> tracks;                   // ascending by label
    std::vector<demo_contact> contacts;               // ascending by first
};

// The ellipsoid that the nuclei stay in, centred in the recording.
struct demo_space {
    pos3d centre;
    pos3d semi_axes;
};
[[nodiscard]] demo_space space_of(const demo_options& options) noexcept;

[[nodiscard]] demo_embryo grow_embryo(const demo_options& options);
