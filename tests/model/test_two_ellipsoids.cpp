// The cut by two ellipsoids, on points and on masks.
#include "../support/rectangles.h"
#include "unit_parting.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

// The pixels of an ellipsoid; a focal plane is `step` pixel widths deep.
void add_ellipsoid(std::vector<pos3d>& pixels, pos3d centre, pos3d axes, double step = 1)
{
    for (double z = std::ceil((centre.z() - axes.z()) / step) * step; z <= centre.z() + axes.z(); z += step)
        for (double y = centre.y() - axes.y(); y <= centre.y() + axes.y(); ++y)
            for (double x = centre.x() - axes.x(); x <= centre.x() + axes.x(); ++x) {
                const pos3d p(x, y, z);
                const pos3d d = p - centre;
                if (std::hypot(d.x() / axes.x(), d.y() / axes.y(), d.z() / axes.z()) <= 1)
                    pixels.push_back(p);
            }
}

double share_on(const two_sides& cut, const std::vector<pos3d>& pixels, bool plus)
{
    double on = 0;
    for (const pos3d& p : pixels)
        on += cut.is_plus(p) == plus;
    return on / static_cast<double>(pixels.size());
}

TEST(two_ellipsoids, parts_two_nuclei_that_touch_and_leaves_one_alone)
{
    const struct {
        const char* why;
        pos3d centre, axes;    // of the second; the first is a ball of 10 at the origin
        bool is_two;
    } cases[] = {
        {"side by side", {19, 0, 0}, {10, 10, 10}, true},
        {"one above the other", {0, 0, 19}, {10, 10, 10}, true},
        {"aslant, and smaller", {10, 8, 9}, {6, 6, 6}, true},
        {"none", {0, 0, 0}, {3, 3, 3}, false},
        {"a longer one", {0, 0, 0}, {18, 8, 8}, false},
    };
    for (const auto& c : cases) {
        std::vector<pos3d> first, second;
        add_ellipsoid(first, {}, c.is_two || c.axes.x() < 10 ? pos3d(10, 10, 10) : c.axes);
        if (c.is_two)
            add_ellipsoid(second, c.centre, c.axes);
        std::vector<pos3d> all = first;
        all.insert(all.end(), second.begin(), second.end());
        const auto cut = find_two_ellipsoids(all);
        ASSERT_TRUE(cut) << c.why;
        EXPECT_EQ(cut->gain >= least_gain_of_two, c.is_two) << c.why << ' ' << cut->gain;
        if (!c.is_two)
            continue;
        const bool plus = share_on(*cut, first, true) > 0.5;
        EXPECT_GT(share_on(*cut, first, plus), 0.9) << c.why;
        EXPECT_GT(share_on(*cut, second, !plus), 0.9) << c.why;
    }
}

TEST(two_ellipsoids, begins_from_where_the_two_are_when_that_is_known)
{
    std::vector<pos3d> pixels;    // three in a row: the two outer ones are named, and one takes the middle
    for (const double x : {0.0, 12.0, 40.0})
        add_ellipsoid(pixels, {x, 0, 0}, {6, 6, 6});
    const auto cut = find_two_ellipsoids(pixels, std::pair(pos3d(40, 0, 0), pos3d(0, 0, 0)));
    ASSERT_TRUE(cut);
    EXPECT_NE(cut->is_plus({40, 0, 0}), cut->is_plus({0, 0, 0}));
    EXPECT_EQ(cut->is_plus({12, 0, 0}), cut->is_plus({0, 0, 0}));
}

TEST(two_ellipsoids, moves_with_its_offset_along_the_normal)
{
    std::vector<pos3d> pixels;
    add_ellipsoid(pixels, {0, 0, 0}, {8, 8, 8});
    add_ellipsoid(pixels, {16, 0, 0}, {8, 8, 8});
    auto cut = find_two_ellipsoids(pixels);
    ASSERT_TRUE(cut);
    EXPECT_NEAR(cut->middle().x(), 8, 0.5);
    const double before = share_on(*cut, pixels, true);
    cut->offset = 3;
    EXPECT_LT(share_on(*cut, pixels, true), before - 0.05);
    two_sides level = cut_between_planes(5);
    EXPECT_FALSE(level.is_plus({0, 0, 4}));
    level.offset = -2;
    EXPECT_TRUE(level.is_plus({0, 0, 4}));
}

TEST(two_ellipsoids, answers_nothing_for_too_few_pixels)
{
    for (const std::size_t n : {0U, 1U, 39U})
        EXPECT_FALSE(find_two_ellipsoids(std::vector<pos3d>(n, pos3d(1, 1, 1)))) << n;
    EXPECT_FALSE(find_two_ellipsoids(std::vector<pos3d>(100, pos3d(1, 1, 1)))) << "all in one place";
}

TEST(unit_parting, keeps_an_roi_whole_that_lies_to_four_fifths_on_one_side)
{
    const raster_list rois({{0, 0, 0, 20, 10}, {0, 0, 1, 16, 10}, {30, 0, 1, 20, 10}, {0, 0, 2, 50, 10}});
    const std::vector<keyed_raster> rasters{
        {"a", rois.all()[0]}, {"b", rois.all()[1]}, {"c", rois.all()[2]}, {"d", rois.all()[3]}};
    const auto parted = part_rasters(rasters, 4);
    ASSERT_TRUE(parted);
    std::string divided;
    for (const roi_parting& r : parted->rois)
        divided += r.is_divided ? r.key : "";
    EXPECT_EQ(divided, "d");
    EXPECT_EQ(parted->rois[0].is_plus, parted->rois[1].is_plus);
    EXPECT_NE(parted->rois[0].is_plus, parted->rois[2].is_plus);

    parting_request between;
    between.above_plane = 1;
    const auto level = part_rasters(rasters, 4, between);
    ASSERT_TRUE(level);
    EXPECT_TRUE(level->rois[3].is_plus);
    EXPECT_FALSE(level->rois[0].is_plus || level->rois[1].is_plus || level->rois[2].is_plus);
    between.above_plane = 2;
    EXPECT_FALSE(part_rasters(rasters, 4, between)) << "nothing lies above";

    parting_request outline;
    outline.outline_plane = 2;
    const auto cut = part_rasters(rasters, 4, outline);
    ASSERT_TRUE(cut);
    EXPECT_TRUE(cut->rois[3].is_divided);
    EXPECT_TRUE(cut->rois[0].is_plus && cut->rois[1].is_plus && cut->rois[2].is_plus) << "the others stay";

    // The unit's own part is plus, on whichever side of it the neighbour lies.
    for (const pos2i way : {pos2i(24, 0), pos2i(-24, 0), pos2i(0, 24), pos2i(0, -24)}) {
        std::vector<pos3d> pixels;
        for (int x = -9; x <= 9; ++x)
            for (int y = -9; y <= 9; ++y)
                for (const pos3d to : {pos3d(0, 0, 0), pos3d(way.x(), way.y(), 0)})
                    if (x * x + y * y < 90)
                        pixels.push_back(to + pos3d(50 + x, 50 + y, 0));
        const pos3d own(50, 50, 0), others(50 + way.x(), 50 + way.y(), 0);
        const auto sides = find_two_ellipsoids(pixels, std::pair(own, others));
        EXPECT_TRUE(sides && sides->is_plus(own) && !sides->is_plus(others)) << way.x() << ' ' << way.y();
    }
}

}    // namespace
