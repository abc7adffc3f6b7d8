// The walk around a region: exact, closed and in a fixed order.
#include "ORV_outline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>

namespace {

using pixels = std::vector<unsigned char>;

// Everything that background, which also connects through corners, cannot reach from outside.
pixels holes_filled(const pixels& mask, int width)
{
    pixels filled(mask.size(), 1);
    const int height = static_cast<int>(mask.size()) / width;
    const auto is_outside = [&](int x, int y) {
        return x < 0 || y < 0 || x >= width || y >= height || !filled[y * width + x];
    };
    for (bool changed = true; changed;) {
        changed = false;
        for (int i = 0; i < width * height; ++i)
            for (int n = 0; n < 9 && !mask[i] && filled[i]; ++n)
                if (is_outside(i % width + n % 3 - 1, i / width + n / 3 - 1))
                    filled[i] = 0, changed = true;
    }
    return filled;
}

// Masks from noise to nearly full: regions of all shapes, holes, and regions in holes.
TEST(outline, encloses_exactly_the_regions_with_their_holes)
{
    std::mt19937 random(7);
    for (int i = 0; i < 3000; ++i) {
        const int width = static_cast<int>(1 + random() % 17), height = static_cast<int>(1 + random() % 13);
        const auto density = 10 + random() % 85;
        pixels mask(width * height), enclosed(width * height);
        std::ranges::generate(mask, [&] { return random() % 100 < density; });
        int count = 0;
        for (const outlined_region& region : outline_regions(mask, width, height)) {
            pixels own(mask.size());
            ASSERT_TRUE(fill_outline(region.start, region.chain, own, width, height)) << region.chain;
            ASSERT_EQ(enclosed_pixels(region.chain), std::ranges::count(own, 1)) << region.chain;
            std::ranges::transform(own, enclosed, enclosed.begin(), std::bit_or<>());
            count += region.pixels;
        }
        ASSERT_EQ(count, std::ranges::count(mask, 1)) << i;
        ASSERT_EQ(enclosed, holes_filled(mask, width)) << i;
    }
}

TEST(outline, walks_typed_pictures)
{
    const std::tuple<int, std::string, std::string> cases[] = {
        {3, "... ...", ""},
        {3, "##. ..# ..#", "0,0 233011 2; 2,1 223001 2; "},
        {3, "#.# .#. #..", "0,0 2301 1; 2,0 2301 1; 1,1 2301 1; 0,2 2301 1; "},
        {3, "##. #.# ###", "0,0 2223330012103011 7; "},    // touches its own corner
        {5, "##### #...# #.#.# #...# #####", "0,0 22222333330000011111 16; 2,2 2301 1; "},
        {2, ".# ##", "1,0 21233001 3; "},
    };
    for (const auto& [width, rows, answer] : cases) {
        pixels mask;
        for (const char c : rows)
            if (c != ' ')
                mask.push_back(c == '#');
        std::string walks;
        for (const auto& [start, chain, count] :
             outline_regions(mask, width, static_cast<int>(mask.size()) / width))
            walks += std::to_string(start.x()) + ',' + std::to_string(start.y()) + ' ' + chain + ' ' +
                     std::to_string(count) + "; ";
        EXPECT_EQ(walks, answer) << rows;
    }
    EXPECT_TRUE(outline_regions({}, 0, 0).empty());
}

TEST(outline, large_masks_neither_recurse_nor_crawl)
{
    constexpr int side = 4096;
    pixels comb(side * side, 1);    // the longest walk: teeth of one pixel, joined at the bottom
    for (int i = 1; i < side * (side - 1); i += 2)
        comb[i] = 0;
    const auto regions = outline_regions(comb, side, side);
    ASSERT_EQ(regions.size(), 1u);
    EXPECT_EQ(regions.front().pixels, side / 2 * (side - 1) + side);
    EXPECT_EQ(enclosed_pixels(regions.front().chain), regions.front().pixels);
}

TEST(outline, area_and_closure_of_any_chain)
{
    const std::tuple<const char*, long long, bool> cases[] = {
        {"", 0, true}, {"3210", -1, true}, {"2 3x0\n1", 1, true}, {"22", 0, false}, {"230", 1, false}};
    for (const auto& [chain, area, closed] : cases) {
        EXPECT_EQ(is_closed(chain), closed) << chain;
        EXPECT_EQ(enclosed_pixels(chain), area) << chain;
    }
}

}    // namespace
