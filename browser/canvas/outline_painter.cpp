#include "outline_painter.h"

#include <QPainter>

#include <algorithm>

outline_painter::outline_painter(QImage& onto, QPoint corner, const view_transform& view, int width)
    : _onto(onto), _area(corner, onto.size()), _view(view), _width(width)
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
    else
        draw_polygon(raster.qpointarray(), color);
}

void outline_painter::draw_polygon(const QPolygon& polygon, const QColor& color)
{
    QPainter painter(&_onto);
    painter.translate(-_area.topLeft());
    painter.setPen(QPen(color, _width));
    QPolygon shown(polygon.size());
    std::ranges::transform(polygon, shown.begin(), [this](QPoint p) { return _view.screen_pixel(p); });
    if (std::ranges::all_of(shown, [&shown](QPoint p) { return p == shown.first(); }))
        painter.drawPoint(shown.first());
    else
        painter.drawPolygon(shown);
}

void outline_painter::draw_mask(const q_roiimg& raster, QRgb color)
{
    const QRect seen = _view.picture_area(_area);
    const pixel_box box = raster.box();
    const int first = std::max(0, seen.left() - box.left);
    const int last = std::min(box.right, seen.right()) - box.left;
    for (int y = std::max(box.top, seen.top()); y <= std::min(box.bottom, seen.bottom()); ++y)
        draw_row(raster, y - box.top, first, last, color);
}

// Of the mask's pixels in one row, from column `first` to `last`, the sides towards what is outside.
void outline_painter::draw_row(const q_roiimg& raster, int y, int first, int last, QRgb color)
{
    const int columns = raster.width();
    const unsigned char* const row = raster.image() + static_cast<std::ptrdiff_t>(y) * columns;
    const auto inside = [&](int x, int rows_down) {
        const bool in_mask = x >= 0 && x < columns && y + rows_down >= 0 && y + rows_down < raster.height();
        return in_mask && row[x + static_cast<std::ptrdiff_t>(rows_down) * columns] != 0;
    };
    const QPoint corner(raster.box().left, raster.box().top);
    for (int x = first; x <= last; ++x) {
        if (row[x] == 0)
            continue;
        const QRect pixel = _view.screen_area({corner + QPoint(x, y), QSize(1, 1)});
        if (!inside(x, -1))
            fill({pixel.topLeft(), QSize(pixel.width(), _width)}, color);
        if (!inside(x, 1))
            fill({QPoint(pixel.left(), pixel.bottom() - _width + 1), pixel.bottomRight()}, color);
        if (!inside(x - 1, 0))
            fill({pixel.topLeft(), QSize(_width, pixel.height())}, color);
        if (!inside(x + 1, 0))
            fill({QPoint(pixel.right() - _width + 1, pixel.top()), pixel.bottomRight()}, color);
    }
}

void outline_painter::fill(QRect screen, QRgb color)
{
    const QRect part = (screen & _area).translated(-_area.topLeft());
    for (int y = part.top(); y <= part.bottom(); ++y) {
        auto* const line = reinterpret_cast<QRgb*>(_onto.scanLine(y));
        std::fill(line + part.left(), line + part.right() + 1, color);
    }
}
