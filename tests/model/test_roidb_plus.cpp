// ROI keys against the string-stream form that defines them; the index of planes: its walks and changes.
#include "../support/failing_reads.h"
#include "../support/temp_folder.h"
#include "keygen.h"
#include "plane_rois.h"
#include "roidb_plus.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <limits>
#include <sstream>

namespace {

namespace fs = std::filesystem;

const roi a(3, 4, 10, 5, "0"), b(1, 2, 10, 5, "1"), c(1, 9, 10, 5, "2");    // one plane, not in key order
const roi next_plane(1, 2, 11, 5, "3"), next_time(1, 2, 10, 6, "4"), last(7, 7, 0, 8, "5");

class planes : public testing::Test {
protected:
    planes()
    {
        for (const roi& r : {next_time, a, last, b, next_plane, c})
            db.entry_plus(r);
    }

    // The outlines of a plane, in the order of the walk.
    std::string walk(int t, int z)
    {
        std::string outlines;
        db.seek(t, z, 0);
        for (roi r; db.find_plus(t, z, r);)
            outlines += r.outline();
        return outlines;
    }

    roidb_plus db{"embryo"};
};

TEST_F(planes, a_walk_gives_the_rois_of_one_plane_in_the_order_they_came)
{
    EXPECT_EQ(walk(5, 10) + ' ' + walk(5, 11) + ' ' + walk(8, 0), "012 3 5");
    EXPECT_EQ(walk(5, 9) + walk(5, 12) + walk(7, 0) + walk(9, 0) + walk(-1, 0), "");
    roi r;
    db.seek(5, 10, 0);
    EXPECT_FALSE(db.find_plus(5, 11, r)) << "the cursor stands on another plane";
}

TEST_F(planes, a_walk_inside_a_walk_has_its_own_cursor)
{
    std::string outlines;
    roi r;
    roidb_plus::cursor own, inner;
    for (db.seek_iter(5, 10, 0, own); db.find_plus_iter(5, 10, r, own);) {
        outlines += r.outline();
        db.seek_iter(6, 10, 0, inner);
        db.seek(8, 0, 0);
        db.seek_iter(5, 11, 1, inner);    // only position 0 moves a cursor
        while (db.find_plus_iter(6, 10, r, inner))
            outlines += r.outline();
    }
    EXPECT_EQ(outlines, "041424");
    EXPECT_TRUE(db.find_plus(8, 0, r)) << "no walk with an own cursor moves the shared one";
}

TEST_F(planes, removing_takes_one_entry_from_map_and_index)
{
    db.entry_plus({1, 2, 10, 5, "same position"});
    EXPECT_EQ(walk(5, 10), "0121") << "the first outline stays";
    const auto revision = db.revision();
    db.remove(keygen(b));
    EXPECT_NE(db.revision(), revision);
    EXPECT_EQ(db.tz_xy_db.size(), 6u) << "one of its two entries went";
    EXPECT_EQ(walk(5, 10), "02") << "the stale entry is passed over";
    db.entry_plus(b);
    db.entry_plus(b);
    db.remove(keygen(b));
    db.entry_plus({9, 9, 10, 5, "9"});
    EXPECT_EQ(walk(5, 10), "029") << "those after it are still there";
    EXPECT_EQ(plane_rois(db, 5, 10).rois.size(), 3u);
    db.remove(roi(9, 9, 10, 5, {}));
    EXPECT_EQ(db.find_plus(keygen(b)), roi(pos4i(b), ""));
    EXPECT_EQ(db.find_plus(keygen(c)), c);

    roi r;
    db.seek(5, 10, 0);
    db.remove(a);    // the ROI under the cursor
    EXPECT_TRUE(db.find_plus(5, 10, r) && r == c);
    EXPECT_EQ(pos2i(db.t_min(), db.t_max()), pos2i(5, 8));
    db.remove(last);
    EXPECT_EQ(db.t_max(), 6);
    EXPECT_EQ(roidb_plus("").t_min() + roidb_plus("").t_max(), 0);
}

TEST_F(planes, replacing_touches_only_its_time_points)
{
    const temp_folder folder;
    const std::string file =
        folder.with("b.roi", "other\n1 2 10 4 9\n8 8 3 6 6\n8 8 3 5 7\n8 8 3 7 8\n1 2 x");
    EXPECT_TRUE(db.replace_plus(file, 5, 6) && db.name() == "other");
    EXPECT_EQ(walk(5, 3) + ' ' + walk(6, 3) + ' ' + walk(8, 0), "7 6 5");
    EXPECT_EQ(db.db.size(), 3u);
    for (const std::string& unreadable : {folder.path("missing"), folder.path("")}) {
        testing::internal::CaptureStderr();
        EXPECT_FALSE(db.replace_plus(unreadable, 6, 8));
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "roidb: Cannot open " + unreadable + "\n");
        EXPECT_EQ(db.name(), "other");
        EXPECT_TRUE(db.db.size() == 1 && db.tz_xy_db.size() == 1) << "the range is empty all the same";
    }
    EXPECT_TRUE(db.read_plus(file));    // adds, and keeps what is there
    EXPECT_EQ(walk(4, 10) + ' ' + walk(5, 3) + ' ' + walk(7, 3), "9 77 8");
}

TEST_F(planes, a_file_that_breaks_off_changes_nothing)
{
    const temp_folder folder;
    const std::string file = folder.with("b.roi", "other\n1 2 10 5 9\n8 8 3 6 666\n");
    for (off_t readable = 0; readable <= static_cast<off_t>(fs::file_size(file)); ++readable) {
        const failing_reads disk(file, readable);
        testing::internal::CaptureStderr();
        EXPECT_FALSE(db.read(file) || db.read_plus(file) || db.replace_plus(file, 5, 6)) << readable;
        const std::string line = file + ": cannot be read to its end: Input/output error\n";
        EXPECT_EQ(testing::internal::GetCapturedStderr(), line + line + line);
        EXPECT_TRUE(db.name() == "embryo" && db.db.size() == 6 && db.tz_xy_db.size() == 6) << readable;
    }
}

TEST_F(planes, what_is_no_key_names_no_roi)
{
    for (const std::string key : {"", "N/A", "00501000"}) {
        EXPECT_EQ(db.find_plus(key), roi());
        db.remove(key);
        db.db.emplace(key, a);
        EXPECT_TRUE(db.t_min() == 0 || db.t_max() == 0) << key;
        db.db.erase(key);
    }
    EXPECT_EQ(db.db.size(), 6u);
}

TEST(keygen, fields_are_what_a_string_stream_writes)
{
    using limits = std::numeric_limits<int>;
    for (int i = -1100; i <= 1102; ++i) {
        const int n = i < 1101 ? i : i == 1101 ? limits::min() : limits::max();
        std::stringstream text;
        text << std::setw(3) << std::setfill('0') << n;
        ASSERT_EQ(digit3(n), text.str());
        ASSERT_EQ(keygen({n, 1, 2, 3}), "003002" + text.str() + "001");
        ASSERT_EQ(roidb::keygen({n, n, n, n}), text.str() + text.str() + text.str() + text.str());
    }
    EXPECT_EQ(roidb::digit(-5, 6) + roidb::digit(42, 0), "0000-542");
}

TEST(keygen, decodes_fields_of_three_characters)
{
    const std::pair<std::string, pos4i> cases[] = {
        {"008073120045", {120, 45, 73, 8}},
        {keygen({1000, 0, 0, 0}), {100, 0, 0, 0}},     // a wide field shifts what follows
        {keygen({7, -12, -5, -1}), {7, -12, 0, 0}},    // a sign counts only at the front
        {"00807312004", {120, 4, 73, 8}},
        {"008073120", {120, 0, 73, 8}},
        {" +1 2x\n-3abc4", {-3, 0, 2, 1}},
    };
    for (const auto& [key, position] : cases)
        EXPECT_EQ(decode(key), position) << key;
    EXPECT_THROW((void)decode("00807312"), std::out_of_range);
}

}    // namespace
