// The rule "nearest" on nuclei made of rectangles.
#include "../support/rectangles.h"
#include "grouping.h"

#include <gtest/gtest.h>

namespace {

struct grouping_case {
    const char* why;
    std::vector<rectangle> rois;    // in the order of their keys: by plane, then x
    std::vector<roi_group> expected;
};

TEST(group_nearest, chains_what_is_nearest_and_cuts_it_at_waists)
{
    const grouping_case cases[] = {
        {"no ROI", {}, {}},
        {"a column", {{0, 0, 0, 9, 9}, {0, 1, 1, 9, 9}, {0, 2, 2, 9, 9}}, {{0, 1, 2}}},
        {"touching neighbours reach over each other",
         {{0, 0, 0, 8, 8}, {8, 0, 0, 8, 8}, {2, 0, 1, 8, 8}, {10, 0, 1, 8, 8}},
         {{0, 2}, {1, 3}}},
        {"0.29 of the smaller one", {{0, 0, 0, 30, 30}, {23, 0, 1, 24, 10}}, {{0}, {1}}},
        {"0.3 of the smaller one", {{0, 0, 0, 30, 30}, {24, 0, 1, 20, 10}}, {{0, 1}}},
        {"one column in common", {{0, 0, 0, 3, 9}, {2, 0, 1, 3, 9}}, {{0, 1}}},
        {"the nearest of the upper has another nearest",
         {{0, 0, 0, 9, 9}, {3, 0, 1, 9, 9}, {5, 0, 2, 9, 9}, {4, 0, 3, 9, 9}},
         {{0, 1, 2, 3}}},
        {"as near on both sides: the first by key",
         {{0, 0, 0, 6, 6}, {8, 0, 0, 6, 6}, {3, 0, 1, 8, 6}},
         {{0, 2}, {1}}},
        {"one plane missing",
         {{0, 0, 0, 9, 9}, {0, 0, 1, 9, 9}, {0, 0, 3, 9, 9}, {0, 0, 4, 9, 9}},
         {{0, 1, 2, 3}}},
        {"two planes missing", {{0, 0, 0, 9, 9}, {0, 0, 3, 9, 9}}, {{0}, {1}}},
        {"tapered off below the missing plane",
         {{0, 0, 0, 9, 9}, {2, 2, 1, 5, 5}, {1, 1, 3, 7, 7}, {0, 0, 4, 9, 9}},
         {{0, 1}, {2, 3}}},
        {"tapered off above the missing plane",
         {{0, 0, 0, 9, 9}, {1, 1, 1, 7, 7}, {2, 2, 3, 5, 5}, {0, 0, 4, 9, 9}},
         {{0, 1}, {2, 3}}},
        {"a waist whose ROI lies nearer to the lower nucleus",
         {{0, 0, 0, 9, 9}, {0, 0, 1, 9, 9}, {2, 2, 2, 5, 5}, {3, 0, 3, 9, 9}, {3, 0, 4, 9, 9}},
         {{0, 1, 2}, {3, 4}}},
        {"a waist whose ROI lies nearer to the upper nucleus",
         {{0, 0, 0, 9, 9}, {0, 0, 1, 9, 9}, {4, 2, 2, 5, 5}, {3, 0, 3, 9, 9}, {3, 0, 4, 9, 9}},
         {{0, 1}, {2, 3, 4}}},
        {"two waists",
         {{0, 0, 0, 9, 9},
          {0, 0, 1, 9, 9},
          {2, 2, 2, 5, 5},
          {0, 0, 3, 9, 9},
          {0, 0, 4, 9, 9},
          {2, 2, 5, 5, 5},
          {0, 0, 6, 9, 9},
          {0, 0, 7, 9, 9}},
         {{0, 1, 2}, {3, 4, 5}, {6, 7}}},
        {"a slight waist, 64 of 81",
         {{0, 0, 0, 9, 9}, {0, 0, 1, 9, 9}, {0, 0, 2, 8, 8}, {0, 0, 3, 9, 9}, {0, 0, 4, 9, 9}},
         {{0, 1, 2, 3, 4}}},
        {"narrow at its end only",
         {{0, 0, 0, 9, 9}, {0, 0, 1, 9, 9}, {0, 0, 2, 9, 9}, {2, 2, 3, 4, 4}},
         {{0, 1, 2, 3}}},
    };
    for (const grouping_case& c : cases) {
        const raster_list rasters(c.rois);
        EXPECT_EQ(group_nearest(rasters.all()), c.expected) << c.why;
    }
}

TEST(group_nearest, ends_when_it_is_told_to)
{
    const raster_list rasters({{0, 0, 0, 9, 9}, {0, 0, 1, 9, 9}, {0, 0, 2, 9, 9}});
    int asked = 0;
    EXPECT_TRUE(group_nearest(rasters.all(), {}, [&] { return ++asked < 3; }).empty());
    EXPECT_EQ(asked, 3);
}

}    // namespace
