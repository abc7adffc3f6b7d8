#include "picture_frame.h"

#include <QPainter>

PictureFrame::PictureFrame(QWidget* parent) : QFrame(parent) { setAttribute(Qt::WA_OpaquePaintEvent); }

void PictureFrame::set_picture(const QPixmap& picture)
{
    _picture = picture;
    update();
}

void PictureFrame::show_changed_picture(const QPixmap& picture, const QRect& changed)
{
    _picture = picture;
    repaint(changed);
}

void PictureFrame::paintEvent(QPaintEvent* e)
{
    {
        QPainter painter(this);
        painter.fillRect(rect(), palette().window());
        painter.drawPixmap(0, 0, _picture);
    }
    QFrame::paintEvent(e);
}
