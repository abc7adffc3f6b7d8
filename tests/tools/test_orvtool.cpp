// orvtool as a program: what it prints and writes, and how it ends.
#include "../support/temp_folder.h"
#include "demo_files.h"
#include "demo_presets.h"
#include "lineage_file.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
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
    (void)folder.with("sound.lineage", "NAME demo\n");
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
                                 "check demo.roi",
                                 "check demo.roi --lineage there.lineage",
                                 "check demo.roi --lineage sound.lineage --format xml",
                                 "score demo.roi --rule nearest --lineage there.lineage",
                                 "score demo.roi --rule nearest --format xml",
                                 "score demo.roi --rule nearest --truth none",
                                 "compare demo.roi there.lineage",
                                 "compare demo.roi there.lineage there.lineage",
                                 "export ctc demo.roi",
                                 "export xml demo.roi --out x",
                                 "export csv demo.roi --out x",
                                 "export csv demo.roi --out x --lineage sound.lineage --fp none",
                                 "export csv demo.roi --out x --lineage sound.lineage --fp other.truth",
                                 "export csv demo.roi --out none.roi/x --lineage there.lineage",
                                 "import labels . --name x",
                                 "import ctc . --out x",
                                 "import masks . --out x --name x",
                                 "import labels . --out x --name x",
                                 "import labels . --out x --name x --bin 0",
                                 "import labels . --out x --name x --bin 2,2",
                                 "import labels . --out x --name x --crop 1,1,0,5",
                                 "import labels . --out x --name x --times 5:4",
                                 "import labels . --out x --name x --planes 1",
                                 "import labels . --out x --name x --range 5:5",
                                 "import labels . --out x --name x --pixel 0",
                                 "import labels . --out x --name x --interval inf",

                                 "score demo.roi --lineage " + there,
                                 "score demo.roi --rule nearest --truth " + other};
    for (const std::string& arguments : cases) {
        EXPECT_EQ(run(arguments), 2) << arguments;
        const std::string lines = folder.contents("lines");
        EXPECT_EQ(std::ranges::count(lines, '\n'), 1) << arguments << ": " << lines;
        EXPECT_EQ(out(), "") << arguments;
    }
    EXPECT_EQ(folder.contents("there.lineage"), "kept");
    EXPECT_EQ(folder.files(), 7) << "recording, truth, those three, out and lines";
    EXPECT_EQ(run("units demo.roi > /dev/full; exit $?"), 2);
}

TEST_F(orvtool, help_names_every_option)
{
    const struct {
        const char* command;
        std::vector<std::string> words;
    } cases[] = {
        {"", {"info", "units", "score", "compare", "import", "export"}},
        {"compare", {"--format"}},
        {"import",
         {"--out", "--name", "--force", "--images", "--range", "--bin", "--crop", "--times", "--planes",
          "--pixel", "--plane ", "--interval"}},
        {"export",
         {"--out", "--force", "--lineage", "--fp", "--image-root", "ctc", "geff", "trackmate", "csv"}},
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

// With images, without, and with touching nuclei: what leaves comes back, to the byte.
TEST_F(orvtool, masks_of_a_recording_come_back_and_leave_the_same)
{
    demo_options crowded{.time_points = 5, .planes = 20, .nuclei = 12, .width = 160, .height = 140};
    ASSERT_TRUE(apply_preset("crowded", crowded));
    crowded.time_points = 4;
    crowded.planes = 24;
    crowded.nuclei = 25;
    const demo_options options[] = {
        {.seed = 1, .time_points = 6, .planes = 24, .nuclei = 8, .width = 200, .height = 160},
        {.seed = 2, .time_points = 5, .planes = 20, .nuclei = 9, .width = 150, .height = 210},
        {.seed = 3, .time_points = 7, .planes = 16, .nuclei = 7, .width = 180, .height = 170},
        crowded};
    for (const demo_options& o : options) {
        const std::string in = "seed" + std::to_string(&o - options);
        ASSERT_TRUE(write_recording(make_recording(o), folder.path(in),
                                    &o == options ? demo_images::written : demo_images::left_out));
        ASSERT_EQ(run("units " + in + "/demo.roi --out " + in + "/demo.lineage"), 0);
        ASSERT_EQ(run("export ctc " + in + "/demo.roi --out " + in + "/one --image-root " + in), 0);
        ASSERT_EQ(run("import ctc " + in + "/one --name demo --out " + in + "/two"), 0);
        ASSERT_EQ(run("export ctc " + in + "/two/demo.roi --out " + in + "/three --image-root none"), 0);
        EXPECT_EQ(run("; diff -r " + in + "/one/01_RES " + in + "/three/01_RES"), 0) << in;
        const std::string rois = folder.contents(in + "/demo.roi");
        EXPECT_EQ(folder.contents(in + "/two/demo.roi") == rois, true) << "all outlines are exact";
    }
    EXPECT_NE(folder.contents("seed0/two/demo.recording.json").find("200"), std::string::npos)
        << "the size of the images is kept";
}

TEST_F(orvtool, compare_tells_where_two_corrections_differ)
{
    roidb rois("");
    ASSERT_TRUE(rois.read(folder.path("demo.roi")));
    ASSERT_EQ(run("units demo.roi --out a.lineage"), 0);
    EXPECT_EQ(run("compare demo.roi a.lineage a.lineage --format json"), 0);
    EXPECT_EQ(out(), "{\"only_a\": 0, \"only_b\": 0, \"units_f\": 1, \"links_f\": 1, \"differences\": []}\n");

    lineage changed = *read_lineage(folder.path("a.lineage"), "demo", rois);
    const std::size_t links = changed.links.size();
    const auto [child, parent] = *changed.links.rbegin();
    changed.links.erase(std::prev(changed.links.end()));
    changed.elite.insert(parent);
    ASSERT_GT(changed.head_members.count(child), 2u);
    changed.head_members.erase(
        std::prev(changed.head_members.upper_bound(child)));    // an ROI leaves its unit
    ASSERT_TRUE(write_lineage(folder.path("b.lineage"), "demo", changed));
    EXPECT_EQ(run("compare demo.roi a.lineage b.lineage --format json"), 1);
    const QJsonObject found = QJsonDocument::fromJson(QByteArray::fromStdString(out())).object();
    std::set<std::string> differences;
    for (const QJsonValue d : found["differences"].toArray()) {
        const auto text = [&d](const char* name) { return d[QLatin1String(name)].toString().toStdString(); };
        differences.insert(text("in") + ' ' + text("kind") + ' ' + text("unit") + ' ' +
                           std::to_string(d["t"].toInt()));
    }
    const std::string t = std::to_string(std::stoi(child.substr(0, 3)));
    EXPECT_EQ(differences,
              (std::set<std::string>{"a link " + child + ' ' + t, "a unit " + child + ' ' + t,
                                     "b unit " + child + ' ' + t,
                                     "b elite " + parent + ' ' + std::to_string(std::stoi(t) - 1)}));
    EXPECT_EQ(found["only_a"].toInt(), 2);
    EXPECT_EQ(found["only_b"].toInt(), 2);
    const auto n = static_cast<double>(links);
    EXPECT_DOUBLE_EQ(found["links_f"].toDouble(), 2 * (n - 1) / (2 * n - 1))
        << "links of the changed unit count";
    EXPECT_EQ(run("compare demo.roi a.lineage b.lineage"), 1);
    EXPECT_NE(out().find("link " + child + " only in a"), std::string::npos);
}

TEST_F(orvtool, checks_a_lineage_and_leaves_out_what_was_dismissed)
{
    ASSERT_EQ(run("units demo.roi --out demo.lineage --rule overlap"), 0);    // which leaves much to find
    ASSERT_EQ(run("check demo.roi --format json"), 1);
    const QJsonObject found = QJsonDocument::fromJson(QByteArray::fromStdString(out())).object();
    const QJsonArray findings = found["findings"].toArray();
    ASSERT_FALSE(findings.isEmpty());
    double score = 1;
    QJsonObject counts = found["counts"].toObject();
    EXPECT_EQ(counts.size(), 14);
    for (const auto& entry : findings) {
        const QJsonObject f = entry.toObject();
        EXPECT_EQ(f.keys(), (QStringList{"kind", "proposal", "score", "t", "unit", "with"}));
        EXPECT_LE(f["score"].toDouble(), score);
        score = f["score"].toDouble();
        EXPECT_EQ(f["unit"].toString().left(3).toInt(), f["t"].toInt());
        const QString kind = f["kind"].toString();
        counts[kind] = counts[kind].toInt() - 1;
    }
    EXPECT_GE(score, 0.1);
    for (const auto& left : counts)
        EXPECT_EQ(left.toInt(), 0) << "each is counted";
    ASSERT_EQ(run("check demo.roi --format csv"), 1);
    const std::string rows = out();
    EXPECT_EQ(std::ranges::count(rows, '\n'), findings.size() + 1);
    EXPECT_TRUE(rows.starts_with("kind,t,unit,with,score,proposal\n"));

    std::string lineage = folder.contents("demo.lineage");
    for (int round = 0; round < 14 && run("check demo.roi --format csv") == 1; ++round) {
        std::istringstream text(out());
        std::string row;
        std::getline(text, row);
        while (std::getline(text, row)) {
            std::ranges::replace(row, ',', ' ');
            std::istringstream words(row);
            std::string kind, t, unit;
            words >> kind >> t >> unit;
            lineage += "DISMISSED " + kind + ' ' + unit + '\n';
        }
        (void)folder.with("demo.lineage", lineage);
    }
    EXPECT_EQ(run("check demo.roi"), 0);
    EXPECT_EQ(out(), "nothing left\n");
}

}    // namespace
