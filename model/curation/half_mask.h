// half_mask.h - one half of an ROI that is cut, and the ROIs that roimaker makes of it.
#pragma once
#include "roi_mask.h"

#include <list>
#include <set>
#include <vector>

// A mask of the size of the ROI's raster.
struct half_mask {
    std::vector<unsigned char> pixels;
    int width;
    int height;
    long long size = 0;    // pixels set

    explicit half_mask(const roi_mask& raster)
        : pixels(static_cast<std::size_t>(raster.width()) * static_cast<std::size_t>(raster.height())),
          width(raster.width()), height(raster.height())
    {
    }

    void set(int x, int y)
    {
        pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)] =
            1;
        ++size;
    }
};

// True iff the ROIs of a side enclose all pixels of this half: those that are closed, and inside its box.
// They have a place then. A half without a pixel has none.
[[nodiscard]] bool is_covered(const half_mask& half, const roi_mask& raster, const std::list<roi>& rois,
                              std::set<const roi*>& placed);

// Appends the ROIs that roimaker makes of a half, moved to where its raster lies, each with a line on
// standard output that begins with `side`.
void append_rois(half_mask& half, const roi_mask& raster, const char* side, std::list<roi>& rois);
