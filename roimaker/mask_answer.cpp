#include "mask_answer.h"

#include "ORV_outline.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

std::string lines_of(const outlined_region& region, std::size_t number)
{
    const std::string n = std::to_string(number);
    return "region " + n + " pixels " + std::to_string(region.pixels) + '\n' + n + ' ' +
           std::to_string(region.start.x()) + ' ' + std::to_string(region.start.y()) + ' ' + region.chain +
           '\n';
}

// Leaves out the smallest regions until the answer fits; later ones first among those of equal size.
// Returns how many.
std::size_t keep_what_fits(std::vector<outlined_region>& regions)
{
    std::vector<std::size_t> by_size(regions.size());
    std::iota(by_size.begin(), by_size.end(), 0);
    std::stable_sort(by_size.begin(), by_size.end(),
                     [&](std::size_t a, std::size_t b) { return regions[a].pixels > regions[b].pixels; });
    // How long the answer is depends only on which regions are kept, not on their order.
    std::size_t length = 0;
    std::size_t kept = 0;
    for (; kept < by_size.size(); ++kept) {
        length += lines_of(regions[by_size[kept]], kept + 1).size();
        if (length + std::to_string(kept + 1).size() + 1 > max_answer)
            break;
    }
    std::vector<bool> is_kept(regions.size());
    for (std::size_t i = 0; i < kept; ++i)
        is_kept[by_size[i]] = true;
    const std::size_t left_out = regions.size() - kept;
    std::size_t index = 0;
    std::erase_if(regions, [&](const outlined_region&) { return !is_kept[index++]; });
    return left_out;
}

}    // namespace

mask_answer answer_to(const mask& m)
{
    std::vector<outlined_region> regions = outline_regions(m.pixels, m.width, m.height);
    const std::size_t left_out = keep_what_fits(regions);
    std::string text = std::to_string(regions.size()) + '\n';
    for (std::size_t i = 0; i < regions.size(); ++i)
        text += lines_of(regions[i], i + 1);
    return {std::move(text), left_out};
}
