// editing.h - clicks, for the tests of what a person does to ROIs and units.
#pragma once
#include "open_window.h"
#include "units.h"

#include <QMouseEvent>

// At a picture point, on the canvas or beside it.
inline void click(WindowProbe& w, int x, int y, Qt::MouseButton button = Qt::LeftButton)
{
    QTest::mouseClick(&w, button, {}, w.frame_canvas->pos() + QPoint(x, y));
}

inline void move_pointer(WindowProbe& w, int x, int y)
{
    const QPointF at = w.frame_canvas->pos() + QPoint(x, y);
    QMouseEvent e(QEvent::MouseMove, at, w.mapToGlobal(at), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&w, &e);
}
