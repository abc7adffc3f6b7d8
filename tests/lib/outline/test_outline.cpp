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

// Label by label the same as a mask of that label, and all of them in the order of their starts.
TEST(outline, regions_of_labels_are_those_of_the_mask_of_each)
{
    std::mt19937 random(8);
    for (int i = 0; i < 500; ++i) {
        const int width = static_cast<int>(1 + random() % 40), height = static_cast<int>(1 + random() % 13);
        std::vector<std::uint32_t> labels(width * height);
        std::ranges::generate(labels, [&] { return random() % 3 * 70000; });
        auto consumed = labels;
        const auto found = outline_labels(consumed, width, height);
        std::size_t expected = 0;
        for (const std::uint32_t label : {70000u, 140000u}) {
            pixels mask(labels.size());
            std::ranges::transform(labels, mask.begin(), [&](auto l) { return l == label; });
            for (const outlined_region& region : outline_regions(mask, width, height)) {
                ++expected;
                EXPECT_TRUE(std::ranges::any_of(found, [&](const labelled_region& l) {
                    return l.label == label && l.start == region.start && l.chain == region.chain &&
                           l.pixels == region.pixels;
                }));
            }
        }
        EXPECT_EQ(found.size(), expected);
        EXPECT_TRUE(std::ranges::is_sorted(
            found, {}, [](const auto& l) { return std::pair(l.start.y(), l.start.x()); }));
    }
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

}    // namespace
