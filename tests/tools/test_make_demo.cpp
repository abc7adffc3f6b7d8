// The synthetic recordings: what later tests and the demo program rely on.
#include "demo_files.h"

#include "ORV_outline.h"
#include "ORV_roidb.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <sys/wait.h>

namespace fs = std::filesystem;

namespace {

demo_options small_options()
{
    demo_options o;
    o.time_points = 9;
    o.planes = 24;
    o.nuclei = 16;
    o.width = 220;
    o.height = 180;
    o.joined_rate = 0.1;
    return o;
}

// All files below a folder: name to contents.
std::map<std::string, std::string> files_in(const fs::path& folder)
{
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file())
            continue;
        std::ostringstream text;
        text << std::ifstream(entry.path(), std::ios::binary).rdbuf();
        files[fs::relative(entry.path(), folder).string()] = text.str();
    }
    return files;
}

std::map<std::string, std::string> files_of(const demo_options& options, const fs::path& folder)
{
    fs::remove_all(folder);
    EXPECT_TRUE(write_recording(make_recording(options), folder.string()));
    return files_in(folder);
}

bool holds(const demo_nucleus& n, pos3i p)
{
    return n.in_own_axes(pos3d(p.x(), p.y(), p.z() * plane_step) - n.centre).size() < 1;
}

// Outlines of two nuclei at one time point.
struct sightings {
    int alone = 0;
    int joined = 0;
};
sightings sightings_of(const demo_recording& r, const demo_contact& c, int t)
{
    sightings s;
    for (const demo_detection& d : r.detections) {
        if (d.outline.t() != t)
            continue;
        s.joined += d.label == c.label && d.other == c.other;
        s.alone += !d.other && (d.label == c.label || d.label == c.other);
    }
    return s;
}

}    // namespace

TEST(make_demo, the_same_seed_writes_the_same_files)
{
    demo_options options = small_options();
    options.time_points = 3;
    const auto files = files_of(options, "first");
    EXPECT_EQ(files.size(), 3u * 24 + 2);
    EXPECT_TRUE(files == files_of(options, "second"));
    roidb database("");
    ASSERT_TRUE(database.read("first/demo.roi"));
    EXPECT_EQ(database.name(), "demo");
    EXPECT_EQ(database.db.size(), make_recording(options).detections.size());
    options.seed = 2;
    for (const auto& [name, contents] : files_of(options, "third"))
        EXPECT_NE(contents, files.at(name)) << name;
}

TEST(make_demo, outlines_are_closed_in_the_image_and_named_once)
{
    const demo_options options = small_options();
    std::string last_key;
    for (const demo_detection& d : make_recording(options).detections) {
        const std::string key = roidb::keygen(d.outline);
        EXPECT_LT(last_key, key);
        last_key = key;
        EXPECT_EQ(d.outline.outline().front(), '2') << key;
        EXPECT_TRUE(is_closed(d.outline.outline())) << key;
        EXPECT_GE(enclosed_pixels(d.outline.outline()), 16) << key;
        int x = d.outline.x();
        int y = d.outline.y();
        for (const char c : d.outline.outline()) {
            x += (c == '3') - (c == '1');
            y += (c == '2') - (c == '0');
            ASSERT_TRUE(x >= 0 && y >= 0 && x <= options.width && y <= options.height) << key;
        }
    }
}

TEST(make_demo, tracks_and_outlines_tell_one_story)
{
    const demo_recording r = make_recording(small_options());
    const auto& tracks = r.embryo.tracks;
    std::map<int, int> daughters;
    for (const demo_track& k : tracks) {
        EXPECT_LE(k.first, k.last);
        if (!k.parent)
            continue;
        ++daughters[k.parent];
        EXPECT_EQ(tracks[k.parent - 1].last + 1, k.first) << k.label;
    }
    EXPECT_FALSE(daughters.empty());
    for (const auto& [parent, count] : daughters)
        EXPECT_EQ(count, 2) << parent;
    EXPECT_EQ(std::ssize(r.embryo.nuclei.back()), r.options.nuclei);
    for (const demo_detection& d : r.detections) {
        int nuclei = 0;    // named by the outline and holding its start pixel
        for (const demo_nucleus& n : r.embryo.nuclei[d.outline.t()])
            nuclei += (n.label == d.label || n.label == d.other) && holds(n, d.outline);
        EXPECT_TRUE(nuclei > 0 || d.label == 0) << roidb::keygen(d.outline);
    }
}

TEST(make_demo, rates_decide_which_mistakes_there_are)
{
    demo_options options = small_options();
    const auto count = [&options](auto matches) {
        const auto detections = make_recording(options).detections;
        return std::count_if(detections.begin(), detections.end(), matches);
    };
    const auto is_false = [](const demo_detection& d) { return d.label == 0; };
    const auto is_joined = [](const demo_detection& d) { return d.other != 0; };
    const auto is_any = [](const demo_detection&) { return true; };
    EXPECT_GT(count(is_false), 0);
    EXPECT_GT(count(is_joined), 0);
    options.false_rate = options.joined_rate = options.missing_rate = 0;
    EXPECT_EQ(count(is_false), 0);
    EXPECT_EQ(count(is_joined), 0);
    const auto all = count(is_any);
    options.missing_rate = 0.5;
    EXPECT_NEAR(static_cast<double>(count(is_any)) / static_cast<double>(all), 0.5, 0.1);
}

// A unit with two parents: apart at one time point, one outline in every shared plane of the next.
TEST(make_demo, contacts_join_nuclei_that_were_apart)
{
    demo_options options = small_options();
    options.missing_rate = 0;
    const demo_recording r = make_recording(options);
    int complete = 0;
    for (const demo_contact& c : r.embryo.contacts) {
        const sightings before = sightings_of(r, c, c.first - 1);
        EXPECT_EQ(before.joined, 0) << c.label;
        const sightings now = sightings_of(r, c, c.first);
        complete += before.alone > 4 && now.joined > 2 && now.alone <= now.joined;
    }
    EXPECT_GT(complete, 0);
}

TEST(make_demo, wrong_arguments_are_one_line_and_write_nothing)
{
    const struct {
        const char* arguments;
        int exit_code;
    } cases[] = {
        {"", 2},
        {"a b", 2},
        {"--planes", 2},
        {"--unknown out", 2},
        {"--planes 0 out", 2},
        {"--planes 12x out", 2},
        {"--width 1001 out", 2},
        {"--missing nan out", 2},
        {"--name ../up out", 2},
        {"--seed -1 out", 2},
        {"--no-images /dev/null", 1},
        {"--no-images /dev/null/below", 1},
        {"--time-points 1 --planes 2 blocked", 1},
    };
    fs::create_directories("blocked/demo/000-001.jpg");    // a folder where an image should go
    for (const auto& c : cases) {
        const std::string command = std::string(MAKE_DEMO) + ' ' + c.arguments + " 2>&1";
        FILE* pipe = popen(command.c_str(), "r");
        ASSERT_NE(pipe, nullptr);
        std::string output;
        for (int byte = 0; (byte = std::fgetc(pipe)) != EOF;)
            output += static_cast<char>(byte);
        EXPECT_EQ(WEXITSTATUS(pclose(pipe)), c.exit_code) << c.arguments;
        EXPECT_EQ(std::count(output.begin(), output.end(), '\n'), 1) << c.arguments << '\n' << output;
    }
    EXPECT_FALSE(fs::exists("out"));
    EXPECT_FALSE(fs::exists("blocked/demo.roi"));
}
