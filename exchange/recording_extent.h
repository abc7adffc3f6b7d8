// recording_extent.h - how far the images of a recording reach.
#pragma once
#include "export_graph.h"

struct recording_extent {
    int width = 1;    // pixels
    int height = 1;
    int planes = 1;    // from plane 0
    int times = 1;     // from time point 0
};

// What the recording file and the folder of the images tell, and so far that every unit lies within: but no
// outline makes an image larger than 1000 pixels a side.
[[nodiscard]] recording_extent extent_of(const export_request& request, const export_graph& graph);
