#include "outline_painter.h"

#include <QPainter>

#include <algorithm>
#include <cstdlib>

namespace {

bool touch(QPoint a, QPoint b) { return std::abs(a.x() - b.x()) <= 1 && std::abs(a.y() - b.y()) <= 1; }

// As of every outline that returns to its start in steps of one pixel.
bool do_points_touch(const QPolygon& polygon)
{
    for (qsizetype i = 1; i < polygon.size(); ++i)
        if (!touch(polygon[i - 1], polygon[i]))
            return false;
    return polygon.isEmpty() || touch(polygon.first(), polygon.last());
}

}    // namespace

outline_painter::outline_painter(QImage& onto, const QRect& area, const view_transform& view, int width)
    : _onto(onto), _pixels(reinterpret_cast<QRgb*>(onto.bits())), _row(onto.bytesPerLine() / 4), _area(area),
      _view(view), _width(width)
{
}

void outline_painter::draw(const q_roiimg& raster, const QColor& color)
{
    const pixel_box box = raster.box();
    const QRect area = _view.screen_area({QPoint(box.left, box.top), QPoint(box.right, box.bottom)});
    if (!area.adjusted(-_width, -_width, _width, _width).intersects(_area))
        return;
    if (_view.scale() > 1 && raster.size() > 0)
        draw_mask(raster, color.rgb());
    else if (do_points_touch(raster.qpointarray()))
        draw_points(raster.qpointarray(), color.rgb());
    else
        draw_lines(raster.qpointarray(), color);
}

void outline_painter::draw_points(const QPolygon& polygon, QRgb color)
{
    const int before = (_width - 1) / 2;
    for (const QPoint p : polygon) {
        const QPoint at = _view.screen_pixel(p) - QPoint(before, before);
        fill(at.x(), at.y(), at.x() + _width - 1, at.y() + _width - 1, color);
    }
}

void outline_painter::draw_lines(const QPolygon& polygon, const QColor& color)
{
    QPainter painter(&_onto);
    painter.setClipRect(_area);
    painter.setPen(QPen(color, _width));
    QPolygon shown(polygon.size());
    std::ranges::transform(polygon, shown.begin(), [this](QPoint p) { return _view.screen_pixel(p); });
    painter.drawPolygon(shown);
}

void outline_painter::draw_mask(const q_roiimg& raster, QRgb color)
{
    const QRect seen = _view.picture_area(_area.adjusted(-_width, -_width, _width, _width));
    const pixel_box box = raster.box();
    const int first = std::max(0, seen.left() - box.left);
    const int last = std::min(box.right, seen.right()) - box.left;
    _columns.clear();
    for (int x = 0; x <= raster.width(); ++x)
        _columns.push_back(_view.screen_pixel({box.left + x, 0}).x());
    for (int y = std::max(box.top, seen.top()); y <= std::min(box.bottom, seen.bottom()); ++y)
        draw_row(raster, y - box.top, first, last, color);
}

// Of the mask's pixels in one row, from column `first` to `last`, the sides towards what is outside.
void outline_painter::draw_row(const q_roiimg& raster, int y, int first, int last, QRgb color)
{
    const int width = raster.width();
    const unsigned char* const row = raster.image() + static_cast<std::ptrdiff_t>(y) * width;
    const unsigned char* const above = y > 0 ? row - width : nullptr;
    const unsigned char* const below = y + 1 < raster.height() ? row + width : nullptr;
    const int image_row = raster.box().top + y;
    const int top = _view.screen_pixel({0, image_row}).y();
    const int bottom = _view.screen_pixel({0, image_row + 1}).y() - 1;
    for (int x = first; x <= last; ++x) {
        if (row[x] == 0)
            continue;
        const int left = _columns[static_cast<std::size_t>(x)];
        const int right = _columns[static_cast<std::size_t>(x) + 1] - 1;
        if (!above || above[x] == 0)
            fill(left, top, right, top + _width - 1, color);
        if (!below || below[x] == 0)
            fill(left, bottom - _width + 1, right, bottom, color);
        if (x == 0 || row[x - 1] == 0)
            fill(left, top, left + _width - 1, bottom, color);
        if (x + 1 == width || row[x + 1] == 0)
            fill(right - _width + 1, top, right, bottom, color);
    }
}

void outline_painter::fill(int left, int top, int right, int bottom, QRgb color)
{
    left = std::max(left, _area.left());
    right = std::min(right, _area.right());
    bottom = std::min(bottom, _area.bottom());
    if (left > right)
        return;
    for (int y = std::max(top, _area.top()); y <= bottom; ++y)
        std::fill(_pixels + y * _row + left, _pixels + y * _row + right + 1, color);
}
