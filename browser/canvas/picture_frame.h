// picture_frame.h - a frame that shows a picture, unscaled, from its top-left corner.
#pragma once
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

protected:
    void paintEvent(QPaintEvent* e) override;

private:
    QPixmap _picture;
};
