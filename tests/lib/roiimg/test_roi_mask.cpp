// The raster of an ROI: box, polygon and mask of any outline, and the pixels two rasters share.
#include "ORV_roiimg.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

namespace {

using rows = std::vector<std::string>;

rows picture_of(const roiimg& raster)
{
    rows picture(raster.height(), std::string(raster.width(), '.'));
    for (int i = 0; i < raster.width() * raster.height(); ++i)
        if (raster.value(i % raster.width(), i / raster.width()) != 0)
            picture[i / raster.width()][i % raster.width()] = '#';
    return picture;
}

// The rules of the fill word by word, on a canvas with a margin that no step can leave.
rows picture_by_rules(const roiimg& box)
{
    constexpr int margin = 3;
    rows canvas(box.height() + 2 * margin, std::string(box.width() + 2 * margin, '.'));
    const auto at = [&](int x, int y) -> char& { return canvas.at(y + margin).at(x + margin); };
    const auto run = [&](int x, int y, char c) {
        for (; x < box.width() && at(x, y) != '2'; ++x)
            at(x, y) = c;
    };
    int cx = box.x() - box.top_left().x(), cy = box.y() - box.top_left().y();
    char previous = '2';
    for (const char step : box.outline()) {
        if (step == '0') {
            at(cx - 1, --cy) = '2';
            run(cx, cy, '.');
        } else if (step == '1') {
            at(--cx, cy) = '2';
            if (previous == '2')
                run(cx + 1, cy, '#');
        } else if (step == '2') {
            at(cx, cy++) = '2';
            if (at(cx, cy) != '2' && at(cx + 1, cy) != '2')
                run(cx + 1, cy - 1, '#');
        } else if (step == '3') {
            at(cx++, cy - 1) = '2';
            if (previous == '0')
                run(cx, cy - 1, '#');
        } else
            continue;
        previous = step;
    }
    rows picture;
    for (int y = margin; y < box.height() + margin; ++y) {
        std::ranges::replace(canvas[y], '2', '#');
        picture.push_back(canvas[y].substr(margin, box.width()));
    }
    return picture;
}

class mapped : public roiimg {
public:
    explicit mapped(roi r) : roiimg(std::move(r)) { map(); }
};

TEST(roi_mask, fills_any_outline_by_the_rules)
{
    std::mt19937 random(3);
    const std::string alphabets[] = {"0123", "0123x \n", "22233301", "0011123", "23"};
    for (int i = 0; i <= 3000; ++i) {
        const std::string& alphabet = alphabets[i % 5];
        std::string outline;
        for (int n = i < 3000 ? 1 + i % 300 : 100'000; n > 0; --n)
            outline += alphabet[random() % alphabet.size()];
        for (std::size_t n = outline.size(); i % 2 == 0 && n-- > 0;)    // back on the same way
            outline += static_cast<char>(outline[n] ^ 2);
        const mapped raster({40 - i, i, 0, 0, outline});
        ASSERT_EQ(picture_of(raster), picture_by_rules(raster)) << outline;
    }
}

TEST(roi_mask, box_that_is_too_large_gets_an_empty_mask_and_one_line)
{
    constexpr int top = std::numeric_limits<int>::max();
    const std::pair<roi, int> cases[] = {{{5, 6, 1, 2, "2" + std::string(4096, '3')}, 4096},
                                         {{5, 6, 1, 2, "2" + std::string(4097, '3')}, 0},
                                         {{5, 6, 1, 2, std::string(4096, '0')}, 0},
                                         {{-top - 1, top, 1, 2, "1"}, 0}};
    for (const auto& [r, pixels] : cases) {
        testing::internal::CaptureStderr();
        mapped raster(r);
        raster.map();
        const std::string lines = testing::internal::GetCapturedStderr();
        EXPECT_EQ(std::count(lines.begin(), lines.end(), '\n'), pixels == 0) << lines;
        EXPECT_TRUE(raster.size() == pixels && raster.width() * raster.height() == std::max(pixels, 1));
    }
}

TEST(roi_mask, shared_pixels_are_those_of_both_masks)
{
    const auto frame = [](int x, int y) { return roi(x, y, 0, 0, "233332221110330111222333330000011111"); };
    const mapped a(frame(10, 10)), b(frame(11, 11)), below(frame(10, 15)), in_gap({11, 11, 0, 0, "233011"});
    const mapped corner({14, 14, 0, 0, "22330011"});
    const roiimg box(frame(10, 10));    // not mapped: covers its whole box
    const std::tuple<const roiimg&, const roiimg&, int> cases[] = {
        {a, a, 17}, {a, b, 2}, {a, corner, 1}, {a, in_gap, 0}, {a, below, 0}, {box, b, 8}, {b, box, 8}};
    for (const auto& [one, other, shared] : cases) {
        EXPECT_EQ(shared_pixels(one, other), shared);
        EXPECT_EQ(share_a_pixel(one, other), shared != 0);
    }
}

}    // namespace
