// orvtool as a program: what it prints and writes, and how it ends.
#include "../support/temp_folder.h"
#include "demo_files.h"
#include "lineage_file.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

#include <algorithm>
#include <sys/wait.h>

namespace {

// A folder with a small recording, in which commands are run.
class orvtool : public testing::Test {
protected:
    void SetUp() override
    {
        const demo_options options{.time_points = 6, .planes = 24, .nuclei = 8, .width = 200, .height = 160};
        ASSERT_TRUE(write_recording(make_recording(options), folder.path(""), demo_images::left_out));
    }

    // The exit state; what it prints is in `out` and `lines`.
    int run(const std::string& arguments)
    {
        const std::string command =
            "cd " + folder.path("") + " && " ORVTOOL " " + arguments + " > out 2> lines";
        const int status = std::system(command.c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    [[nodiscard]] std::string out() const { return folder.contents("out"); }

    temp_folder folder;
};

TEST_F(orvtool, wrong_use_and_files_are_one_line_and_write_nothing)
{
    const std::string there = folder.with("there.lineage", "kept");
    const std::string other = folder.with("other.truth", "NAME other\n");
    const std::string cases[] = {"",
                                 "nothing",
                                 "info",
                                 "info a b",
                                 "info none.roi",
                                 "info demo.roi --lineage none",
                                 "units demo.roi --out",
                                 "units demo.roi --rule best",
                                 "units demo.roi --share 1.5",
                                 "units demo.roi --share nan",
                                 "units demo.roi --unknown",
                                 "units demo.roi --force=yes",
                                 "units demo.roi --out there.lineage",
                                 "units demo.roi --out none/x.lineage",
                                 "units none.roi --out new.lineage",
                                 "score demo.roi",
                                 "score demo.roi --rule nearest --lineage there.lineage",
                                 "score demo.roi --rule nearest --format xml",
                                 "score demo.roi --rule nearest --truth none",

                                 "score demo.roi --lineage " + there,
                                 "score demo.roi --rule nearest --truth " + other};
    for (const std::string& arguments : cases) {
        EXPECT_EQ(run(arguments), 2) << arguments;
        const std::string lines = folder.contents("lines");
        EXPECT_EQ(std::ranges::count(lines, '\n'), 1) << arguments << ": " << lines;
        EXPECT_EQ(out(), "") << arguments;
    }
    EXPECT_EQ(folder.contents("there.lineage"), "kept");
    EXPECT_EQ(folder.files(), 6) << "recording, truth, those two, out and lines";
    EXPECT_EQ(run("units demo.roi > /dev/full; exit $?"), 2);
}

TEST_F(orvtool, help_names_every_option)
{
    const struct {
        const char* command;
        std::vector<std::string> words;
    } cases[] = {
        {"", {"info", "units", "score"}},
        {"info", {"--lineage"}},
        {"units", {"--out", "--force", "--rule", "--share"}},
        {"score", {"--lineage", "--rule", "--share", "--truth", "--format"}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(run(std::string(c.command) + " --help"), 0) << c.command;
        for (const std::string& word : c.words)
            EXPECT_TRUE(out().find(word) != std::string::npos) << c.command << ' ' << word;
    }
}

TEST_F(orvtool, makes_units_that_score_well_and_writes_them)
{
    ASSERT_EQ(run("units demo.roi"), 0);
    const std::string counted = out();
    EXPECT_FALSE(std::filesystem::exists(folder.path("demo.lineage"))) << "nothing was asked for";
    ASSERT_EQ(run("units demo.roi --out demo.lineage"), 0);
    EXPECT_EQ(out(), counted);
    roidb rois("");
    ASSERT_TRUE(rois.read(folder.path("demo.roi")));
    const auto made = read_lineage(folder.path("demo.lineage"), "demo", rois);
    ASSERT_TRUE(made);
    EXPECT_EQ(made->head_members.size(), rois.db.size()) << "every ROI is in a unit";
    ASSERT_EQ(run("info demo.roi"), 0);
    EXPECT_NE(out().find(counted), std::string::npos) << out();
    EXPECT_NE(out().find("ROIs " + std::to_string(rois.db.size()) + "\ntime points 6\n"), std::string::npos);

    const auto score = [&](const std::string& arguments) {
        EXPECT_EQ(run("score demo.roi --format json " + arguments), 0);
        return QJsonDocument::fromJson(QByteArray::fromStdString(out())).object();
    };
    const QJsonObject of_file = score("");
    EXPECT_EQ(of_file, score("--rule nearest"));
    EXPECT_NE(of_file, score("--rule overlap"));
    for (const char* key : {"units", "links", "divisions"})
        EXPECT_EQ(of_file[key].toObject().keys(), QStringList({"f", "precision", "recall"})) << key;
    EXPECT_GT(of_file["units"]["recall"].toDouble(), 0.9);
    EXPECT_GT(of_file["det"].toDouble(), 0.9);
    EXPECT_GT(of_file["tra"].toDouble(), 0.9);
    EXPECT_EQ(run("units demo.roi --out demo.lineage --force --share 1"), 0);
    EXPECT_NE(out(), counted);
}

}    // namespace
