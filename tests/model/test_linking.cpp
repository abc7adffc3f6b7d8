// Links between units made of cubes; a pixel and a focal plane are 1 um.
#include "../support/rectangles.h"
#include "linking.h"

#include <gtest/gtest.h>

#include <list>
#include <random>

namespace {

struct cube {
    int x, y, z;
    int side;
};

using links = std::vector<unit_link>;

class linking : public testing::Test {
protected:
    // The rasters live as long as the test.
    std::vector<unit_rasters> units(const std::vector<cube>& cubes)
    {
        std::vector<unit_rasters> all;
        for (const cube& c : cubes) {
            std::vector<rectangle> planes;
            for (int z = c.z; z < c.z + c.side; ++z)
                planes.push_back({c.x, c.y, z, c.side, c.side});
            all.push_back(_rasters.emplace_back(planes).all());
        }
        return all;
    }

    links link(const std::vector<cube>& before, const std::vector<cube>& now)
    {
        unit_linker linker({1, 1});
        EXPECT_TRUE(linker.link(units(before)).empty()) << "nothing lies before";
        return linker.link(units(now));
    }

private:
    std::list<raster_list> _rasters;
};

TEST_F(linking, goes_to_the_nearest_and_to_two_daughters)
{
    const struct {
        const char* why;
        std::vector<cube> before, now;
        links expected;
    } cases[] = {
        {"the nearer of two", {{0, 0, 0, 9}}, {{11, 0, 0, 9}, {0, 4, 0, 9}}, {{1, 0}}},
        {"neither shares a pixel", {{0, 0, 0, 9}}, {{10, 0, 0, 9}}, {{0, 0}}},
        {"farther than both radii", {{0, 0, 0, 9}}, {{12, 0, 0, 9}}, {}},
        {"each has one, though both are nearest to the first",
         {{0, 0, 0, 9}, {9, 0, 0, 9}},
         {{1, 0, 0, 9}, {3, 0, 0, 9}},
         {{0, 0}, {1, 1}}},
        {"two daughters, one of them beside the mother",
         {{0, 0, 0, 12}},
         {{-6, 2, 2, 8}, {8, 2, 2, 8}},
         {{0, 0}, {1, 0}}},
        {"two daughters too far for a link",
         {{20, 0, 0, 12}},
         {{5, 1, 1, 9}, {38, 1, 1, 9}},
         {{0, 0}, {1, 0}}},
        {"both on one side", {{0, 0, 0, 12}}, {{3, 2, 2, 8}, {14, 2, 2, 8}}, {{0, 0}}},
        {"one more than three times as large", {{0, 0, 0, 12}}, {{-7, 0, 0, 12}, {12, 2, 2, 8}}, {{0, 0}}},
        {"of three, the nearer two",
         {{0, 0, 0, 12}},
         {{-6, 2, 2, 8}, {-2, 10, 2, 8}, {8, 2, 2, 8}},
         {{0, 0}, {2, 0}}},
        {"an orphan between two mothers",
         {{0, 0, 0, 12}, {16, 0, 0, 12}},
         {{-5, 2, 2, 8}, {10, 2, 2, 8}, {25, 2, 2, 8}},
         {{0, 0}, {1, 0}, {2, 1}}},
        {"a unit without pixels", {{0, 0, 0, 0}}, {{0, 0, 0, 0}}, {}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(link(c.before, c.now), c.expected) << c.why;
}

TEST_F(linking, takes_out_the_drift_where_enough_units_tell_it)
{
    for (const int others : {7, 8}) {
        std::vector<cube> before{{0, 0, 0, 10}};
        std::vector<cube> now{{8, 6, 8, 10}};    // on its own way, too far for a link without the drift
        for (int i = 1; i <= others; ++i) {
            before.push_back({0, 30 * i, 0, 10});
            now.push_back({7, 30 * i, 7, 10});
        }
        now.push_back({7, 30, 15, 10});
        const bool is_linked = link(before, now).front() == unit_link{0, 0};
        EXPECT_EQ(is_linked, others > 7) << others;
    }
}

// A second run over what is linked already, whatever the first has left free.
TEST_F(linking, adds_nothing_to_what_it_has_made)
{
    std::mt19937 random(3);
    const auto place = [&random](int width) {
        return static_cast<int>(random() % static_cast<unsigned>(width));
    };
    for (int i = 0; i < 60; ++i) {
        std::vector<cube> before, now;
        for (int n = 0; n < 30; ++n) {
            before.push_back({place(90), place(90), place(90), 6 + place(8)});
            now.push_back({before.back().x + place(9) + 3, before.back().y + place(9),
                           before.back().z - place(9), 5 + place(9)});
        }
        const links made = link(before, now);
        unit_linker again({1, 1});
        (void)again.link(units(before));
        EXPECT_EQ(again.link(units(now), {}, {made}), links()) << i;
        EXPECT_GT(made.size(), 8U);
    }
}

// What lay in one unit and parts again is no division.
TEST_F(linking, tells_two_nuclei_in_one_unit_from_a_mother)
{
    const cube one{0, 0, 0, 8};
    const cube other{8, 0, 0, 8};
    const cube both{0, 0, 0, 16};
    const links division{{0, 0}, {1, 0}};
    const links no_division{{0, 0}};
    const struct {
        const char* why;
        std::vector<std::vector<cube>> before;    // the two, or the daughters
        links expected;
    } cases[] = {
        {"two nuclei", {{one, other}, {both}}, no_division},
        {"for longer", {{one, other}, {both}, {both}, {both}}, no_division},
        {"never seen apart", {{both}}, division},
        {"the other is a single ROI", {{one, {12, 4, 4, 1}}, {both}}, division},
        {"the other came from nowhere", {{one}, {one, other}, {both}}, division},
        {"it shrank to one", {{one, other}, {both}, {{2, 0, 0, 12}}}, division},
    };
    for (const auto& c : cases) {
        unit_linker linker({1, 1});
        unit_linker follower({1, 1});
        for (const auto& cubes : c.before) {
            const auto now = units(cubes);
            EXPECT_TRUE(follower.link(now, {}, {linker.link(now)}).empty());
        }
        const auto apart = units({one, other});
        EXPECT_EQ(linker.link(apart), c.expected) << c.why;
        EXPECT_EQ(follower.link(apart), c.expected) << c.why << ", links taken over";
    }
}

TEST_F(linking, leaves_what_is_kept_and_links_what_is_free)
{
    const std::vector<cube> before{{0, 0, 0, 9}, {40, 0, 0, 9}},
        now{{1, 0, 0, 9}, {9, 0, 0, 9}, {41, 0, 0, 9}};
    const std::vector<cube> mother{{0, 0, 0, 12}}, daughters{{-6, 2, 2, 8}, {-2, 10, 2, 8}, {8, 2, 2, 8}};
    const struct {
        const char* why;
        std::vector<cube> before, now;
        kept_links kept;
        links expected;
    } cases[] = {
        {"nothing", before, now, {}, {{0, 0}, {2, 1}}},
        {"the farther child", before, now, {{{1, 0}}}, {{2, 1}}},
        {"a child of two parents", before, now, {{{2, 0}, {2, 1}}}, {}},
        {"a pair that was parted", before, now, {{}, {true, false}, {true, false, true}}, {{1, 0}, {2, 1}}},
        {"one daughter", mother, daughters, {{{0, 0}}}, {{2, 0}}},
        {"two daughters", mother, daughters, {{{0, 0}, {1, 0}}}, {}},
        {"a daughter that was parted", mother, daughters, {{{0, 0}}, {true}, {true, false, true}}, {}},
    };
    for (const auto& c : cases) {
        unit_linker linker({1, 1});
        EXPECT_TRUE(linker.link(units(c.before)).empty());
        EXPECT_EQ(linker.link(units(c.now), {}, c.kept), c.expected) << c.why;
    }
}

TEST_F(linking, stays_where_it_was_when_it_is_ended)
{
    const auto first = units({{0, 0, 0, 8}});
    const auto second = units({{1, 0, 0, 8}});
    int steps = 0;
    unit_linker whole({1, 1});
    EXPECT_TRUE(whole.link(first).empty());
    EXPECT_EQ(whole.link(second, [&] { return ++steps > 0; }), (links{{0, 0}}));
    for (int end = 1; end <= steps; ++end) {
        unit_linker linker({1, 1});
        EXPECT_TRUE(linker.link(first).empty());
        int asked = 0;
        EXPECT_TRUE(linker.link(second, [&] { return ++asked < end; }).empty()) << end;
        EXPECT_EQ(linker.link(second), (links{{0, 0}})) << end;
    }
}

}    // namespace
