#include "half_mask.h"

#include "body.h"

#include "ORV_outline.h"
#include "ORV_roidb.h"

#include <algorithm>
#include <iostream>

namespace {

// An answer may hold any number: sums wrap, and so do their inverses, with -1 for `times`.
pos2i moved(pos2i p, pos2i by, int times)
{
    const auto sum = [n = static_cast<unsigned int>(times)](int a, int b) {
        return static_cast<int>(static_cast<unsigned int>(a) + n * static_cast<unsigned int>(b));
    };
    return {sum(p.x(), by.x()), sum(p.y(), by.y())};
}

}    // namespace

bool is_covered(const half_mask& half, const roi_mask& raster, const std::list<roi>& rois,
                std::set<const roi*>& placed)
{
    if (half.size == 0)
        return true;
    std::vector<unsigned char> enclosed(half.pixels.size());
    for (const roi& r : rois)
        if (r.z() == raster.z() && !r.outline().empty() &&
            fill_outline(moved(r, raster.top_left(), -1), r.outline(), enclosed, half.width, half.height))
            placed.insert(&r);
    return std::equal(
        half.pixels.begin(), half.pixels.end(), enclosed.begin(),
        [](unsigned char in_half, unsigned char is_enclosed) { return !in_half || is_enclosed; });
}

void append_rois(half_mask& half, const roi_mask& raster, const char* side, std::list<roi>& rois)
{
    for (const roi& r : makeROIs(half.pixels.data(), half.width, half.height)) {
        const pos2i at = moved(r, raster.top_left(), 1);
        rois.emplace_back(at.x(), at.y(), raster.z(), raster.t(), r.outline());
        std::cout << side << rois.back() << std::endl;
    }
}
