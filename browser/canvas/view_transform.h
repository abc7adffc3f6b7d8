// view_transform.h - where the pixels of the picture lie on the canvas, exact both ways.
//
// Picture pixels are image pixels; screen pixels count from the top-left corner of the canvas. A screen pixel
// belongs to the picture pixel that its centre lies in: below 1:1 some picture pixels own none, above 1:1
// each owns whole ones.
#pragma once
#include <QPoint>
#include <QPointF>
#include <QRect>
#include <QSize>

class view_transform {
public:
    static constexpr double smallest_scale = 0.125;
    static constexpr double largest_scale = 32;

    [[nodiscard]] double scale() const noexcept { return _scale; }       // screen pixels per picture pixel
    [[nodiscard]] QPointF corner() const noexcept { return _corner; }    // of the picture, on the screen
    [[nodiscard]] bool is_plain() const noexcept { return _scale == 1 && _corner == QPointF(0, 0); }
    bool operator==(const view_transform&) const noexcept = default;

    // The picture pixel p with screen_pixel(p) <= s < screen_pixel(p + (1, 1)), in x and in y.
    [[nodiscard]] QPoint picture_pixel(QPoint s) const noexcept;
    [[nodiscard]] QPoint screen_pixel(QPoint p) const noexcept;    // the first of those it owns

    // The screen pixels of these picture pixels; where they own none, the one they are next to. And the
    // picture pixels that these screen pixels may show a part of.
    [[nodiscard]] QRect screen_area(const QRect& picture) const noexcept;
    [[nodiscard]] QRect picture_area(const QRect& screen) const noexcept;

    // Where a place in the picture lies; pixel (x, y) covers from (x, y) to (x + 1, y + 1).
    [[nodiscard]] QPointF screen_point(QPointF picture) const noexcept { return picture * _scale + _corner; }

    // Steps of the square root of 2, from whatever the scale is to the next of them. The picture pixel
    // that owns the screen pixel `about` keeps it.
    void zoom_by(int steps, QPoint about) noexcept;

    // The whole picture, in the middle of the canvas.
    void fit(QSize picture, QSize canvas) noexcept;

    void pan_by(QPoint way) noexcept { _corner += way; }

    // The nearest place where no border of the canvas is wasted: a picture larger than the canvas fills it,
    // a smaller one lies within it. The corner where there is no picture.
    // `allowed`: what may be wasted on the side where it was.
    void keep_in_view(QSize picture, QSize canvas, QPointF allowed = {}) noexcept;
    [[nodiscard]] QPointF wasted(QSize picture, QSize canvas) const noexcept;

    // Puts this place in the middle of the canvas.
    void center_on(QPointF picture, QSize canvas) noexcept;

private:
    void set_scale(double scale, QPoint about) noexcept;

    double _scale = 1;
    QPointF _corner;
};
