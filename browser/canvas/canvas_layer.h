// canvas_layer.h - what stands between the picture and the canvas, where there is more than the picture.
#pragma once
#include <QPoint>
#include <QRect>

class QPainter;

class CanvasLayer {
public:
    virtual ~CanvasLayer() = default;

    // The picture is another one now.
    virtual void picture_changed() = 0;

    // Paints this part of the canvas in the picture's stead; false, and nothing painted, where the picture is
    // shown as it is. Then what lies over it.
    [[nodiscard]] virtual bool paint_picture(QPainter& painter, const QRect& exposed) = 0;
    virtual void paint_overlay(QPainter& painter) = 0;

    // The picture pixel that a point of the canvas or beside it shows; where picture pixels are shown.
    [[nodiscard]] virtual QPoint picture_pixel(QPoint at) const = 0;
    [[nodiscard]] virtual QRect screen_area(const QRect& picture) const = 0;
};
