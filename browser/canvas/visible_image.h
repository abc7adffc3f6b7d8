// visible_image.h - the part of an image that the canvas shows, as it shows it.
//
// Above 1:1 each picture pixel is a block of screen pixels of its colour, below the image is smoothed.
#pragma once
#include "display_range.h"
#include "view_transform.h"

#include <QImage>
#include <QPixmap>

// A canvas full of it; keeps the last one made, and the last image made smaller.
class visible_image {
public:
    // 32-bit, of the canvas's size; where the image does not reach, `blank`. A null image shows nothing else.
    // Who changes it must forget() it.
    [[nodiscard]] QImage& of(const QPixmap& image, const view_transform& view, QSize canvas,
                             const display_range& range, QRgb blank);

    void forget() { _made_for = {}; }

private:
    struct request {
        qint64 image = 0;
        view_transform view;
        QSize canvas;
        display_range range;
        QRgb blank = 0;
        bool operator==(const request&) const = default;
    };

    [[nodiscard]] QRect show(const QPixmap& image, const view_transform& view);
    [[nodiscard]] QRect show_smaller(const QPixmap& image, double scale, QSize size, const QRect& area,
                                     QPoint corner);

    request _made_for;
    display_range _range_shown;
    range_painter _in_range{display_range{}};
    QImage _shown;
    std::pair<qint64, double> _smaller_of;    // the image and scale that were shown smaller last
    QImage _smaller;                          // all of it, once more than one part was shown
};
