// demo_detections.h - what a detector makes of the embryo, and the truth about it.
//
// Each nucleus is cut by the focal planes and each cut outlined, so that the
// outline encloses the cut's pixels exactly. Like a real detector it misses some,
// outlines some spots that are no nuclei, and takes nuclei in contact for one.
#pragma once
#include "ORV_roi.h"
#include "demo_embryo.h"

struct demo_part {
    int label = 0;    // of the nucleus
    roi outline;
};

struct demo_detection {
    roi outline;
    int label = 0;    // of the nucleus, 0: there is none
    int other = 0;    // of the second nucleus in the same outline, 0: none

    // Where there are two and the truth has their parts: the outline of each alone, of `label` first. One of
    // which no pixel is left has none.
    std::vector<demo_part> parts;
};

// In ascending order of (t, z, x, y). No two outlines of one image share a pixel.
[[nodiscard]] std::vector<demo_detection> detect(const demo_embryo& embryo, const demo_options& options);
