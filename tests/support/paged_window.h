// paged_window.h - the open window with everything that pages bring.
#pragma once
#include "canvas_marks.h"
#include "canvas_view.h"
#include "editing.h"
#include "message_line.h"
#include "pages.h"
#include "places.h"

#include <QWheelEvent>

class PagedWindow : public ShownWindow {
public:
    explicit PagedWindow(const SmallRecording& recording)
    {
        add_pages(*this);
        if (!openRoiFile(recording.file))
            qFatal("the recording cannot be read");
        QCoreApplication::processEvents();
        (void)pictures_since_last_asked();
    }

    [[nodiscard]] CanvasView& canvas() { return *CanvasView::of(*this); }
    [[nodiscard]] const view_transform& shown_by() { return canvas().view(); }
    [[nodiscard]] CanvasMarks& marks() { return *CanvasMarks::of(*this); }
    [[nodiscard]] QString said() { return MessageLine::of(*this)->toolTip(); }
    [[nodiscard]] QImage seen() { return frame_canvas->grab().toImage(); }
    [[nodiscard]] place here() const { return {time_point(), focal_plane()}; }

    void press(int key, int modifiers = 0)
    {
        QTest::keyClick(this, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
    }

    void click_with(int modifiers, QPoint at, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseClick(this, button, Qt::KeyboardModifiers(modifiers), frame_canvas->pos() + at);
    }
};

// At a point of the canvas.
inline void turn_wheel(WindowProbe& w, QPoint at, int delta, Qt::KeyboardModifiers modifiers)
{
    const QPointF place = w.frame_canvas->pos() + at;
    QWheelEvent e(place, w.mapToGlobal(place), {}, {0, delta}, Qt::NoButton, modifiers, Qt::NoScrollPhase,
                  false);
    QCoreApplication::sendEvent(&w, &e);
}

inline void drag(WindowProbe& w, Qt::MouseButton button, QPoint from, QPoint to)
{
    const QPoint corner = w.frame_canvas->pos();
    QTest::mousePress(&w, button, {}, corner + from);
    const QPointF at = corner + to;
    QMouseEvent move(QEvent::MouseMove, at, w.mapToGlobal(at), Qt::NoButton, button, {});
    QCoreApplication::sendEvent(&w, &move);
    QTest::mouseRelease(&w, button, {}, corner + to);
}
