// The lineage file: what is written reads back; what is not sound changes nothing and names its line.
#include "../support/comma_locale.h"
#include "../support/failing_reads.h"
#include "../support/temp_folder.h"
#include "lineage_file.h"
#include "mark_files.h"

#include <gtest/gtest.h>

namespace {

roidb small_roidb()
{
    roidb rois("emb");
    for (int t = 0; t < 3; ++t)
        for (int z = 0; z < 2; ++z)
            rois.entry(roi(1, 2, z, t, "2301"));
    return rois;
}

const std::string a0 = "000000001002", a1 = "000001001002", b0 = "001000001002", b1 = "001001001002",
                  c0 = "002000001002";

const std::string sound = "NAME emb\nUNIT " + a0 + " " + a0 + "\nUNIT " + a0 + " " + a1 + "\nUNIT " + b0 +
                          " " + b0 + "\nUNIT " + c0 + " " + c0 + "\nLINK " + b0 + " " + a0 + "\nLINK " + b0 +
                          " " + a0 + "\nELITE " + a0 + "\n";

const std::string noted = sound + "EDITED " + b0 + "\nREVIEWED " + a0 + "\nREVIEWED " + c0 +
                          "\nDISMISSED joined_outline " + b0 + " " + a0 + "\nDISMISSED no_unit " + b1 +
                          "\nGAP " + a0 + " " + c0 + "\nCALLED " + a0 + " ABal  (left) \u00e9\nCALLED " + c0 +
                          " P1\n";

// Reads what is in the file, and what is said about it after the file name.
std::pair<std::optional<lineage>, std::string> read(const std::string& text)
{
    const temp_folder folder;
    const std::string path = folder.with("x.lineage", text);
    testing::internal::CaptureStderr();
    auto units = read_lineage(path, "emb", small_roidb());
    const std::string line = testing::internal::GetCapturedStderr();
    return {std::move(units), line.starts_with(path) ? line.substr(path.size()) : line};
}

}    // namespace

TEST(lineage_file, what_is_written_reads_back_to_the_byte)
{
    auto units = read(sound).first;    // a link stored twice stays so
    ASSERT_TRUE(units);
    EXPECT_EQ(heads_of_members(*units).at(a1), a0);
    const temp_folder folder;
    for (const std::string& text : {sound, noted}) {
        units = read(text).first;
        ASSERT_TRUE(units) << text;
        ASSERT_TRUE(write_lineage(folder.path("y"), "emb", *units));
        EXPECT_EQ(folder.contents("y"), text);
    }
    EXPECT_EQ(units->called.at(a0), "ABal  (left) \u00e9");
    testing::internal::CaptureStderr();
    for (const char* const name : {"", " a", "a ", "a\nUNIT", "a\tb"}) {
        units->called[c0] = name;
        EXPECT_TRUE(write_lineage(folder.path("y"), "emb", *units));
    }
    EXPECT_EQ(folder.contents("y"), noted.substr(0, noted.rfind("CALLED"))) << "what cannot be read back";
    EXPECT_NE(testing::internal::GetCapturedStderr().find(c0), std::string::npos);
    units->called.clear();
    testing::internal::CaptureStderr();
    EXPECT_FALSE(write_lineage(folder.path("no/such"), "emb", *units));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Cannot open " + folder.path("no/such") + "\n");
}

TEST(lineage_file, a_file_that_is_not_sound_is_refused_with_the_number_of_its_line)
{
    const struct {
        std::string text;
        const char* fault;
    } cases[] = {
        {"", ":0: no NAME line before the others\n"},
        {"UNIT " + a0 + " " + a0 + "\n", ":1: no NAME line before the others\n"},
        {"NAME other\n", ":1: different dataset\n"},
        {sound + "UNIT " + b1 + " 009009009009\n", ":9: no such ROI\n"},
        {sound + "UNIT N/A " + b1 + "\n", ":9: no such ROI\n"},
        {sound + "UNIT " + b1 + " " + a1 + "\n", ":9: a unit of two time points\n"},
        {sound + "\n\nUNIT " + b1 + " " + b0 + "\n", ":11: an ROI in two units\n"},
        {sound + "LINK " + c0 + " " + a0, ":9: a link between units that are not one time point apart\n"},
        {sound + "LINK " + a0 + " " + b0, ":9: a link between units that are not one time point apart\n"},
        {sound + "LINK " + b1 + " " + a0 + "\n", ":9: a link of what is no unit\n"},
        {"NAME emb\nUNIT " + a0 + " " + a1 + "\n", ":2: a unit without the ROI that names it\n"},
        {sound + "ELITE " + b1 + "\n", ":9: an elite mark on what is no unit\n"},
        {sound + "LINK " + c0, ":9: no line of a lineage file\n"},
        {sound + "GAP " + a0 + " " + b0,
         ":9: a gap between units that are not two time points apart or more\n"},
        {sound + "GAP " + c0 + " " + a0,
         ":9: a gap between units that are not two time points apart or more\n"},
        {sound + "GAP " + a1 + " " + c0, ":9: a gap between what are no units\n"},
        {sound + "EDITED " + a1, ":9: an edited mark on what is no unit\n"},
        {sound + "REVIEWED " + b1, ":9: a reviewed mark on what is no unit\n"},
        {sound + "DISMISSED waist 009009009009", ":9: a dismissal of what is no ROI\n"},
        {sound + "DISMISSED waist " + a0 + " x", ":9: a dismissal of what is no ROI\n"},
        {sound + "DISMISSED " + a0, ":9: no line of a lineage file\n"},
        {sound + "CALLED " + a0, ":9: no line of a lineage file\n"},
        {sound + "CALLED " + a1 + " P1", ":9: a name of what is no unit\n"},
        {noted + "CALLED " + a0 + " P2", ":17: a unit with two names\n"},
        {sound + "CALLED " + a0 + " P\x01", ":9: a name with control characters\n"},
    };
    for (const auto& c : cases) {
        const auto [units, said] = read(c.text);
        EXPECT_FALSE(units) << c.text;
        EXPECT_EQ(said, c.fault);
    }
}

TEST(lineage_file, a_file_cut_at_any_byte_is_refused_or_a_shorter_sound_one)
{
    for (std::size_t length = 0; length < sound.size(); ++length) {
        const auto [units, said] = read(sound.substr(0, length));
        EXPECT_EQ(said.empty(), units.has_value()) << length;
        const lineage kept = units.value_or(lineage());
        for (const auto& [child, parent] : kept.links)
            EXPECT_TRUE(kept.head_members.contains(child) && kept.head_members.contains(parent));
    }
}

TEST(lineage_file, a_file_that_breaks_off_gives_nothing_nor_does_one_of_marks)
{
    const temp_folder folder;
    const std::string units = folder.with("x.lineage", sound),
                      marks = folder.with("x.fp", "NAME emb\nFP a\n");
    for (off_t readable = 0; readable <= 14; ++readable) {
        testing::internal::CaptureStderr();
        std::set<std::string> found{"before"};
        {
            const failing_reads disk(units, readable);
            EXPECT_FALSE(read_lineage(units, "emb", small_roidb()));
        }
        {
            const failing_reads disk(marks, readable);
            read_mark_file(marks, "emb", "FP", found);
        }
        EXPECT_EQ(found.size(), 1u);
        const std::string fault = ": cannot be read to its end: Input/output error\n";
        EXPECT_EQ(testing::internal::GetCapturedStderr(), units + fault + marks + fault);
    }
}
