// body.h - a pixel mask cut into ROIs by the companion program roimaker.
#pragma once
#include "ORV_roi.h"

#include <list>
#include <string>

// The ROIs of a mask of width x height bytes, row by row, 0 outside and 1 inside, in the order in which
// roimaker answers: positions relative to the mask, focal plane 0, time point 0. Sides are 1 to 4096
// pixels; otherwise none, and one line on standard error. Other bytes are handed over as they are; the
// roimaker of this program takes those up to 9 for inside. The answer is not checked. Blocks until roimaker
// has ended; ends the program when no pipe or process is to be had.
std::list<roi> makeROIs(unsigned char* canvas, int width, int height);

// The roimaker to start: $ORVBROWSER_ROIMAKER, else the one of the build tree for a program that runs
// from there, else the installed one.
[[nodiscard]] std::string roimaker_path();

// True iff roimaker_path() names a program that can be started.
[[nodiscard]] bool is_roimaker_there();
