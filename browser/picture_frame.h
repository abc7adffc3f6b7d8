// picture_frame.h - a frame that shows a picture, unscaled, from its top-left corner.
#pragma once
#include <QFrame>
#include <QPixmap>

class PictureFrame : public QFrame {
public:
    explicit PictureFrame(QWidget* parent);

    // Shows this picture from now on; an empty one leaves the frame blank.
    void set_picture(const QPixmap& picture);

    [[nodiscard]] const QPixmap& picture() const noexcept { return _picture; }

protected:
    void paintEvent(QPaintEvent* e) override;

private:
    QPixmap _picture;
};
