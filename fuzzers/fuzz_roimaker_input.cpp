// Masks for roimaker: the answer fits into a pipe, the browser reads it as it was meant, and its outlines
// enclose their regions.
#include "ORV_outline.h"
#include "harness.h"
#include "mask_answer.h"
#include "mask_input.h"
#include "q_roiimg.h"
#include "roimaker_answer.h"

#include <algorithm>

namespace {

void check_mask(const mask& m)
{
    require(m.width >= 1 && m.height >= 1 && m.width <= max_side && m.height <= max_side,
            "a mask is within its limit");
    require(m.pixels.size() == static_cast<std::size_t>(m.width) * static_cast<std::size_t>(m.height),
            "a mask has all of its pixels");
}

// The rules by which the browser fills an outline leave out a pixel of some spirals, but never add one.
void check_region(const outlined_region& region, const mask& m)
{
    require(is_closed(region.chain), "an outline is closed");
    const long long enclosed = enclosed_pixels(region.chain);
    require(region.pixels >= 1 && enclosed >= region.pixels, "an outline encloses its region");
    std::vector<unsigned char> filled(m.pixels.size());
    require(fill_outline(region.start, region.chain, filled, m.width, m.height), "an outline can be filled");
    require(std::count(filled.begin(), filled.end(), 1) == enclosed, "what is enclosed is filled");
    q_roiimg raster(roi(region.start.x(), region.start.y(), 0, 0, region.chain));
    raster.map();
    auto pixel = filled.begin();
    for (int y = 0; y < m.height; ++y)
        for (int x = 0; x < m.width; ++x)
            require(*pixel++ || !raster.value(x - raster.top_left().x(), y - raster.top_left().y()),
                    "the raster of an outline has nothing beyond what it encloses");
}

void check_answer(const mask_answer& answer, const std::vector<outlined_region>& regions)
{
    require(answer.text.size() <= max_answer, "an answer fits");
    const std::list<roi> rois = read_answer(stream_of(answer.text).get());
    require(rois.size() + answer.left_out == regions.size(), "every region is answered or left out");
    auto region = regions.begin();
    for (const roi& r : rois) {
        region = std::find_if(region, regions.end(), [&r](const outlined_region& candidate) {
            return candidate.start == r && candidate.chain == r.outline();
        });
        require(region != regions.end(), "an answer is a region, from the top");
        ++region;
    }
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto m = read_mask(stream_of({reinterpret_cast<const char*>(data), size}).get());
    if (!m)
        return 0;
    check_mask(*m);
    const std::vector<outlined_region> regions = outline_regions(m->pixels, m->width, m->height);
    check_answer(answer_to(*m), regions);
    constexpr std::size_t enough = 16;    // each costs as much as the mask
    for (std::size_t i = 0; i < std::min(regions.size(), enough); ++i)
        check_region(regions[i], *m);
    return 0;
}
