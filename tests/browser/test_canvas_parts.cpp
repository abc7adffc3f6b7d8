// What the canvas shows: the range of grey, outlines, the scale bar, tails.
#include "display_range.h"
#include "keygen.h"
#include "outline_painter.h"
#include "scale_bar.h"
#include "tails.h"

#include <gtest/gtest.h>

TEST(display_range, spreads_grey_between_its_ends)
{
    const struct {
        display_range range;
        int value, shown;
    } cases[] = {
        {{0, 255, 1}, 77, 77},    {{50, 150, 1}, 50, 0},    {{50, 150, 1}, 20, 0},  {{50, 150, 1}, 150, 255},
        {{50, 150, 1}, 200, 255}, {{50, 150, 1}, 100, 128}, {{0, 255, 2}, 64, 128}, {{0, 255, 0.5}, 128, 64},
    };
    for (const auto& c : cases)
        EXPECT_EQ(table_of(c.range)[static_cast<std::size_t>(c.value)], c.shown) << c.value;
}

// A thousandth at either end counts for nothing.
TEST(display_range, leaves_out_the_few_darkest_and_brightest)
{
    QImage image(100, 100, QImage::Format_Grayscale8);
    image.fill(QColor(90, 90, 90));
    for (int i = 0; i < 100; ++i)
        image.setPixelColor(i, 50, i < 50 ? QColor(40, 40, 40) : QColor(140, 140, 140));
    for (int i = 0; i < 10; ++i) {
        image.setPixelColor(i, 0, Qt::black);
        image.setPixelColor(i, 1, Qt::white);
    }
    EXPECT_EQ(range_of(image), (display_range{40, 140, 1}));
    image.fill(Qt::white);
    EXPECT_EQ(range_of(image), (display_range{254, 255, 1}));
    EXPECT_TRUE(range_of({}).is_plain());
}

// As wide lines are where hovering paints a part of the canvas.
TEST(outline_painter, draws_in_parts_what_it_draws_at_once)
{
    q_roiimg square({pos4i(10, 5, 0, 0), "222333000111"});
    square.map();
    for (const int steps : {1, 2, 4}) {
        view_transform view;
        view.zoom_by(steps, {0, 0});
        QImage all(70, 50, QImage::Format_RGB32);
        all.fill(Qt::black);
        QImage parts = all.copy();
        outline_painter(all, all.rect(), view, 5).draw(square, Qt::white);
        for (int x = 0; x < all.width(); ++x)
            outline_painter(parts, {x, 0, 1, all.height()}, view, 5).draw(square, Qt::white);
        EXPECT_EQ(parts, all) << steps;
    }
}

TEST(scale_bar, is_a_round_length_that_fits)
{
    const struct {
        double scale, pixel_um;
        int longest;
        double um;
    } cases[] = {{1, 0.105, 150, 10},   {1, 0.105, 200, 20},      {1, 0.105, 500, 50},
                 {32, 0.105, 150, 0.2}, {0.125, 0.105, 150, 100}, {1, 1, 150, 100}};
    for (const auto& c : cases) {
        const scale_bar bar = bar_for(c.scale, c.pixel_um, c.longest);
        EXPECT_NEAR(bar.length_um, c.um, 1e-9) << c.scale;
        EXPECT_LE(bar.pixels, c.longest);
        EXPECT_NEAR(bar.pixels * c.pixel_um / c.scale, bar.length_um, c.pixel_um / c.scale);
    }
}

namespace {

using keys = std::set<std::string>;

// Squares whose corners lie at (10 t, 10 z): each a unit.
class Squares : public curation {
public:
    Squares() { open_rois(std::make_unique<roidb_plus>("squares")); }

    std::string put(int t, int z)
    {
        const pos4i at(10 * t, 10 * z, z, t);
        m_roidb->entry_plus({at, "222333000111"});
        const std::string key = keygen(at);
        m_head_members.emplace(key, key);
        m_members_head.emplace(key, key);
        m_max_time_point = std::max(m_max_time_point, t);
        return key;
    }
};

std::string text_of(const std::vector<tail_segment>& segments)
{
    std::string text;
    for (const auto& [of, from, to] : segments)
        text += "<=>"[static_cast<int>(of)] + std::to_string(static_cast<int>(from.x())) + "," +
                std::to_string(static_cast<int>(from.y())) + "-" + std::to_string(static_cast<int>(to.x())) +
                "," + std::to_string(static_cast<int>(to.y())) + " ";
    return text;
}

}    // namespace

TEST(tails, follow_links_both_ways_and_join_fresh_daughters)
{
    Squares s;
    const std::string grandmother = s.put(0, 1), mother = s.put(1, 1), a = s.put(2, 1), b = s.put(2, 5),
                      child = s.put(3, 1);
    for (const auto& [parent, unit] : {std::pair(grandmother, mother), {mother, a}, {mother, b}, {a, child}})
        s.link(parent, unit);
    tails all(s);
    const struct {
        keys units;
        int steps, t;    // of the units, and on view
        const char* drawn;
    } cases[] = {
        {{a}, 1, 2, "<21,11-11,11 =21,11-31,11 >21,11-21,51 "},
        {{a}, 1, 3, "<21,11-11,11 =21,11-31,11 "},
        {{b}, 9, 2, "<21,51-11,11 <11,11-1,11 >21,51-21,11 "},
        {{a, b}, 0, 2, ">21,11-21,51 "},
        {{mother}, 1, 1, "<11,11-1,11 =11,11-21,11 =11,11-21,51 "},
        {{mother}, 1, 2, "<11,11-1,11 =11,11-21,11 =11,11-21,51 >21,11-21,51 "},
    };
    for (const auto& c : cases)
        EXPECT_EQ(text_of(all.of(c.units, c.steps, c.t)), c.drawn);
    s.release_child(a, child);
    EXPECT_EQ(text_of(all.of({child}, 3, 3)), "");
    EXPECT_EQ(all.near_plane(2, 3, 2), (keys{a, b}));
    EXPECT_EQ(all.near_plane(2, 4, 2), keys{b});
}
