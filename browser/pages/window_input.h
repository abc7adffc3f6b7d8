// window_input.h - keys, wheel and pointer beyond the window's own tables.
//
// New keys act without modifiers, but for those that a keyboard needs to produce the sign, once for each
// press, and never in a field.
#pragma once
#include "canvas_view.h"
#include "further_input.h"

#include <QObject>
#include <QPoint>

class WindowInput : public QObject, public FurtherInput {
public:
    WindowInput(ORVBrowser& window, CanvasView& view);

    bool take_key(QKeyEvent& e) override;
    bool take_wheel(QWheelEvent& e) override;
    bool take_press(QMouseEvent& e) override;
    bool take_move(QMouseEvent& e) override;

protected:
    bool eventFilter(QObject* watched, QEvent* e) override;    // what is released

private:
    [[nodiscard]] bool press_sign(int key);
    [[nodiscard]] bool hold_key(int key);
    void let_go(int key);
    void let_go_of_all();
    [[nodiscard]] QPoint canvas_point(QPointF at) const;

    ORVBrowser& _window;
    CanvasView& _view;
    bool _is_space_held = false;
    bool _is_panning = false;
    QPoint _pan_from;
    int _wheel_turn = 0;    // eighths of a degree that are no whole step yet
};
