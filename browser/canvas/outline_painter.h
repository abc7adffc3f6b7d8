// outline_painter.h - outlines of ROIs as the canvas shows them at any zoom: as wide on the screen at each.
//
// Up to 1:1 the polygon of an ROI is drawn; above, the outermost screen pixels of its mask's pixels.
#pragma once
#include "q_roiimg.h"
#include "view_transform.h"

#include <QColor>
#include <QImage>

class outline_painter {
public:
    // Draws onto a 32-bit image that shows the canvas from `corner` on. `width` is in screen pixels.
    outline_painter(QImage& onto, QPoint corner, const view_transform& view, int width);

    // REQUIRES: the raster is mapped
    void draw(const q_roiimg& raster, const QColor& color);

private:
    void draw_polygon(const QPolygon& polygon, const QColor& color);
    void draw_mask(const q_roiimg& raster, QRgb color);
    void draw_row(const q_roiimg& raster, int y, int first, int last, QRgb color);
    void fill(QRect screen, QRgb color);

    QImage& _onto;
    QRect _area;    // of the canvas
    const view_transform& _view;
    int _width;
};
