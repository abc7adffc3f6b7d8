// The ROI maker: what it answers by hand, and what comes through the pipe, from it and from broken ones.
#include "../support/temp_folder.h"
#include "ORV_outline.h"
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
    const struct {
        const char *mask, *answer;
    } cases[] = {
        {"3\n2\n011\n110\n", "1\nregion 1 pixels 4\n1 1 0 2123303011\n"},
        {"3\n2\n000\n000\n", "0\n"},
        {"2\n2\n01\n10\n", "2\nregion 1 pixels 1\n1 1 0 2301\nregion 2 pixels 1\n2 0 1 2301\n"},
        {"3\n3\n111\n101\n111\n", "1\nregion 1 pixels 8\n1 0 0 222333000111\n"},
        {"3\n1\n709", "2\nregion 1 pixels 1\n1 0 0 2301\nregion 2 pixels 1\n2 2 0 2301\n"},
        {"1\n1\n1\nmore", "1\nregion 1 pixels 1\n1 0 0 2301\n"},
    };
    for (const auto& c : cases) {
        const reply r = run_roimaker(c.mask);
        EXPECT_EQ(r.out, c.answer);
        EXPECT_TRUE(r.err.empty() && r.status == 0) << c.mask << r.err;
    }
    EXPECT_EQ(run_roimaker("4096\n1\n" + std::string(4096, '1') + '\n').status, 0);
}

TEST(roimaker, takes_nothing_else_for_a_mask)
{
    for (const std::string& input :
         {std::string(), std::string("0\n1\n\n"), std::string("1\n0\n"), "4097\n1\n" + std::string(4097, '1'),
          std::string("1\n4097\n1\n"), std::string("99999999999\n1\n"), std::string("x\n1\n1\n"),
          std::string("-1\n1\n1\n"), std::string(" 1\n1\n1\n"), std::string("1 1\n1\n"), std::string("\n1\n"),
          std::string("2\n2\n11\n1\n"), std::string("2\n2\n111\n11\n"), std::string("2\n2\n11\n111\n"),
          std::string("2\n2\n11\n1x\n"), std::string("2\n2\n11\n"), std::string("2\n2\n11")}) {
        const reply r = run_roimaker(input);
        EXPECT_EQ(r.err, "roimaker: the input is no mask of up to 4096 x 4096 pixels\n") << input;
        EXPECT_TRUE(r.out == "0\n" && r.status == 1) << input;
    }
}

// Single pixels from the top, then a square: too many of them for a pipe that nobody reads.
TEST(roimaker, leaves_out_the_smallest_regions_and_the_later_of_equals)
{
    std::string mask = "200\n103\n";
    for (int y = 0; y < 100; ++y)
        for (int x = 0; x < 201; ++x)
            mask += x == 200 ? '\n' : (x + y) % 2 == 0 ? '1' : '0';
    mask += std::string(200, '0') + '\n';
    for (int y = 0; y < 2; ++y)
        mask += "11" + std::string(198, '0') + '\n';
    const reply r = run_roimaker(mask);
    const int kept = std::stoi(r.out);
    EXPECT_EQ(r.err, "roimaker: the answer would not fit: " + std::to_string(10001 - kept) +
                         " of the smallest regions left out\n");
    EXPECT_TRUE(r.out.size() <= 60000 && r.out.size() > 60000 - 50 && r.status == 0) << r.out.size();
    const std::string last = std::to_string(kept);
    EXPECT_TRUE(r.out.ends_with("region " + last + " pixels 4\n" + last + " 0 101 22330011\n"));
    const int before_last = kept - 2;    // counted from 0, a hundred of them in a row
    EXPECT_NE(r.out.find("\n" + std::to_string(kept - 1) + ' ' +
                         std::to_string(before_last % 100 * 2 + before_last / 100 % 2) + ' ' +
                         std::to_string(before_last / 100) + " 2301\n"),
              std::string::npos);
}

struct mask {
    int width, height;
    std::vector<unsigned char> pixels = std::vector<unsigned char>(width * height);
};

// From noise to nearly full, so that there are regions of all shapes, holes, and regions in holes.
mask random_mask(std::mt19937& random)
{
    mask m{static_cast<int>(1 + random() % 20), static_cast<int>(1 + random() % 20)};
    const auto density = 10 + random() % 85;
    for (unsigned char& pixel : m.pixels)
        pixel = random() % 100 < density;
    return m;
}

// What background that also connects through corners cannot reach from outside.
std::vector<unsigned char> holes_filled(const mask& m)
{
    std::vector<unsigned char> outside(m.pixels.size());
    const auto is_outside = [&](int x, int y) {
        return x < 0 || y < 0 || x >= m.width || y >= m.height || outside[y * m.width + x];
    };
    for (bool changed = true; changed;) {
        changed = false;
        for (int i = 0; i < m.width * m.height; ++i)
            for (int n = 0; n < 9 && !m.pixels[i] && !outside[i]; ++n)
                if (is_outside(i % m.width + n % 3 - 1, i / m.width + n / 3 - 1))
                    outside[i] = changed = true;
    }
    for (unsigned char& pixel : outside)
        pixel = !pixel;
    return outside;
}

bool has_single_runs(const std::vector<unsigned char>& pixels, int width)
{
    for (auto row = pixels.begin(); row != pixels.end(); row += width) {
        const auto run = std::find(row, row + width, 1);
        if (std::find(std::find(run, row + width, 0), row + width, 1) != row + width)
            return false;
    }
    return true;
}

// The raster of an ROI as a mask of the size of m.
std::vector<unsigned char> mapped(const roi& r, const mask& m)
{
    q_roiimg raster(r);
    raster.map();
    std::vector<unsigned char> pixels;
    for (int i = 0; i < m.width * m.height; ++i)
        pixels.push_back(
            raster.value(i % m.width - raster.top_left().x(), i / m.width - raster.top_left().y()) > 0);
    return pixels;
}

TEST(makeROIs, encloses_what_it_was_given)
{
    std::mt19937 random(4);
    int exact_rasters = 0;
    for (int i = 0; i < 3000; ++i) {
        mask m = random_mask(random);
        std::vector<unsigned char> enclosed(m.pixels.size());
        for (const roi& r : makeROIs(m.pixels.data(), m.width, m.height)) {
            std::vector<unsigned char> own(m.pixels.size());
            ASSERT_TRUE(fill_outline({r.x(), r.y()}, r.outline(), own, m.width, m.height)) << r.outline();
            std::transform(own.begin(), own.end(), enclosed.begin(), enclosed.begin(), std::bit_or<>());
            if (has_single_runs(own, m.width)) {
                ASSERT_EQ(mapped(r, m), own) << r.outline();
                ++exact_rasters;
            }
        }
        ASSERT_EQ(enclosed, holes_filled(m)) << "mask " << i;
    }
    EXPECT_GT(exact_rasters, 3000);
}

// Those that end without reading a mask that does not fit into the pipe, and those that answer rubbish.
TEST(makeROIs, survives_every_roimaker)
{
    const temp_folder folder;
    const auto open_files = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    testing::internal::CaptureStderr();    // what the shell says
    const auto before = open_files();
    for (const auto& [lines, side] : {std::pair("exit 1", 300),
                                      {"kill -9 $$", 300},
                                      {"exec 0<&-", 300},
                                      {"exec /no/such/program", 300},
                                      {"exit 1", 3},
                                      {"echo rubbish", 3},
                                      {"read w; echo 2000000000", 3},
                                      {"read w; read h; echo -3", 3}}) {
        ::chmod(folder.with("script", std::string("#!/bin/sh\n") + lines + '\n').c_str(), 0755);
        ::setenv("ORVBROWSER_ROIMAKER", folder.path("script").c_str(), 1);
        std::vector<unsigned char> pixels(side * side, 1);
        (void)makeROIs(pixels.data(), side, side);
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

TEST(makeROIs, is_there_when_it_is_an_absolute_path_of_a_program)
{
    const temp_folder folder;
    for (const auto& [path, is_there] : {std::pair(std::string("/bin/true"), true),
                                         {"/bin", false},
                                         {"true", false},
                                         {"/no/such/roimaker", false},
                                         {folder.with("data", ""), false},
                                         {"", true}}) {
        ::setenv("ORVBROWSER_ROIMAKER", path.c_str(), 1);
        EXPECT_EQ(is_roimaker_there(), is_there) << path;
    }
    ::unsetenv("ORVBROWSER_ROIMAKER");
}

}    // namespace
