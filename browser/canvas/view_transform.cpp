#include "view_transform.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int lowest_level = -6;    // the scale is 2 to the power of level / 2
constexpr int highest_level = 10;
constexpr double farthest = 1e8;    // screen pixels: nothing that is looked at lies there

double scale_of(int level)
{
    constexpr double root = 1.4142135623730951;
    return std::ldexp(level % 2 == 0 ? 1 : root, (level - (level & 1)) / 2);
}

// The first screen pixel whose centre does not lie before picture column (or row) p.
int first_of(int p, double scale, double corner)
{
    return static_cast<int>(std::clamp(std::ceil(p * scale + corner - 0.5), -farthest, farthest));
}

// Rounding may have led the division astray by one; first_of() alone tells.
int owner_of(int s, double scale, double corner)
{
    int p = static_cast<int>(std::clamp(std::floor((s + 0.5 - corner) / scale), -farthest, farthest));
    while (first_of(p, scale, corner) > s)
        --p;
    while (first_of(p + 1, scale, corner) <= s)
        ++p;
    return p;
}

double kept_in_view(double corner, double picture, double canvas, double allowed)
{
    const double slack = canvas - picture;
    return std::clamp(corner, std::min(0.0, slack) + std::min(0.0, allowed),
                      std::max(0.0, slack) + std::max(0.0, allowed));
}

// The place in picture pixel p that screen pixel s shows; off its borders, where rounding could lose it.
double place_in(int p, int s, double scale, double corner)
{
    constexpr double border = 1.0 / 64;
    return std::clamp((s + 0.5 - corner) / scale, p + border, p + 1 - border);
}

// Whole pixels at 1:1, so that the way back to it ends where it began.
double corner_for(double scale, int s, double place)
{
    return scale == 1 ? s - std::floor(place) : s + 0.5 - place * scale;
}

}    // namespace

QPoint view_transform::picture_pixel(QPoint s) const noexcept
{
    return {owner_of(s.x(), _scale, _corner.x()), owner_of(s.y(), _scale, _corner.y())};
}

QPoint view_transform::screen_pixel(QPoint p) const noexcept
{
    return {first_of(p.x(), _scale, _corner.x()), first_of(p.y(), _scale, _corner.y())};
}

QRect view_transform::screen_area(const QRect& picture) const noexcept
{
    const QPoint first = screen_pixel(picture.topLeft());
    const QPoint beyond = screen_pixel(picture.bottomRight() + QPoint(1, 1));
    return {first, QPoint(std::max(first.x(), beyond.x() - 1), std::max(first.y(), beyond.y() - 1))};
}

QRect view_transform::picture_area(const QRect& screen) const noexcept
{
    return {picture_pixel(screen.topLeft() - QPoint(1, 1)), picture_pixel(screen.bottomRight())};
}

void view_transform::zoom_by(int steps, QPoint about) noexcept
{
    constexpr double nearly = 1e-9;
    const double level = 2 * std::log2(_scale);
    const double from = steps > 0 ? std::floor(level + nearly) : std::ceil(level - nearly);
    set_scale(scale_of(std::clamp(static_cast<int>(from) + steps, lowest_level, highest_level)), about);
}

void view_transform::set_scale(double scale, QPoint about) noexcept
{
    const QPoint p = picture_pixel(about);
    const double x = place_in(p.x(), about.x(), _scale, _corner.x());
    const double y = place_in(p.y(), about.y(), _scale, _corner.y());
    _scale = scale;
    _corner = {corner_for(scale, about.x(), x), corner_for(scale, about.y(), y)};
}

void view_transform::fit(QSize picture, QSize canvas) noexcept
{
    if (picture.isEmpty())
        return;
    _scale = std::clamp(std::min(static_cast<double>(canvas.width()) / picture.width(),
                                 static_cast<double>(canvas.height()) / picture.height()),
                        smallest_scale, largest_scale);
    center_on({picture.width() / 2.0, picture.height() / 2.0}, canvas);
}

void view_transform::center_on(QPointF picture, QSize canvas) noexcept
{
    const QPointF middle(canvas.width() / 2.0, canvas.height() / 2.0);
    const QPointF corner = middle - picture * _scale;
    _corner = {std::round(corner.x()), std::round(corner.y())};
}

QPointF view_transform::wasted(QSize picture, QSize canvas) const noexcept
{
    view_transform kept = *this;
    kept.keep_in_view(picture, canvas);
    return _corner - kept._corner;
}

void view_transform::keep_in_view(QSize picture, QSize canvas, QPointF allowed) noexcept
{
    if (picture.isEmpty()) {
        _corner = {0, 0};
        return;
    }
    _corner = {kept_in_view(_corner.x(), picture.width() * _scale, canvas.width(), allowed.x()),
               kept_in_view(_corner.y(), picture.height() * _scale, canvas.height(), allowed.y())};
}
