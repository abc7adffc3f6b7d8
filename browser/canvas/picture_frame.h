// picture_frame.h - a frame that shows a picture, unscaled, from its top-left corner, unless a layer shows it
// otherwise.
#pragma once
#include "canvas_layer.h"

#include <QFrame>
#include <QPixmap>

class PictureFrame : public QFrame {
public:
    explicit PictureFrame(QWidget* parent);

    // Shows this picture from now on; an empty one leaves the frame blank.
    void set_picture(const QPixmap& picture);

    // Lets go of the picture, so that its owner can change a part of it in place; takes it back and
    // repaints that part at once.
    void release_picture() { _picture = QPixmap(); }
    void show_changed_picture(const QPixmap& picture, const QRect& changed);

    [[nodiscard]] const QPixmap& picture() const noexcept { return _picture; }

    // Not owned; null for none.
    void set_layer(CanvasLayer* layer) noexcept { _layer = layer; }

    // The picture pixel that a point of the frame, or beside it, shows.
    [[nodiscard]] QPoint picture_pixel(QPoint at) const { return _layer ? _layer->picture_pixel(at) : at; }

protected:
    void paintEvent(QPaintEvent* e) override;

private:
    QPixmap _picture;
    CanvasLayer* _layer = nullptr;
};
