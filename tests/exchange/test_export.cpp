// Exporting a recording: what a format cannot hold is told by nucleus, what is written keeps the rules of its
// format, and it is written whole or not at all.
#include "../support/temp_folder.h"
#include "ctc_check.h"
#include "export.h"
#include "import.h"
#include "keygen.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

namespace fs = std::filesystem;

const std::string square_3 = "222333000111";
const std::string square_5 = "22222333330000011111";

// A recording that a test writes down unit by unit.
struct written_recording {
    roidb rois{"rec"};
    lineage units;

    std::string unit(int x, int y, int z, int t, const std::string& outline = square_3)
    {
        const std::string head = keygen({x, y, z, t});
        rois.entry(roi(x, y, z, t, outline));
        units.head_members.emplace(head, head);
        return head;
    }

    [[nodiscard]] export_request request(const std::string& target) const
    {
        return {.rois = rois, .units = units, .target = target};
    }
};

class exporting : public testing::Test {
protected:
    // What is said on standard error.
    std::string run(export_format format, const export_request& request, const run_callbacks& callbacks = {})
    {
        testing::internal::CaptureStderr();
        result = export_recording(format, request, report, callbacks);
        return testing::internal::GetCapturedStderr();
    }

    [[nodiscard]] std::string table(const std::string& set = "out/01_RES") const
    {
        return folder.contents(set + "/res_track.txt");
    }

    // The losses of one kind: unit and detail.
    [[nodiscard]] std::vector<std::string> lost(const std::string& kind) const
    {
        std::vector<std::string> found;
        for (const loss& l : report.losses)
            if (l.kind == kind)
                found.push_back(l.head + (l.detail.empty() ? "" : ' ' + l.detail));
        return found;
    }

    // The recording comes back from its masks, and they from it.
    void expect_same_when_read_again(const std::string& set = "out/01_RES")
    {
        import_report imported;
        const import_request back{.kind = import_kind::ctc,
                                  .source = folder.path(set),
                                  .folder = folder.path("back"),
                                  .name = "rec"};
        ASSERT_EQ(import_recording(back, imported), outcome::done);
        roidb rois("");
        ASSERT_TRUE(rois.read(folder.path("back/rec.roi")));
        const auto units = read_lineage(folder.path("back/rec.lineage"), "rec", rois);
        ASSERT_TRUE(units);
        const export_request again{.rois = rois,
                                   .units = *units,
                                   .info = read_recording_file(folder.path("back/rec.recording.json")),
                                   .target = folder.path("again")};
        loss_report of_again;
        ASSERT_EQ(export_recording(export_format::ctc, again, of_again), outcome::done);
        for (const auto& file : fs::directory_iterator(folder.path(set))) {
            const std::string name = '/' + file.path().filename().string();
            EXPECT_EQ(folder.contents("again/01_RES" + name), folder.contents(set + name)) << name;
        }
    }

    temp_folder folder;
    written_recording made;
    loss_report report;
    outcome result = outcome::done;
};

using strings = std::vector<std::string>;

TEST_F(exporting, what_masks_cannot_hold_is_told_by_nucleus)
{
    const std::string a = made.unit(10, 10, 0, 0), b = made.unit(30, 10, 0, 0),
                      child = made.unit(11, 10, 0, 1), ring = made.unit(50, 10, 0, 1, square_5),
                      inner = made.unit(51, 11, 0, 1, square_3), twin = made.unit(70, 10, 0, 1, square_3),
                      other_twin = made.unit(71, 10, 0, 1, square_3), false_one = made.unit(10, 40, 0, 1);
    made.units.links = {{child, a}, {child, b}, {child, a}, {ring, b}};
    made.rois.entry(roi(80, 40, 0, 0, square_3));      // in no unit
    made.rois.entry(roi(998, 997, 0, 1, square_3));    // reaches beyond
    made.units.head_members.emplace(inner, keygen({998, 997, 0, 1}));
    made.rois.entry(roi(1, 1, 1200, 0, square_3));
    made.units.head_members.emplace(a, "0001200001001");
    made.units.elite = {a};
    made.units.called = {{b, "MS"}};
    made.units.dismissed = {{"waist", a, ""}};
    export_request request = made.request(folder.path("out"));
    request.false_positives = {false_one};
    EXPECT_EQ(run(export_format::ctc, request), "");
    EXPECT_EQ(lost("merge"), strings{child + " without its parent " + b});
    EXPECT_EQ(lost("overlap"), (strings{ring + " 9 pixels", twin + " 6 pixels"}));
    EXPECT_EQ(lost("no_unit"), strings{keygen({80, 40, 0, 0})});
    EXPECT_EQ(lost("false_positive"), strings{false_one});
    EXPECT_EQ(lost("outside"), strings{inner + " 3 pixels"});
    EXPECT_EQ(lost("mark").size() + lost("name").size() + lost("dismissal").size(), 3u);
    EXPECT_EQ(folder.contents("out/01_RES.losses.txt"), report.text());
    EXPECT_EQ(report.counts().at("merge"), 1u);
    expect_same_when_read_again();
    EXPECT_EQ(run(export_format::csv, made.request(folder.path("tables"))), "");
    EXPECT_EQ(lost("merge"), strings()) << "links.csv has them";
}

TEST_F(exporting, tracks_end_where_nuclei_divide_and_where_they_are_not_shown)
{
    const std::string a0 = made.unit(10, 10, 0, 0), a1 = made.unit(11, 10, 0, 1), b = made.unit(8, 10, 0, 2),
                      c = made.unit(14, 10, 0, 2), d = made.unit(14, 14, 0, 2),
                      later = made.unit(8, 10, 0, 5), alone = made.unit(30, 30, 2, 3);
    made.units.links = {{a1, a0}, {b, a1}, {c, a1}, {d, a1}};
    made.units.gaps = {{b, later}};
    EXPECT_EQ(run(export_format::ctc, made.request(folder.path("out"))), "");
    EXPECT_EQ(table(), "1 0 1 0\n2 2 2 1\n3 2 2 1\n4 2 2 1\n5 3 3 0\n6 5 5 2\n");
    EXPECT_EQ(lost("many_children").size(), 1u);
    EXPECT_EQ(lost("gap"), strings{later + " a track of its own, its parent " + b});
    EXPECT_TRUE(fs::exists(folder.path("out/01_RES/mask004.tif"))) << "also where there is no nucleus";
    expect_same_when_read_again();
}

// Two outlines of a pixel take both pixels of the one of two.
TEST_F(exporting, a_unit_under_others_is_one_pixel_beside_them_or_left_out)
{
    const std::string before = made.unit(0, 0, 0, 0, "2301"), after = made.unit(0, 0, 0, 2, "2301");
    (void)made.unit(0, 0, 0, 1, "2301");
    (void)made.unit(1, 0, 0, 1, "2301");
    const std::string both = made.unit(2, 0, 0, 1, "112330");    // the same two pixels, walked from their end
    made.units.links = {{both, before}, {after, both}};
    const auto expect = [&](const std::string& fate, const std::string& tracks) {
        export_request request = made.request(folder.path("out"));
        request.info.image_size = pixel_size{3, 2};
        EXPECT_EQ(run(export_format::ctc, request), "");
        EXPECT_EQ(lost("hidden"), strings{both + fate});
        EXPECT_EQ(lost("overlap"), strings{both + " 2 pixels"});
        EXPECT_EQ(table(), tracks);
        fs::remove_all(folder.path("out"));
    };
    expect(" one pixel stands for it", "1 0 2 0\n2 1 1 0\n3 1 1 0\n");
    (void)made.unit(0, 1, 0, 1, "2333001211");    // all the other pixels
    expect(" left out: no pixel is free", "1 0 0 0\n2 1 1 0\n3 1 1 0\n4 1 1 0\n5 2 2 1\n");
}

TEST_F(exporting, masks_and_table_that_do_not_fit_are_found)
{
    // A divides into B and C; D is not shown at time point 2.
    std::string a, b, c, d;
    const auto follow = [&](std::string& nucleus, int x, int t, const std::string& parent) {
        const std::string head = made.unit(x, 10, 0, t);
        if (t == 3 && &nucleus == &d)
            made.units.gaps.emplace(parent, head);
        else if (t > 0)
            made.units.links.emplace(head, parent);
        nucleus = head;
    };
    for (int t = 0; t < 5; ++t) {
        if (t < 2)
            follow(a, 10, t, a);
        if (t != 2)
            follow(d, 40, t, d);
        if (t >= 2)
            follow(b, 5, t, t == 2 ? a : b), follow(c, 15, t, t == 2 ? a : c);
    }
    EXPECT_EQ(run(export_format::ctc, made.request(folder.path("out"))), "");
    const std::string sound = table();
    ASSERT_EQ(std::ranges::count(sound, '\n'), 5);
    const std::string set = folder.path("out/01_RES");
    const auto check = [&](const std::string& text) {
        (void)folder.with("out/01_RES/res_track.txt", text);
        testing::internal::CaptureStderr();
        result = check_ctc(set, "mask", set + "/res_track.txt");
        return testing::internal::GetCapturedStderr();
    };
    EXPECT_EQ(check(sound), "");
    const struct {
        const char* text;
        const char* why;
    } broken[] = {
        {"1 0 1 0\n2 0 2 0\n3 2 4 1\n4 2 4 1\n5 3 4 2\n", "label 2 is not in the mask at time point 2"},
        {"1 0 1 0\n2 0 1 0\n3 2 4 1\n4 2 4 1\n5 3 4 3\n", ":5: begins before its parent 3"},
        {"1 0 1 0\n2 0 1 0\n3 2 4 1\n4 2 4 1\n", "label 5 of the mask is in no track at time point 3"},
        {"1 0 1 0\n2 0 1 0\n3 2 4 1\n4 2 4 1\n5 3 4 9\n", ":5: no track 9"},
        {"1 0 1 0\n2 0 1 0\n3 2 5 1\n4 2 4 1\n5 3 4 2\n", "a track ends after the last mask"},
    };
    for (const auto& one : broken) {
        const std::string line = check(one.text);
        EXPECT_EQ(result, outcome::refused) << one.text;
        EXPECT_NE(line.find(one.why), std::string::npos) << line;
        EXPECT_EQ(std::ranges::count(line, '\n'), 1) << line;
    }
    fs::remove(folder.path("out/01_RES/mask002.tif"));
    EXPECT_NE(check(sound).find("a mask is missing"), std::string::npos);
}

TEST_F(exporting, replaces_only_what_is_an_export_and_leaves_nothing_half_written)
{
    (void)made.unit(1, 1, 0, 0);
    const struct {
        export_format format;
        const char* name;
    } formats[] = {{export_format::ctc, "07_RES"},
                   {export_format::ctc, "08_GT"},
                   {export_format::geff, "graph.geff"},
                   {export_format::trackmate, "a.xml"},
                   {export_format::csv, "tables"}};
    for (const auto& f : formats) {
        export_request request = made.request(folder.path(f.name));
        EXPECT_EQ(run(f.format, request, {.carry_on = [] { return false; }}), "");
        EXPECT_EQ(result, outcome::stopped);
        EXPECT_FALSE(fs::exists(request.target)) << f.name;
        EXPECT_EQ(run(f.format, request), "");
        EXPECT_EQ(result, outcome::done) << f.name;
        EXPECT_NE(run(f.format, request).find("--force"), std::string::npos) << f.name;
        EXPECT_EQ(result, outcome::refused);
        request.replaces = true;
        EXPECT_EQ(run(f.format, request), "") << f.name;
        if (fs::is_directory(request.target)) {
            (void)folder.with(std::string(f.name) + "/thesis.doc", "kept");
            EXPECT_NE(run(f.format, request).find("not replaced"), std::string::npos) << f.name;
            EXPECT_EQ(folder.contents(std::string(f.name) + "/thesis.doc"), "kept");
        }
        request.target = "/proc/none/x";
        EXPECT_EQ(std::ranges::count(run(f.format, request), '\n'), 1) << f.name;
        EXPECT_EQ(result, outcome::refused);
    }
    EXPECT_TRUE(fs::exists(folder.path("08_GT/TRA/man_track000.tif")));
    EXPECT_EQ(folder.files(), 10) << "five exports and what each lacks";

    export_request request = made.request(folder.path(""));
    EXPECT_NE(run(export_format::ctc, request), "") << "other things are there";
    request.replaces = true;
    EXPECT_EQ(run(export_format::ctc, request), "");
    EXPECT_TRUE(fs::exists(folder.path("01_RES/mask000.tif"))) << "the first number that is free";

    const written_recording none;
    EXPECT_NE(run(export_format::ctc, none.request(folder.path("none"))).find("no unit"), std::string::npos);
    for (const auto& f : formats) {
        if (f.format == export_format::ctc)
            continue;
        EXPECT_EQ(run(f.format, none.request(folder.path("empty_") + f.name)), "");
    }
}

}    // namespace
