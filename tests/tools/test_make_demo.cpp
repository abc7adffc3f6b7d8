// The synthetic recordings: what later tests and the demo program rely on.
#include "../support/temp_folder.h"
#include "demo_files.h"

#include "ORV_outline.h"
#include "ORV_roidb.h"
#include "demo_presets.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sys/wait.h>

namespace {

namespace fs = std::filesystem;

const demo_options small_options{
    .time_points = 9, .planes = 24, .nuclei = 16, .width = 220, .height = 180, .joined_rate = 0.1};

TEST(make_demo, the_same_seed_writes_the_same_files)
{
    demo_options options = small_options;
    options.time_points = 2;
    const temp_folder first, second;
    EXPECT_TRUE(write_recording(make_recording(options), first.path("")));
    EXPECT_TRUE(write_recording(make_recording(options), second.path("")));
    EXPECT_EQ(std::distance(fs::recursive_directory_iterator(first.path("")), {}), 2 * 24 + 3);
    for (const std::string name : {"demo.roi", "demo.truth", "demo/000-000.jpg", "demo/001-023.jpg"})
        EXPECT_TRUE(first.contents(name) == second.contents(name) && !first.contents(name).empty()) << name;
    roidb database("");
    ASSERT_TRUE(database.read(first.path("demo.roi")));
    EXPECT_EQ(database.db.size(), make_recording(options).detections.size());
    options.seed = 2;
    EXPECT_TRUE(write_recording(make_recording(options), second.path("")));
    EXPECT_NE(first.contents("demo.roi"), second.contents("demo.roi"));
}

// FNV-1a: what the program writes by default is what it wrote before there were presets.
std::uint64_t hash_of(const std::string& text)
{
    std::uint64_t hash = 0xcbf29ce484222325u;
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3u;
    return hash;
}

TEST(make_demo, the_default_recording_stays_what_it_was)
{
    const temp_folder folder;
    const std::string command = MAKE_DEMO " --no-images " + folder.path("");
    ASSERT_EQ(std::system((command + " && cd " + folder.path("") +
                           " && cp demo.roi roi && cp demo.truth truth && " + command +
                           " --preset packed --preset demo")
                              .c_str()),
              0);
    EXPECT_EQ(hash_of(folder.contents("roi")), 3599036335913895499u);
    EXPECT_EQ(hash_of(folder.contents("truth")), 16124280509216897062u);
    EXPECT_EQ(folder.contents("roi"), folder.contents("demo.roi")) << "demo takes back all of packed";
    EXPECT_EQ(folder.contents("truth"), folder.contents("demo.truth"));
}

// The pixels inside an outline, in an image of the recording's size.
std::vector<unsigned char> filled(const roi& r, const demo_options& o)
{
    std::vector<unsigned char> mask(static_cast<std::size_t>(o.width) * o.height);
    EXPECT_TRUE(fill_outline({r.x(), r.y()}, r.outline(), mask, o.width, o.height)) << r;
    return mask;
}

TEST(make_demo, the_parts_of_a_joined_outline_lie_in_it_and_apart)
{
    for (const char* preset : {"crowded", "packed", "noisy"}) {
        demo_options options;
        ASSERT_TRUE(apply_preset(preset, options));
        options.time_points = 3;
        int joined = 0;
        for (const demo_detection& d : make_recording(options).detections) {
            ASSERT_EQ(d.parts.size(), d.other ? 2u : 0u) << preset << ' ' << d.outline;
            if (!d.other)
                continue;
            ++joined;
            const auto whole = filled(d.outline, options);
            const auto one = filled(d.parts[0].outline, options);
            const auto other = filled(d.parts[1].outline, options);
            for (std::size_t i = 0; i < whole.size(); ++i)
                ASSERT_LE(one[i] + other[i], whole[i]) << preset << ' ' << d.outline;
        }
        EXPECT_GT(joined, 0) << preset;
    }
    demo_options options{.seed = 12, .joined_rate = 0.3, .crowding = {.truth_of_parts = true}};
    std::vector<int> left;    // where one of the two lies deeper in the other than in itself
    for (const demo_detection& d : make_recording(options).detections)
        if (d.parts.size() == 1)
            left = {d.label, d.other, d.parts[0].label};
    EXPECT_EQ(left, (std::vector{26, 27, 27}));
}

TEST(make_demo, wrong_arguments_are_one_line_and_write_nothing)
{
    const temp_folder folder;
    fs::create_directories(folder.path("blocked/demo/000-001.jpg"));    // where an image should go
    for (const std::string arguments :
         {"", "a b", "--planes", "--unknown out", "--planes 0 out", "--planes 12x out", "--preset huge out",
          "--missing nan out", "--name ../up out", "--no-images /dev/null",
          "--time-points 1 --planes 2 blocked"}) {
        const int status = arguments.ends_with("null") || arguments.ends_with("blocked") ? 1 : 2;
        const std::string command = "cd " + folder.path("") + " && " MAKE_DEMO " " + arguments + " 2> lines";
        EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), status) << arguments;
        EXPECT_EQ(std::ranges::count(folder.contents("lines"), '\n'), 1) << arguments;
    }
    EXPECT_EQ(folder.files(), 2) << "the lines and the blocked one";
    EXPECT_FALSE(fs::exists(folder.path("blocked/demo.roi")));
}

}    // namespace
