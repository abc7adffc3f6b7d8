// The synthetic recordings: what later tests and the demo program rely on.
#include "../support/temp_folder.h"
#include "demo_files.h"

#include "ORV_roidb.h"

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

TEST(make_demo, wrong_arguments_are_one_line_and_write_nothing)
{
    const temp_folder folder;
    fs::create_directories(folder.path("blocked/demo/000-001.jpg"));    // where an image should go
    for (const std::string arguments :
         {"", "a b", "--planes", "--unknown out", "--planes 0 out", "--planes 12x out", "--missing nan out",
          "--name ../up out", "--no-images /dev/null", "--time-points 1 --planes 2 blocked"}) {
        const int status = arguments.ends_with("null") || arguments.ends_with("blocked") ? 1 : 2;
        const std::string command = "cd " + folder.path("") + " && " MAKE_DEMO " " + arguments + " 2> lines";
        EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), status) << arguments;
        EXPECT_EQ(std::ranges::count(folder.contents("lines"), '\n'), 1) << arguments;
    }
    EXPECT_EQ(folder.files(), 2) << "the lines and the blocked one";
    EXPECT_FALSE(fs::exists(folder.path("blocked/demo.roi")));
}

}    // namespace
