// The walk around a region: exact, closed and in a fixed order, for any region
// that is connected through pixel edges.
#include "ORV_outline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

struct picture {
    int width, height;
    std::vector<unsigned char> pixels;

    picture(int w, int h) : width(w), height(h), pixels(static_cast<std::size_t>(w * h), 0) {}

    // '#' is inside
    explicit picture(const std::vector<std::string>& rows)
        : picture(static_cast<int>(rows.front().size()), static_cast<int>(rows.size()))
    {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                at(x, y) = rows[y][x] == '#';
    }

    unsigned char& at(int x, int y) { return pixels[static_cast<std::size_t>(y * width + x)]; }
    bool operator==(const picture&) const = default;
};

std::vector<outlined_region> regions_of(const picture& p)
{
    return outline_regions(p.pixels, p.width, p.height);
}

// The pixels with an odd number of vertical edges of the walk to their left.
picture inside_of(const outlined_region& region, int width, int height)
{
    picture inside(width, height);
    const auto cross = [&inside](int x, int y) {
        for (; x < inside.width; ++x)
            inside.at(x, y) ^= 1;
    };
    int x = region.start.x();
    int y = region.start.y();
    for (const char c : region.chain) {
        switch (c) {
        case '0':
            cross(x, --y);
            break;
        case '1':
            --x;
            break;
        case '2':
            cross(x, y++);
            break;
        default:
            ++x;
            break;
        }
    }
    return inside;
}

// Everything that cannot be reached from the border through background; background
// connects through corners, as the region connects through edges only.
picture holes_filled(picture p)
{
    picture outside(p.width + 2, p.height + 2);
    std::vector<pos2i> todo{{0, 0}};
    while (!todo.empty()) {
        const pos2i q = todo.back();
        todo.pop_back();
        const int x = q.x();
        const int y = q.y();
        if (x < 0 || y < 0 || x >= outside.width || y >= outside.height || outside.at(x, y))
            continue;
        if (x > 0 && y > 0 && x <= p.width && y <= p.height && p.at(x - 1, y - 1))
            continue;
        outside.at(x, y) = 1;
        for (int dy = -1; dy <= 1; ++dy)
            for (int dx = -1; dx <= 1; ++dx)
                todo.emplace_back(x + dx, y + dy);
    }
    for (int y = 0; y < p.height; ++y)
        for (int x = 0; x < p.width; ++x)
            p.at(x, y) = !outside.at(x + 1, y + 1);
    return p;
}

// Grown pixel by pixel through edges: ragged, with notches, spurs and holes.
picture random_region(std::mt19937_64& random, int width, int height, int pixels)
{
    picture p(width, height);
    std::vector<pos2i> grown{{width / 2, height / 2}};
    p.at(width / 2, height / 2) = 1;
    for (int tries = 0; tries < 20 * pixels && static_cast<int>(grown.size()) < pixels; ++tries) {
        constexpr pos2i around[] = {{0, -1}, {-1, 0}, {0, 1}, {1, 0}};
        const pos2i next = grown[random() % grown.size()] + around[random() % 4];
        if (next.x() < 0 || next.y() < 0 || next.x() >= width || next.y() >= height ||
            p.at(next.x(), next.y()))
            continue;
        p.at(next.x(), next.y()) = 1;
        grown.push_back(next);
    }
    return p;
}

long long count(const picture& p) { return std::count(p.pixels.begin(), p.pixels.end(), 1); }

}    // namespace

TEST(outline, encloses_exactly_the_region_with_its_holes)
{
    std::mt19937_64 random(7);
    for (int i = 0; i < 3000; ++i) {
        const int width = 1 + static_cast<int>(random() % 17);
        const int height = 1 + static_cast<int>(random() % 13);
        const picture p = random_region(random, width, height, 1 + static_cast<int>(random() % 120));
        const auto regions = regions_of(p);
        ASSERT_EQ(regions.size(), 1u) << i;
        const outlined_region& region = regions.front();
        ASSERT_EQ(region.chain.front(), '2') << i;
        ASSERT_TRUE(is_closed(region.chain)) << i;
        ASSERT_EQ(region.pixels, count(p)) << i;
        const picture filled = holes_filled(p);
        ASSERT_TRUE(inside_of(region, width, height) == filled) << i << ' ' << region.chain;
        ASSERT_EQ(enclosed_pixels(region.chain), count(filled)) << i << ' ' << region.chain;
    }
}

TEST(outline, walks_typed_pictures)
{
    struct expected {
        pos2i start;
        std::string chain;
        int pixels;
    };
    const struct {
        const char* what;
        std::vector<std::string> rows;
        std::vector<expected> regions;
    } cases[] = {
        {"nothing", {"...", "..."}, {}},
        {"one pixel", {"...", "..#"}, {{{2, 1}, "2301", 1}}},
        {"a bar in each direction", {"##.", "..#", "..#"}, {{{0, 0}, "233011", 2}, {{2, 1}, "223001", 2}}},
        {"joined at a corner only, both ways",
         {"#.#", ".#.", "#.."},
         {{{0, 0}, "2301", 1}, {{2, 0}, "2301", 1}, {{1, 1}, "2301", 1}, {{0, 2}, "2301", 1}}},
        {"its own corner, reached round a ring", {"##.", "#.#", "###"}, {{{0, 0}, "2223330012103011", 7}}},
        {"a hole is not walked", {"###", "#.#", "###"}, {{{0, 0}, "222333000111", 8}}},
        {"an island in a hole",
         {"#####", "#...#", "#.#.#", "#...#", "#####"},
         {{{0, 0}, "22222333330000011111", 16}, {{2, 2}, "2301", 1}}},
        {"the start lies right of the left edge", {".#", "##"}, {{{1, 0}, "21233001", 3}}},
    };
    for (const auto& c : cases) {
        const auto regions = regions_of(picture(c.rows));
        ASSERT_EQ(regions.size(), c.regions.size()) << c.what;
        for (std::size_t i = 0; i < regions.size(); ++i) {
            EXPECT_TRUE(regions[i].start == c.regions[i].start) << c.what;
            EXPECT_EQ(regions[i].chain, c.regions[i].chain) << c.what;
            EXPECT_EQ(regions[i].pixels, c.regions[i].pixels) << c.what;
        }
    }
    EXPECT_TRUE(outline_regions({}, 0, 0).empty());
}

TEST(outline, large_masks_neither_recurse_nor_crawl)
{
    picture comb(4096, 4096);    // the longest walk: teeth of one pixel, joined at the bottom
    for (int y = 0; y < comb.height; ++y)
        for (int x = 0; x < comb.width; x += y == comb.height - 1 ? 1 : 2)
            comb.at(x, y) = 1;
    const auto regions = regions_of(comb);
    ASSERT_EQ(regions.size(), 1u);
    EXPECT_EQ(regions.front().pixels, 2048 * 4095 + 4096);
    EXPECT_EQ(enclosed_pixels(regions.front().chain), regions.front().pixels);
}

TEST(outline, area_and_closure_of_any_chain)
{
    const struct {
        const char* chain;
        long long area;
        bool closed;
        const char* why;
    } cases[] = {
        {"", 0, true, "no step"},
        {"2301", 1, true, "counter-clockwise"},
        {"3210", -1, true, "clockwise"},
        {"2 3x0\n1", 1, true, "other characters are no steps"},
        {"22", 0, false, "open"},
        {"230", 1, false, "open sideways"},
        {"22330011", 4, true, "two by two"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(is_closed(c.chain), c.closed) << c.why;
        EXPECT_EQ(enclosed_pixels(c.chain), c.area) << c.why;
    }
}
