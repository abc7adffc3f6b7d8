#include "window_input.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QWheelEvent>

namespace {

constexpr int turn_of_step = 120;    // of a wheel, in eighths of a degree

bool is_typing()
{
    const QWidget* const focus = QApplication::focusWidget();
    return qobject_cast<const QLineEdit*>(focus) || qobject_cast<const QAbstractSpinBox*>(focus);
}

}    // namespace

WindowInput::WindowInput(ORVBrowser& window, CanvasView& view)
    : QObject(&window), _window(window), _view(view)
{
    window.set_further_input(this);
    window.installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this, &WindowInput::let_go_of_all);
}

QPoint WindowInput::canvas_point(QPointF at) const { return at.toPoint() - _window.frame_canvas->pos(); }

bool WindowInput::take_key(QKeyEvent& e)
{
    constexpr auto other_modifiers = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    if (is_typing() || (e.modifiers() & other_modifiers))
        return false;
    if (e.isAutoRepeat())
        return false;
    return press_sign(e.key()) || (!(e.modifiers() & Qt::ShiftModifier) && hold_key(e.key()));
}

// Whatever the keyboard needs for the sign.
bool WindowInput::press_sign(int key)
{
    switch (key) {
    case Qt::Key_Plus:
        _view.zoom_by(1);
        return true;
    case Qt::Key_Minus:
        _view.zoom_by(-1);
        return true;
    case Qt::Key_0:
        _view.show_original();
        return true;
    case Qt::Key_1:
        _view.fit();
        return true;
    default:
        return false;
    }
}

bool WindowInput::hold_key(int key)
{
    switch (key) {
    case Qt::Key_H:
        _view.hide_outlines(true);
        return true;
    case Qt::Key_Space:
        _is_space_held = true;
        _window.frame_canvas->setCursor(Qt::OpenHandCursor);
        return true;
    default:
        return false;
    }
}

void WindowInput::let_go(int key)
{
    if (key == Qt::Key_H)
        _view.hide_outlines(false);
    if (key != Qt::Key_Space)
        return;
    _is_space_held = false;
    _window.frame_canvas->unsetCursor();
}

void WindowInput::let_go_of_all()
{
    let_go(Qt::Key_H);
    let_go(Qt::Key_Space);
    _is_panning = false;
}

bool WindowInput::take_wheel(QWheelEvent& e)
{
    if (e.modifiers() == Qt::ShiftModifier) {
        _view.pan_by(e.angleDelta() / 2);
        return true;
    }
    if (e.modifiers() != Qt::ControlModifier)
        return false;
    _wheel_turn += e.angleDelta().y();
    const int steps = _wheel_turn / turn_of_step;
    _wheel_turn %= turn_of_step;
    const QPoint at = _window.frame_canvas->mapFromGlobal(e.globalPosition()).toPoint();
    if (_window.frame_canvas->rect().contains(at))
        _view.zoom_by(steps, at);
    else
        _view.zoom_by(steps);
    return true;
}

bool WindowInput::take_press(QMouseEvent& e)
{
    const QPoint at = canvas_point(e.position());
    const bool is_grip = e.button() == Qt::MiddleButton && !_window.is_cut_waiting();
    const bool is_held_grip = e.button() == Qt::LeftButton && _is_space_held;
    if (e.modifiers() != Qt::NoModifier || !(is_grip || is_held_grip) ||
        !_window.frame_canvas->rect().contains(at))
        return false;
    _is_panning = true;
    _pan_from = at;
    _window.frame_canvas->setCursor(Qt::ClosedHandCursor);
    return true;
}

bool WindowInput::take_move(QMouseEvent& e)
{
    if (_is_panning && e.buttons() == Qt::NoButton)    // released where nobody heard of it
        let_go_of_all();
    if (!_is_panning)
        return false;
    const QPoint at = canvas_point(e.position());
    _view.pan_by(at - _pan_from);
    _pan_from = at;
    return true;
}

bool WindowInput::eventFilter(QObject* watched, QEvent* e)
{
    if (e->type() == QEvent::KeyRelease && !static_cast<QKeyEvent*>(e)->isAutoRepeat())
        let_go(static_cast<QKeyEvent*>(e)->key());
    if (e->type() == QEvent::MouseButtonRelease && _is_panning) {
        _is_panning = false;
        _window.frame_canvas->setCursor(_is_space_held ? Qt::OpenHandCursor : Qt::ArrowCursor);
        if (!_is_space_held)
            _window.frame_canvas->unsetCursor();
    }
    return QObject::eventFilter(watched, e);
}
