// The detector's per-plane ROI files: their names and their text.
#include "../../support/comma_locale.h"
#include "../../support/failing_reads.h"
#include "../../support/temp_folder.h"
#include "ORV_roiio.h"

#include <gtest/gtest.h>

TEST(roiio, reads_time_point_and_focal_plane_back_from_the_name)
{
    const std::pair<const char*, pos2i> cases[] = {
        // t and z; -1: none
        {"/a-1/embryo007-042.fwd", {7, 42}},
        {"b9012-0345.roi", {12, 345}},
        {"007-042.fwd-2", {7, 42}},
        {"/007-042.d/x.fwd", {-1, -1}},
        {"07-042.fwd", {-1, -1}},
        {"007-.fwd", {-1, -1}},
        {"007-9999999.fwd", {-1, -1}},
        {"LNK_008-073.run-2024-001", {8, 73}},
        {"2024-001.b_008-073.fwd", {8, 73}},
        {"run_2024-001_008-073.2024-001.gz", {8, 73}},
        {"001-002_008-073.fwd-1", {8, 73}},
        {"008-073", {8, 73}},
    };
    for (const auto& [name, tz] : cases) {
        int t = -1, z = -1;
        EXPECT_EQ(iroifstream::name2tz(name, t, z), tz.x() >= 0) << name;
        EXPECT_EQ(pos2i(t, z), tz) << name;
    }
}

TEST(roiio, delivers_complete_records_up_to_the_first_that_is_none)
{
    const roi first(1, 2, 42, 7, "0123"), second(-3, 4, 42, 7, "2"), kept(9, 9, 9, 9, "kept");
    const std::pair<std::string, int> cases[] = {
        {"# detector 1.0\n\n \t\r\n#\n1 2 0123\n-3 4 2\n", 2},
        {"1\t2 0123\r\n\n -3 4 2 and more", 2},
        {"1 2 0123\n1.000 2 0123", 1},
        {"1 2 0123", 1},
        {"1 2 0123\n-3 4\n2 6 01\n", 1},    // the outline of no other line is taken
        {"1 2 0123\n# not before the first record\n-3 4 2\n", 1},
        {"# nothing else", 0},
    };
    const temp_folder folder;
    for (const auto& [text, expected] : cases) {
        iroifstream plane;
        plane.open(folder.with("embryo007-042.fwd", text));
        plane.seek_roi();
        roi r = kept;
        int records = 0;
        while (plane >> r)
            EXPECT_EQ(r, ++records == 1 ? first : second) << text;
        EXPECT_EQ(records, expected) << text;
        EXPECT_EQ(r, records == 0 ? kept : records == 1 ? first : second) << "as it was after a failure";
    }
    std::filesystem::create_directory(folder.path("002-001.fwd"));
    for (const std::string& name :
         {folder.path("001-001.fwd"), folder.path("002-001.fwd"), folder.with("nameless", "1 2 0123\n")}) {
        iroifstream plane;
        plane.open(name);
        EXPECT_TRUE(plane.fail() && plane.filename == name) << name;
    }
}

TEST(roiio, a_file_that_breaks_off_says_so_once)
{
    const temp_folder folder;
    const std::string name = folder.with("007-042.fwd", "#\n1 2 0123\n-3 4 2\n");
    for (const off_t readable : {2, 9, 13}) {
        const failing_reads disk(name, readable);
        iroifstream plane;
        plane.open(name);
        ASSERT_TRUE(plane.good());
        testing::internal::CaptureStderr();
        plane.seek_roi();
        roi r;
        EXPECT_EQ(!!(plane >> r), readable == 13);
        EXPECT_FALSE(plane >> r || plane >> r);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), name + ": cannot be read to its end\n");
    }
}
