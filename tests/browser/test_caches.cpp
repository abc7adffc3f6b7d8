// The caches of rasters and images: what stays, what goes, and until when it can be used.
#include "../support/temp_folder.h"
#include "ImageDB.h"
#include "keygen.h"
#include "q_roiimgdb.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QImage>

#include <limits>

namespace {

template <class Map>
std::string keys_of(const Map& map)
{
    std::string keys;
    for (const auto& entry : map)
        keys += entry.first.substr(0, 6) + ' ';
    return keys;
}

roi square(int t) { return {1, 2, 0, t, "22330011"}; }

TEST(raster_cache, keeps_three_time_points_on_either_side)
{
    q_roiimgdb rasters;
    for (int t = 0; t < 10; ++t)
        rasters.db.emplace(keygen(square(t)), new q_roiimg(square(t)));
    rasters.qrimg(square(2));
    EXPECT_EQ(rasters.db.size(), 10u) << "only making a raster drops others";
    rasters.qrimg({9, 9, 1, 2, "2301"});
    EXPECT_EQ(keys_of(rasters.db), "000000 001000 002000 002001 003000 004000 005000 ");
    rasters.qrimg(square(6));
    EXPECT_EQ(keys_of(rasters.db), "003000 004000 005000 006000 ");
    rasters.remove_after(4);
    EXPECT_EQ(keys_of(rasters.db), "003000 004000 ");
}

TEST(raster_cache, hands_out_one_mapped_raster_a_roi_that_outlives_its_entry)
{
    q_roiimgdb rasters;
    q_roiimg* const old = rasters.qrimg(square(5));
    EXPECT_EQ(rasters.qrimg({1, 2, 0, 5, "other outline"}), old);
    EXPECT_TRUE(old->size() == 4 && old->centroid().x() == 1.5 && old->centroid().y() == 2.5);
    EXPECT_EQ(old->qpointarray(), QPolygon({{1, 2}, {1, 3}, {2, 3}, {2, 2}, {1, 2}}));
    rasters.remove(square(5));
    q_roiimg* const fresh = rasters.qrimg({1, 2, 0, 5, "2301"});
    rasters.qrimg(square(50));    // drops it by distance
    EXPECT_EQ(q_shared_pixels(old, fresh), 1) << "both were dropped, and can still be compared";
    EXPECT_TRUE(is_overlap(fresh, old));
    const unsigned long before = rasters.releases(5), elsewhere = rasters.releases(50);
    rasters.release_dropped();
    EXPECT_NE(rasters.releases(5), before);
    EXPECT_EQ(rasters.releases(50), elsewhere) << "none of its rasters is gone";
}

TEST(raster_cache, makes_the_rasters_of_a_time_point_in_their_order_and_each_once)
{
    q_roiimgdb rasters;
    const roi first(1, 2, 0, 5, "2301"), second(7, 8, 0, 5, "2301"), third(3, 2, 0, 5, "2301");
    q_roiimg* const there = rasters.qrimg(second);
    const auto made = rasters.qrimgs({&third, &second, &first, &third});
    EXPECT_EQ(made, (std::vector{rasters.qrimg(third), there, rasters.qrimg(first), made[0]}));
}

TEST(raster_cache, a_plane_is_read_on_whatever_becomes_of_its_rois_and_forgets_a_raster_that_is_removed)
{
    roidb_plus rois("n");
    q_roiimgdb rasters;
    const roi first(1, 2, 0, 5, "2301"), second(1, 2, 0, 5, "22330011");
    rois.entry_plus(first);
    const auto held = rasters.plane(rois, 5, 0);
    rois.db.clear();    // past the database, which does not notice
    rois.tz_xy_db.clear();
    rois.db.emplace(keygen(second), second);
    rois.tz_xy_db.emplace("005000000000", second);
    EXPECT_EQ(*held->rois[0].key, keygen(first));
    EXPECT_EQ(*held->rois[0].record, first);
    EXPECT_EQ(rasters.raster_of(held->rois[0])->size(), 1);
    rasters.remove(second);
    EXPECT_EQ(rasters.raster_of(rasters.plane(rois, 5, 0)->rois[0])->size(), 4);
}

TEST(raster_cache, takes_every_time_point_that_a_file_may_hold)
{
    q_roiimgdb rasters;
    for (const int t : {5, std::numeric_limits<int>::max(), std::numeric_limits<int>::min(), 999})
        EXPECT_EQ(rasters.qrimg(square(t))->size(), 4);
}

TEST(image_cache, keeps_its_window_and_plane_0_of_the_time_point_after_it)
{
    int no_arguments = 0;
    const QGuiApplication application(no_arguments, nullptr);    // pixmaps need one
    const temp_folder folder;
    const QString name = QString::fromStdString(folder.path("a.jpg"));
    ASSERT_TRUE(QImage(4, 3, QImage::Format_Grayscale8).save(name));
    ImageDB images;
    for (const int t : {7, 8, 9, 11, 12, 13})
        for (const int z : {0, 1})
            EXPECT_EQ(images.img(t, z, name, 100).size(), QSize(4, 3));
    const auto first = images.img(10, 5, name, 2).cacheKey();
    const std::string kept = "008000 008001 009000 009001 010005 011000 011001 012000 ";
    EXPECT_EQ(keys_of(images.db), kept);
    EXPECT_EQ(images.img(10, 5, "gone.jpg", 2).cacheKey(), first) << "read once";

    testing::internal::CaptureStderr();
    EXPECT_TRUE(images.img(90, 4, "gone.jpg", 1).isNull() && images.img(90, 4, "gone.jpg", 1).isNull());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Cannot find gone.jpg\nCannot find gone.jpg\n");
    EXPECT_EQ(keys_of(images.db), kept) << "nothing is dropped for it";
    images.img(1, 0, name, 20);    // a window that starts below 0 drops nothing there
    EXPECT_EQ(keys_of(images.db), "001000 " + kept);
    for (const int t : {988, 989, 990, 999, 991})    // one that ends beyond the last time point
        images.img(t, 1, name, 10);
    EXPECT_EQ(keys_of(images.db), "989001 990001 991001 999001 ");
}

}    // namespace
