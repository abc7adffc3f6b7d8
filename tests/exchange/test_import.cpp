// Importing label images: the same recording from whatever kind of TIFF, or one line and nothing written.
#include "../support/temp_folder.h"
#include "../support/tiff_files.h"
#include "import.h"
#include "lineage_file.h"
#include "recording_file.h"

#include <QImage>
#include <gtest/gtest.h>

#include <algorithm>

namespace {

namespace fs = std::filesystem;

using values = std::vector<std::uint32_t>;

// Two planes of 7 x 6 pixels: label 3 in both planes, with a piece that touches only at a corner, label
// `other` with a hole.
values two_planes(std::uint32_t other)
{
    const std::string rows = "33....."
                             "33.####"
                             "..3#..#"
                             "...####"
                             "......."
                             "......."

                             ".3....."
                             "......."
                             "......."
                             "......."
                             "......#"
                             "......#";
    values pixels;
    for (const char c : rows)
        pixels.push_back(c == '3' ? 3 : c == '#' ? other : 0);
    return pixels;
}

const std::string rois_of_two_planes =
    "0 0 0 0 22330011\n"    // plane, then y: the order of keys is x before y
    "2 2 0 0 2301\n"
    "3 1 0 0 22233330001111\n"
    "1 0 1 0 2301\n"
    "6 4 1 0 223001\n";

class importing : public testing::Test {
protected:
    importing() { fs::create_directory(folder.path("in")); }

    [[nodiscard]] std::string in(const std::string& name) const { return folder.path("in/" + name); }

    // What is said on standard error.
    std::string run(import_request request)
    {
        request.source = request.source.empty() ? folder.path("in") : request.source;
        request.folder = folder.path("out");
        request.name = "emb";
        testing::internal::CaptureStderr();
        result = import_recording(request, report);
        return testing::internal::GetCapturedStderr();
    }

    void expect_refused(const import_request& request, const std::string& what, const std::string& why = "")
    {
        const std::string line = run(request);
        EXPECT_EQ(result, outcome::refused) << what;
        EXPECT_EQ(std::ranges::count(line, '\n'), 1) << what << ": " << line;
        EXPECT_NE(line.find(why), std::string::npos) << what << ": " << line;
        EXPECT_FALSE(fs::exists(folder.path("out"))) << what;
    }

    [[nodiscard]] std::string rois() const { return folder.contents("out/emb.roi"); }

    temp_folder folder;
    import_report report;
    outcome result = outcome::done;
};

TEST_F(importing, reads_every_kind_of_tiff_alike)
{
    const char* const imagej = "ImageJ=1.53t\nimages=2\nslices=2\nunit=micron\nspacing=0.5\nloop=false\n";
    const struct {
        tiff_kind kind;
        std::uint32_t other;
    } cases[] = {
        {{}, 7},
        {{.bits = 8}, 255},
        {{.bits = 32}, 70000},
        {{.bits = 32}, 4294967295},
        {{.bits = 16, .format = SAMPLEFORMAT_INT}, 32767},
        {{.bits = 32, .format = SAMPLEFORMAT_IEEEFP}, 65537},
        {{.mode = "wb", .rows_per_strip = 6, .description = imagej}, 40000},
        {{.mode = "wb", .bits = 32, .compression = COMPRESSION_ADOBE_DEFLATE}, 70000},
        {{.mode = "w8", .compression = COMPRESSION_LZW}, 65535},
        {{.bits = 8, .compression = COMPRESSION_PACKBITS}, 9},
        {{.compression = COMPRESSION_LZW, .tile = 16}, 9},
        {{.mode = "wb8", .bits = 32, .tile = 16}, 70000},
    };
    for (const auto& c : cases) {
        write_tiff(in("t000.tif"), two_planes(c.other), 7, 6, c.kind);
        EXPECT_EQ(run({.replaces = true}), "");
        EXPECT_EQ(rois(), "emb\n" + rois_of_two_planes) << c.kind.mode << c.kind.bits << ' ' << c.other;
        EXPECT_EQ(report.units, 2u);
        EXPECT_EQ(report.notes.size(), 2u) << "pieces and holes are told";
    }
    roidb read("");
    ASSERT_TRUE(read.read(folder.path("out/emb.roi")));
    const auto units = read_lineage(folder.path("out/emb.lineage"), "emb", read);
    ASSERT_TRUE(units);
    EXPECT_EQ(units->head_members.count("000000000000"), 3u) << "all pieces of a label";
    EXPECT_EQ(read_recording_file(folder.path("out/emb.recording.json")).image_size, (pixel_size{7, 6}));
}

TEST_F(importing, takes_a_file_for_each_plane_and_only_the_part_that_is_asked_for)
{
    const values pixels = two_planes(9);
    for (int t = 4; t < 6; ++t)
        for (int z = 0; z < 2; ++z)
            write_tiff(in("img_z" + std::to_string(z + 1) + "_t00" + std::to_string(t) + ".TIFF"),
                       {pixels.begin() + z * 42, pixels.begin() + (z + 1) * 42}, 7, 6);
    EXPECT_EQ(run({.window = {.crop = image_crop{3, 1, 4, 5},
                              .times = index_range{5, 9},
                              .planes = index_range{2, 2}}}),
              "");
    EXPECT_EQ(rois(), "emb\n3 3 0 0 223001\n") << "what it starts with is 0";
    EXPECT_EQ(run({.window = {.bin = 2, .times = index_range{5, 5}}, .replaces = true}), "");
    EXPECT_EQ(rois(), "emb\n0 0 1 0 2301\n1 1 1 0 2301\n") << "of labels as frequent, the smallest";
    EXPECT_EQ(read_recording_file(folder.path("out/emb.recording.json")).scale.pixel_um, 0.21);
}

TEST_F(importing, refuses_in_one_line_and_writes_nothing)
{
    const import_request any;
    expect_refused(any, "no file", "no TIFF file");
    expect_refused({.source = folder.path("none")}, "no folder", "Cannot open");
    write_tiff(in("t1.tif"), two_planes(9), 7, 6);
    write_tiff(in("t2.tif"), values(42), 7, 6);
    expect_refused(any, "a page missing", "focal planes");
    write_tiff(in("t2.tif"), values(84), 6, 7);
    expect_refused(any, "another size", "6 x 7");
    write_tiff(in("t2.tif"), two_planes(9), 7, 6);
    write_tiff(in("mask2.tif"), values(42), 7, 6);
    expect_refused(any, "a stray file", "is not named like");
    fs::rename(in("mask2.tif"), in("t1000.tif"));
    expect_refused(any, "too late", "--times");
    fs::rename(in("t1000.tif"), in("t02.tif"));
    expect_refused(any, "twice the same", "same place");
    fs::remove(in("t02.tif"));
    expect_refused({.window = {.times = index_range{5, 6}}}, "no time point", "--times");
    expect_refused({.window = {.planes = index_range{2, 6}}}, "no plane", "--planes");
    expect_refused({.window = {.crop = image_crop{0, 0, 8, 2}}}, "beyond the image", "--crop");
    expect_refused({.window = {.bin = 8}}, "nothing left", "--bin");
    write_tiff(in("t1.tif"), values(1001 * 2), 1001, 2);
    expect_refused(any, "too wide", "--crop or --bin");
    write_tiff(in("t1.tif"), values(1001), 1, 1);
    expect_refused(any, "too deep", "--planes");
    write_tiff(in("t1.tif"), {0x80000000}, 1, 1, {.bits = 32, .format = SAMPLEFORMAT_INT});
    expect_refused(any, "below 0", "no labels");
    write_tiff(in("t1.tif"), {1}, 1, 1, {.bits = 16, .format = SAMPLEFORMAT_COMPLEXINT});
    expect_refused(any, "complex numbers", "of a kind that is not read");
    (void)folder.with("in/t1.tif", "II*");
    expect_refused(any, "no TIFF", "cannot be read");
}

TEST_F(importing, a_file_cut_anywhere_is_refused)
{
    const tiff_kind kinds[] = {{.mode = "wb"}, {.compression = COMPRESSION_LZW}, {.mode = "w8", .tile = 16}};
    for (const tiff_kind& kind : kinds) {
        write_tiff(in("t0.tif"), two_planes(9), 7, 6, kind);
        const std::string whole = folder.contents("in/t0.tif");
        for (std::size_t length = 0; length < whole.size(); length += 1 + whole.size() / 200) {
            (void)folder.with("in/t0.tif", whole.substr(0, length));
            expect_refused({}, std::to_string(length));
        }
    }
}

TEST_F(importing, images_come_along_in_8_bits)
{
    const tiff_kind kinds[] = {{}, {.bits = 32}, {.bits = 32, .format = SAMPLEFORMAT_IEEEFP}};
    fs::create_directory(folder.path("grey"));
    write_tiff(in("t3.tif"), values(2000), 40, 50);
    values ramp(2000);
    for (std::size_t i = 0; i < ramp.size(); ++i)
        ramp[i] = static_cast<std::uint32_t>(1000 + 10 * (i / 40));
    for (const tiff_kind& kind : kinds) {
        write_tiff(folder.path("grey/t3.tif"), ramp, 40, 50, kind);
        EXPECT_EQ(run({.images = folder.path("grey"), .replaces = true}), "");
        const QImage picture(QString::fromStdString(folder.path("out/emb/003-000.jpg")));
        ASSERT_EQ(picture.size(), QSize(40, 50));
        for (const int y : {0, 25, 49})
            EXPECT_NEAR(qGray(picture.pixel(20, y)), 255 * y / 49, 4) << y;
    }
    EXPECT_EQ(run({.images = folder.path("grey"), .range = grey_range{0, 2000}, .replaces = true}), "");
    const QImage dark(QString::fromStdString(folder.path("out/emb/003-000.jpg")));
    EXPECT_NEAR(qGray(dark.pixel(20, 0)), 127, 4);

    fs::remove_all(folder.path("out"));
    write_tiff(folder.path("grey/t3.tif"), ramp, 50, 40);
    expect_refused({.images = folder.path("grey")}, "another size", "another size");
    fs::rename(folder.path("grey/t3.tif"), folder.path("grey/t4.tif"));
    expect_refused({.images = folder.path("grey")}, "another time", "other time points");
}

TEST_F(importing, what_is_there_stays_unless_it_is_to_be_replaced_and_when_it_is_stopped)
{
    write_tiff(in("t0.tif"), two_planes(9), 7, 6);
    fs::create_directory(folder.path("out"));
    (void)folder.with("out/emb.lineage", "kept");
    EXPECT_NE(run({}).find("--force"), std::string::npos);
    EXPECT_EQ(folder.contents("out/emb.lineage"), "kept");
    import_request request{
        .source = folder.path("in"), .folder = folder.path("out"), .name = "emb", .replaces = true};
    EXPECT_EQ(import_recording(request, report, {.carry_on = [] { return false; }}), outcome::stopped);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path("out")), {}), 1);
    for (const char* const name : {"", "a b", "../a", ".a"}) {
        request.name = name;
        testing::internal::CaptureStderr();
        EXPECT_EQ(import_recording(request, report), outcome::refused);
        EXPECT_NE(testing::internal::GetCapturedStderr(), "");
    }
}

TEST_F(importing, tracks_become_links_and_gaps)
{
    // Track 1 divides into 2 and 3; 3 is not shown at 3; 4 goes on as 5 after a gap; 6 is in no track.
    const values shown[] = {{1, 0, 4, 0}, {1, 0, 4, 0}, {2, 3, 0, 0}, {2, 0, 0, 5}, {2, 3, 6, 5}};
    for (int t = 0; t < 5; ++t)
        write_tiff(in("mask00" + std::to_string(t) + ".tif"), shown[t], 4, 1);
    (void)folder.with("in/notes.tif", "other files do not matter");
    (void)folder.with("in/res_track.txt", "1\t0 1 0\r\n2 2  4 1\n3 2 4 1\n4 0 1 0\n5 3 4 4");
    EXPECT_EQ(run({.kind = import_kind::ctc}), "");
    const std::string lineage = folder.contents("out/emb.lineage");
    EXPECT_EQ(lineage.substr(lineage.find("LINK")), "LINK 001000000000 000000000000\n"
                                                    "LINK 001000002000 000000002000\n"
                                                    "LINK 002000000000 001000000000\n"
                                                    "LINK 002000001000 001000000000\n"
                                                    "LINK 003000000000 002000000000\n"
                                                    "LINK 004000000000 003000000000\n"
                                                    "LINK 004000003000 003000003000\n"
                                                    "GAP 001000002000 003000003000\n"
                                                    "GAP 002000001000 004000001000\n");
    ASSERT_EQ(report.notes.size(), 2u);
    EXPECT_NE(report.notes[0].find("their track: 3"), std::string::npos) << report.notes[0];
    EXPECT_NE(report.notes[1].find("6 at 4"), std::string::npos) << report.notes[1];
    fs::remove_all(folder.path("out"));
    EXPECT_EQ(run({.kind = import_kind::ctc, .source = folder.path("")}), "") << "found in a folder of it";
    fs::remove_all(folder.path("out"));

    const struct {
        const char* table;
        const char* why;
    } broken[] = {
        {"", "no track"},
        {"1 0 1", ":1: no four numbers"},
        {"1 0 1 0 0", ":1: no four numbers"},
        {"1 0 1 0\n2 2 4 x", ":2: no four numbers"},
        {"1 0 1 -1", ":1: no four numbers"},
        {"1 0 99999999999 0", ":1: no four numbers"},
        {"0 0 1 0", ":1: label 0"},
        {"1 2 1 0", ":1: ends before"},
        {"1 0 1 0\n\n1 2 3 0", ":3: label 1 for a second time"},
        {"1 0 1 0\n2 2 4 9", ":2: no track 9"},
        {"1 0 1 0\n2 1 4 1", ":2: begins before its parent 1"},
    };
    for (const auto& c : broken) {
        (void)folder.with("in/res_track.txt", c.table);
        expect_refused({.kind = import_kind::ctc}, c.table, c.why);
    }
    (void)folder.with("in/man_track.txt", "1 0 1 0\n");
    expect_refused({.kind = import_kind::ctc}, "two tables", "more than one");
}

}    // namespace
