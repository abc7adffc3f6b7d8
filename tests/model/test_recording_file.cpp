// The file that describes a recording: what is written reads back, what is wrong is one line and the
// defaults.
#include "../support/temp_folder.h"
#include "recording_file.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

TEST(recording_file, what_is_written_reads_back)
{
    const temp_folder folder;
    const std::string path = recording_file_of(folder.path("a.b.roi"));
    EXPECT_EQ(path, folder.path("a.b.recording.json"));
    EXPECT_EQ(recording_file_of("x/a.b"), "x/a.b.recording.json");
    testing::internal::CaptureStderr();
    EXPECT_EQ(read_recording_file(path), recording_info()) << "there is none";
    const recording_info cases[] = {{},
                                    {{0.2, 1}, 60, {}},
                                    {{0.1625, 2.5}, 0.1, key_range{3, 999}},
                                    {{}, {}, key_range{7, 7}, key_range{0, 12}, pixel_size{640, 480}}};
    for (const recording_info& info : cases) {
        ASSERT_TRUE(write_recording_file(path, info));
        EXPECT_EQ(read_recording_file(path), info) << folder.contents("a.b.recording.json");
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    const recording_info told = read_recording_file(folder.with("x", R"({"plane_um": 2, "scope": ["a"]})"));
    EXPECT_EQ(told.scale, (physical_scale{0.105, 2}));
    ASSERT_TRUE(write_recording_file(path, told));
    EXPECT_NE(folder.contents("a.b.recording.json").find("scope"), std::string::npos) << "others' members";
    EXPECT_EQ(read_recording_file(path), told);
    std::string numbers = "0";    // indented, they take five times the room
    for (int i = 1; i < 300000; ++i)
        numbers += ",1";
    const recording_info long_one =
        read_recording_file(folder.with("y", "{\"of_others\": [" + numbers + "]}"));
    ASSERT_TRUE(!long_one.further.empty() && write_recording_file(path, long_one));
    EXPECT_EQ(read_recording_file(path), long_one);
}

TEST(recording_file, what_is_wrong_is_one_line_and_the_defaults)
{
    const temp_folder folder;
    const std::string cases[] = {"",
                                 "[]",
                                 "{",
                                 R"({"plane_um": 2, "pixel_um": 0})",
                                 R"({"plane_um": 2, "pixel_um": "0.1"})",
                                 R"({"plane_um": 2, "pixel_um": 1e999})",
                                 R"({"plane_um": -2})",
                                 R"({"plane_um": 1e-9})",
                                 R"({"interval_s": null})",
                                 R"({"focal_planes": [0]})",
                                 R"({"focal_planes": [0, 1000]})",
                                 R"({"focal_planes": [-1, 5]})",
                                 R"({"focal_planes": [5, 4]})",
                                 R"({"focal_planes": [0.5, 4]})",
                                 R"({"focal_planes": 4})",
                                 R"({"time_points": [2, 1]})",
                                 R"({"image_size": [0, 5]})",
                                 "{}" + std::string(1 << 21, ' '),
                                 std::string(5000, '[')};
    for (const std::string& text : cases) {
        const std::string path = folder.with("x.recording.json", text);
        testing::internal::CaptureStderr();
        EXPECT_EQ(read_recording_file(path), recording_info()) << text.substr(0, 60);
        const std::string line = testing::internal::GetCapturedStderr();
        EXPECT_TRUE(line.starts_with(path + ": ") && std::ranges::count(line, '\n') == 1) << line;
    }
}

}    // namespace
