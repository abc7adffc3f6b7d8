// outline_painter.h - outlines of ROIs as the canvas shows them at any zoom: as wide on the screen at each.
//
// Up to 1:1 the points of an ROI's polygon are drawn, which touch; above, the outermost screen pixels of its
// mask's pixels.
#pragma once
#include "q_roiimg.h"
#include "view_transform.h"

#include <QColor>
#include <QImage>

#include <vector>

class outline_painter {
public:
    // Draws onto a 32-bit image of the canvas, inside an area of it. `width` is in screen pixels.
    outline_painter(QImage& onto, const QRect& area, const view_transform& view, int width);

    // REQUIRES: the raster is mapped
    void draw(const q_roiimg& raster, const QColor& color);

private:
    void draw_points(const QPolygon& polygon, QRgb color);
    void draw_lines(const QPolygon& polygon, const QColor& color);
    void draw_mask(const q_roiimg& raster, QRgb color);
    void draw_row(const q_roiimg& raster, int y, int first, int last, QRgb color);
    void fill(int left, int top, int right, int bottom, QRgb color);

    QImage& _onto;
    QRgb* const _pixels;     // of the image
    const qsizetype _row;    // so many from one row to the next
    const QRect _area;
    const view_transform& _view;
    const int _width;
    std::vector<int> _columns;    // the first screen column of each of a mask, and the one behind
};
