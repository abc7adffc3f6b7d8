#include "picture_frame.h"

#include <QPaintEvent>
#include <QPainter>

PictureFrame::PictureFrame(QWidget* parent) : QFrame(parent) { setAttribute(Qt::WA_OpaquePaintEvent); }

void PictureFrame::set_picture(const QPixmap& picture)
{
    _picture = picture;
    if (_layer)
        _layer->picture_changed();
    update();
}

void PictureFrame::show_changed_picture(const QPixmap& picture, const QRect& changed)
{
    _picture = picture;
    repaint(_layer ? _layer->screen_area(changed) : changed);
}

void PictureFrame::paintEvent(QPaintEvent* e)
{
    {
        QPainter painter(this);
        if (!_layer || !_layer->paint_picture(painter, e->rect())) {
            painter.fillRect(rect(), palette().window());
            painter.drawPixmap(0, 0, _picture);
        }
        if (_layer)
            _layer->paint_overlay(painter);
    }
    QFrame::paintEvent(e);
}
