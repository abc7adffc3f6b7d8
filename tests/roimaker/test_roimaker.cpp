// The ROI maker: what it answers by hand, and what comes through the pipe, from it and from broken ones.
#include "../support/temp_folder.h"
#include "ORV_outline.h"
#include "ORV_roidb.h"
#include "body.h"
#include "q_roiimg.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sys/stat.h>
#include <sys/wait.h>

namespace {

struct reply {
    int status;
    std::string out, err;
};

reply run_roimaker(const std::string& input)
{
    const temp_folder folder;
    const std::string in = folder.with("in", input);
    const std::string command =
        ROIMAKER " < " + in + " > " + folder.path("out") + " 2> " + folder.path("err");
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, folder.contents("out"), folder.contents("err")};
}

TEST(roimaker, answers_the_regions_of_a_mask_from_the_top)
{
    const std::pair<std::string, std::string> cases[] = {
        {"3\n2\n011\n110\n", "1\nregion 1 pixels 4\n1 1 0 2123303011\n"},
        {"3\n2\n000\n000\n", "0\n"},
        {"2\n2\n01\n10\n", "2\nregion 1 pixels 1\n1 1 0 2301\nregion 2 pixels 1\n2 0 1 2301\n"},
        {"3\n3\n111\n101\n111\n", "1\nregion 1 pixels 8\n1 0 0 222333000111\n"},
        {"3\n3\n110\n101\n111\n", "1\nregion 1 pixels 7\n1 0 0 2223330012103011\n"},    // touches itself
        {"5\n5\n11111\n10001\n10101\n10001\n11111\n",
         "2\nregion 1 pixels 16\n1 0 0 22222333330000011111\nregion 2 pixels 1\n2 2 2 2301\n"},
        {"2\n2\n01\n11\n", "1\nregion 1 pixels 3\n1 1 0 21233001\n"},
        {"3\n3\n110\n001\n001\n", "2\nregion 1 pixels 2\n1 0 0 233011\nregion 2 pixels 2\n2 2 1 223001\n"},
        {"3\n1\n709", "2\nregion 1 pixels 1\n1 0 0 2301\nregion 2 pixels 1\n2 2 0 2301\n"},
        {"1\n1\n1\nmore", "1\nregion 1 pixels 1\n1 0 0 2301\n"},
        {"4096\n1\n" + std::string(4096, '0'), "0\n"},
    };
    for (const auto& [mask, answer] : cases) {
        const reply r = run_roimaker(mask);
        EXPECT_EQ(r.out, answer);
        EXPECT_TRUE(r.err.empty() && r.status == 0) << mask << r.err;
    }
}

TEST(roimaker, takes_nothing_else_for_a_mask)
{
    const std::string row(4097, '1');
    for (const std::string& input : std::initializer_list<std::string>{
             "", "0\n1\n\n", "1\n0\n", "4097\n1\n" + row, "1\n4097\n1\n", "99999999999\n1\n", "x\n1\n1\n",
             "-1\n1\n1\n", " 1\n1\n1\n", "1 1\n1\n", "\n1\n", "2\n2\n11\n1\n", "2\n2\n111\n11\n",
             "2\n2\n11\n111\n", "2\n2\n11\n1x\n", "2\n2\n11\n", "2\n2\n11"}) {
        const reply r = run_roimaker(input);
        EXPECT_EQ(r.err, "roimaker: the input is no mask of up to 4096 x 4096 pixels\n") << input;
        EXPECT_TRUE(r.out == "0\n" && r.status == 1) << input;
    }
}

// Single pixels below each other, then two in one: too many for a pipe that nobody reads.
TEST(roimaker, leaves_out_the_smallest_regions_and_the_later_of_equals)
{
    std::string mask = "1\n4096\n";
    for (int i = 0; i < 2046; ++i)
        mask += "1\n0\n";
    const reply r = run_roimaker(mask + "0\n0\n1\n1\n");
    const int kept = std::stoi(r.out);
    const std::string last = std::to_string(kept);
    EXPECT_EQ(r.err, "roimaker: the answer would not fit: " + std::to_string(2047 - kept) +
                         " of the smallest regions left out\n");
    EXPECT_TRUE(r.out.size() <= 60000 && r.out.size() > 60000 - 50 && r.status == 0) << r.out.size();
    EXPECT_TRUE(r.out.ends_with(std::to_string(kept - 1) + " 0 " + std::to_string(2 * (kept - 2)) +
                                " 2301\nregion " + last + " pixels 2\n" + last + " 0 4094 223001\n"));
}

// The raster of an outline is its region, holes filled, where every row is a single run; elsewhere it may
// lack pixels, but has none too many.
bool raster_fits(const roi& r, int width, int height)
{
    std::vector<unsigned char> region(width * height);
    if (!fill_outline({r.x(), r.y()}, r.outline(), region, width, height))
        return false;
    q_roiimg raster(r);
    raster.map();
    int runs = 0, rows = 0, lacking = 0;
    for (int y = 0; y < height; ++y) {
        const int runs_before = runs;
        for (int x = 0; x < width; ++x) {
            const bool inside = region[y * width + x];
            const bool drawn = raster.value(x - raster.top_left().x(), y - raster.top_left().y()) > 0;
            runs += inside && (x == 0 || !region[y * width + x - 1]);
            lacking += inside && !drawn;
            if (drawn && !inside)
                return false;
        }
        rows += runs > runs_before;
    }
    return lacking == 0 || runs > rows;
}

TEST(makeROIs, brings_the_regions_through_the_pipe)
{
    std::mt19937 random(4);
    for (int i = 0; i < 500; ++i) {
        const int width = static_cast<int>(1 + random() % 20), height = static_cast<int>(1 + random() % 20);
        const auto solid = 2 + random() % 6;
        std::vector<unsigned char> mask(width * height);
        std::ranges::generate(mask, [&] { return random() % solid != 0; });
        const auto regions = outline_regions(mask, width, height);
        const auto made = makeROIs(mask.data(), width, height);
        ASSERT_TRUE(std::ranges::equal(made, regions, [](const roi& r, const outlined_region& region) {
            return pos2i(r.x(), r.y()) == region.start && r.outline() == region.chain;
        })) << i;
        for (const roi& r : made)
            ASSERT_TRUE(raster_fits(r, width, height)) << i << ": " << r;
    }
}

TEST(makeROIs, hands_every_byte_over_as_a_number)
{
    const temp_folder folder;
    ::chmod(
        folder
            .with("script", "#!/bin/sh\nread w; read h; read row\nprintf '1\\n\\nr %s %s %s\\n' $w $h $row\n")
            .c_str(),
        0755);
    ::setenv("ORVBROWSER_ROIMAKER", folder.path("script").c_str(), 1);
    unsigned char mask[] = {0, 10, 255, 1};
    EXPECT_EQ(makeROIs(mask, 4, 1), std::list<roi>{roi(4, 1, 0, 0, "0102551")});
    ::unsetenv("ORVBROWSER_ROIMAKER");
}

// Those that end without reading a mask that does not fit into the pipe, and those that answer rubbish.
TEST(makeROIs, survives_every_roimaker)
{
    const temp_folder folder;
    const auto open_files = [] {
        return std::ranges::distance(std::filesystem::directory_iterator("/proc/self/fd"));
    };
    testing::internal::CaptureStderr();    // what the shell says
    const auto before = open_files();
    for (const std::string lines : {"kill -9 $$", "exec 0<&-", "exec /no/such/program", "exit 1",
                                    "echo rubbish", "read w; echo 2000000000", "read w; read h; echo -3"}) {
        const int side = lines.starts_with("kill") || lines.starts_with("exec") ? 300 : 3;
        ::chmod(folder.with("script", "#!/bin/sh\n" + lines + '\n').c_str(), 0755);
        ::setenv("ORVBROWSER_ROIMAKER", folder.path("script").c_str(), 1);
        std::vector<unsigned char> mask(side * side, 1);
        (void)makeROIs(mask.data(), side, side);
        EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a child is left";
        EXPECT_EQ(open_files(), before);
    }
    testing::internal::GetCapturedStderr();
    ::unsetenv("ORVBROWSER_ROIMAKER");
}

TEST(makeROIs, leaves_the_exit_handlers_of_the_program_to_the_program)
{
    EXPECT_EXIT(
        {
            ::setenv("ORVBROWSER_ROIMAKER", "/no/such/roimaker", 1);
            (void)std::atexit([] { std::fputs("at exit\n", stderr); });
            unsigned char pixel = 1;
            (void)makeROIs(&pixel, 1, 1);
            std::exit(0);
        },
        testing::ExitedWithCode(0), "^roimaker: [^\n]*\nat exit\n$");
}

}    // namespace
