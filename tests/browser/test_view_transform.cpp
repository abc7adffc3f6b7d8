// Where picture pixels lie on the canvas, and back: for any view.
#include "view_transform.h"

#include <gtest/gtest.h>

#include <random>

namespace {

class AnyView {
public:
    int below(int n) { return static_cast<int>(_random() % static_cast<unsigned>(n)); }
    QSize size() { return {1 + below(1500), 1 + below(1500)}; }
    QPoint point() { return {below(3000) - 1000, below(3000) - 1000}; }

    // As a person gets there.
    view_transform view(QSize picture, QSize canvas)
    {
        view_transform v;
        for (int i = below(6); i > 0; --i) {
            if (below(3) == 0)
                v.fit(picture, canvas);
            v.zoom_by(below(11) - 5, {below(canvas.width()), below(canvas.height())});
            v.pan_by({below(400) - 200, below(400) - 200});
            if (below(2) == 0)
                v.keep_in_view(picture, canvas);
        }
        return v;
    }

private:
    std::mt19937 _random{7};
};

}    // namespace

TEST(view_transform, gives_each_screen_pixel_to_one_picture_pixel)
{
    AnyView any;
    for (int i = 0; i < 20000; ++i) {
        const view_transform v = any.view(any.size(), any.size());
        const QPoint s = any.point();
        const QPoint p = v.picture_pixel(s);
        const QPoint first = v.screen_pixel(p);
        const QPoint next = v.screen_pixel(p + QPoint(1, 1));
        ASSERT_TRUE(first.x() <= s.x() && s.x() < next.x()) << v.scale() << " at " << s.x();
        ASSERT_TRUE(first.y() <= s.y() && s.y() < next.y()) << v.scale() << " at " << s.y();
        ASSERT_TRUE(v.screen_area({p, QSize(1, 1)}).contains(s));
        ASSERT_TRUE(v.picture_area({s, QSize(1, 1)}).contains(p));
        ASSERT_TRUE(v.scale() < 1 || v.picture_pixel(first) == p) << "above 1:1 each owns a screen pixel";
    }
}

TEST(view_transform, keeps_what_is_under_the_pointer_while_zooming)
{
    AnyView any;
    for (int i = 0; i < 2000; ++i) {
        view_transform v = any.view(any.size(), any.size());
        const QPoint s = any.point();
        const QPoint p = v.picture_pixel(s);
        for (const int steps : {1, 3, -2, 5, -7, 20, -40}) {
            v.zoom_by(steps, s);
            ASSERT_EQ(v.picture_pixel(s), p) << v.scale();
        }
    }
}

TEST(view_transform, zooms_in_steps_between_its_ends_and_comes_back)
{
    view_transform v;
    v.zoom_by(1, {3, 5});
    EXPECT_DOUBLE_EQ(v.scale() * v.scale(), 2);
    v.zoom_by(-1, {3, 5});
    EXPECT_TRUE(v.is_plain());
    v.zoom_by(99, {});
    EXPECT_EQ(v.scale(), 32);
    v.zoom_by(-99, {});
    EXPECT_EQ(v.scale(), 0.125);
    v.fit({300, 100}, {600, 600});    // to 2; the next steps beside it
    v.fit({250, 100}, {600, 600});    // to 2.4
    v.zoom_by(1, {});
    EXPECT_DOUBLE_EQ(v.scale() * v.scale(), 8);
    v.fit({250, 100}, {600, 600});
    v.zoom_by(-1, {});
    EXPECT_EQ(v.scale(), 2);
}

TEST(view_transform, wastes_no_border_and_fits)
{
    const struct {
        QSize picture;
        QPoint pan;
        QPointF corner;
    } cases[] = {
        {{200, 1000}, {-50, 50}, {0, 0}},
        {{200, 1000}, {500, -900}, {400, -400}},
        {{200, 1000}, {70, -30}, {70, -30}},
        {{600, 600}, {9, -9}, {0, 0}},
    };
    for (const auto& c : cases) {
        view_transform v;
        v.pan_by(c.pan);
        v.keep_in_view(c.picture, {600, 600});
        EXPECT_EQ(v.corner(), c.corner) << c.pan.x();
    }
    view_transform v;
    v.pan_by({50, 0});    // as zooming about a pointer may
    for (const auto& [way, corner] : {std::pair(9, 50), {-20, 30}, {-9999, -400}, {9999, 0}}) {
        const QPointF wasted = v.wasted({1000, 10}, {600, 600});
        v.pan_by({way, 0});
        v.keep_in_view({1000, 10}, {600, 600}, wasted);
        EXPECT_EQ(v.corner(), QPointF(corner, 0)) << way;
    }
    v.fit({300, 100}, {600, 600});
    EXPECT_EQ(v.screen_area({0, 0, 300, 100}), QRect(0, 200, 600, 200));
}
