#include "window_input.h"

#include "edit_step.h"
#include "review_walk.h"
#include "status_text.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cstring>

namespace {

constexpr int turn_of_step = 120;    // of a wheel, in eighths of a degree
constexpr auto command_modifiers = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;

bool is_typing()
{
    const QWidget* const focus = QApplication::focusWidget();
    return qobject_cast<const QLineEdit*>(focus) || qobject_cast<const QAbstractSpinBox*>(focus);
}

// Keys that only look: what was pointed out stays so.
bool is_looking(int key)
{
    static const int keys[] = {Qt::Key_Up,   Qt::Key_Down,  Qt::Key_PageUp, Qt::Key_PageDown,
                               Qt::Key_Plus, Qt::Key_Minus, Qt::Key_0,      Qt::Key_1,
                               Qt::Key_H,    Qt::Key_Space, Qt::Key_Shift,  Qt::Key_Control,
                               Qt::Key_Alt,  Qt::Key_C,     Qt::Key_T};
    return std::ranges::find(keys, key) != std::end(keys);
}

bool arms_a_mode(int key) { return key > 0 && key < 128 && std::strchr("AELMRSWX", key); }

}    // namespace

WindowInput::WindowInput(ORVBrowser& window, CanvasView& view, CanvasMarks& marks, Places& places,
                         MessageLine& line)
    : QObject(&window), _window(window), _view(view), _marks(marks), _places(places), _line(line),
      _edits(window, places, line), _go_to(new GoToField(window, places))
{
    window.set_further_input(this);
    window.installEventFilter(this);
    window.frame_canvas->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this, &WindowInput::let_go_of_all);
}

QPoint WindowInput::canvas_point(QPointF at) const { return at.toPoint() - _window.frame_canvas->pos(); }

// ---- Keys

bool WindowInput::take_key(QKeyEvent& e)
{
    const int key = e.key();
    if (is_typing())
        return false;
    if (!is_looking(key))
        _marks.clear_rings();
    if ((key == Qt::Key_Left || key == Qt::Key_Right) &&
        (e.modifiers() & command_modifiers) == Qt::ControlModifier) {
        if (_window.isOpen() && !_window.pushButton_auto->isChecked())
            _places.go_to_time_end(key == Qt::Key_Right);
        return true;
    }
    if (_is_unlinking && arms_a_mode(key))
        arm_unlinking(false);
    explain_key(key);
    if (!_window.isOpen() || (e.modifiers() & command_modifiers))
        return false;
    const bool is_plain = !(e.modifiers() & Qt::ShiftModifier);
    const bool is_bracket = key == Qt::Key_BracketLeft || key == Qt::Key_BracketRight;
    if ((is_plain || is_bracket) && press_stepping_key(key))
        return true;
    if (e.isAutoRepeat())
        return false;
    if (is_plain && !_is_unlinking && _window.armed_mode() == ORVBrowser::armed::none && review_takes(key))
        return true;
    return press_sign(key) || (is_plain && (press_once(key) || hold_key(key)));
}

void WindowInput::explain_key(int key)
{
    if ((key == Qt::Key_A || key == Qt::Key_S) && _window.isOpen() && _window.chosen().empty()) {
        _edits.say_none_is_chosen();
        _has_said = true;
    }
}

// What it says of a finding is the result of the key.
bool WindowInput::review_takes(int key)
{
    ReviewWalk* const walk = ReviewWalk::of(_window);
    return walk && walk->take_key(key);
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

bool WindowInput::press_stepping_key(int key)
{
    switch (key) {
    case Qt::Key_PageUp:
        _places.go_to_next_plane(-1);
        return true;
    case Qt::Key_PageDown:
        _places.go_to_next_plane(1);
        return true;
    case Qt::Key_BracketLeft:
        _edits.step_along_track(false);
        return true;
    case Qt::Key_BracketRight:
        _edits.step_along_track(true);
        return true;
    default:
        return false;
    }
}

bool WindowInput::press_once(int key)
{
    switch (key) {
    case Qt::Key_Home:
        _places.go_to_fullest_plane();
        return true;
    case Qt::Key_Backspace:
        _places.back();
        return true;
    case Qt::Key_G:
        _go_to->open();
        return true;
    case Qt::Key_U:
        arm_unlinking(!_is_unlinking);
        return true;
    case Qt::Key_Escape:
        cancel();
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

void WindowInput::cancel()
{
    arm_unlinking(false);
    if (_window.armed_mode() == ORVBrowser::armed::none)
        return;
    _window.disarm();
    _view.update_canvas();
    _was_armed = ORVBrowser::armed::none;
}

void WindowInput::arm_unlinking(bool on)
{
    if (on && !_edits.has_chosen()) {
        _edits.say_none_is_chosen();
        _has_said = true;
        return;
    }
    if (on && _window.armed_mode() != ORVBrowser::armed::none)
        _window.disarm();
    if (on == _is_unlinking)
        return;
    _is_unlinking = on;
    on ? _window.frame_canvas->setCursor(Qt::PointingHandCursor) : _window.frame_canvas->unsetCursor();
}

// ---- What is held

void WindowInput::let_go(int key)
{
    if (key == Qt::Key_H)
        _view.hide_outlines(false);
    if (key != Qt::Key_Space || !_is_space_held)
        return;
    _is_space_held = false;
    _window.frame_canvas->unsetCursor();
}

void WindowInput::let_go_of_all()
{
    let_go(Qt::Key_H);
    let_go(Qt::Key_Space);
    end_panning();
}

void WindowInput::end_panning()
{
    if (!_is_panning)
        return;
    _is_panning = false;
    _is_space_held ? _window.frame_canvas->setCursor(Qt::OpenHandCursor)
                   : _window.frame_canvas->unsetCursor();
}

bool WindowInput::eventFilter(QObject* watched, QEvent* e)
{
    if (e->type() == QEvent::KeyRelease && !static_cast<QKeyEvent*>(e)->isAutoRepeat())
        let_go(static_cast<QKeyEvent*>(e)->key());
    if (e->type() == QEvent::MouseButtonRelease)
        end_panning();
    if (e->type() == QEvent::Leave && watched == _window.frame_canvas)
        _line.say_pointer({});
    return QObject::eventFilter(watched, e);
}

// ---- Wheel and pointer

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
    if (_window.is_cut_waiting() && e.modifiers() == Qt::NoModifier && !_is_space_held)
        return false;
    const QPoint at = canvas_point(e.position());
    const bool is_on_canvas = _window.frame_canvas->rect().contains(at);
    if (is_on_canvas && take_grip(e, at))
        return true;
    _marks.clear_rings();
    if (e.button() == Qt::BackButton || e.button() == Qt::ForwardButton) {
        e.button() == Qt::BackButton ? _places.back() : _places.forward();
        return true;
    }
    const QPoint p = _view.picture_pixel(at);
    const std::string key = is_on_canvas ? _window.xyROI(p.x(), p.y()) : std::string();
    _pointer_at = at;
    _under = key;
    if (take_click(e, key))
        return true;
    _clicked = key.empty() ? key : _window.head(key);
    return false;
}

bool WindowInput::take_grip(const QMouseEvent& e, QPoint at)
{
    const bool is_grip = e.button() == Qt::MiddleButton || (e.button() == Qt::LeftButton && _is_space_held);
    if (!is_grip || e.modifiers() != Qt::NoModifier)
        return false;
    _is_panning = true;
    _pan_from = at;
    _window.frame_canvas->setCursor(Qt::ClosedHandCursor);
    return true;
}

// Those with modifiers, while no mode is armed; and the one that U waits for.
bool WindowInput::take_click(const QMouseEvent& e, const std::string& key)
{
    if (key.empty() || _window.armed_mode() != ORVBrowser::armed::none)
        return false;
    const auto modifiers = e.modifiers();
    if (_is_unlinking && e.button() == Qt::LeftButton && modifiers == Qt::NoModifier) {
        arm_unlinking(false);
        _edits.unlink(key);
        return true;
    }
    if (e.button() == Qt::RightButton && (modifiers & Qt::ShiftModifier) && !_is_unlinking) {
        _edits.toggle_unit(key, modifiers & Qt::ControlModifier);
        return true;
    }
    if (e.button() != Qt::LeftButton || modifiers != Qt::ControlModifier)
        return false;
    _edits.choose(key);
    return true;
}

bool WindowInput::take_move(QMouseEvent& e)
{
    if (_is_panning && e.buttons() == Qt::NoButton)    // released where nobody heard of it
        end_panning();
    const QPoint at = canvas_point(e.position());
    _pointer_at = at;
    if (!_is_panning)
        return false;
    _view.pan_by(at - _pan_from);
    _pan_from = at;
    return true;
}

// ---- What is said

void WindowInput::input_begins()
{
    _was_armed = _window.armed_mode();
    _was_chosen = _window.chosen();
    _clicked.clear();
    _has_said = false;
    _line.forget_error();
    _line.forget_result();
}

void WindowInput::input_served()
{
    const bool has_ended = _was_armed != ORVBrowser::armed::none && _was_armed != _window.armed_mode();
    // Merging with itself is a step, which leaves all as it was.
    const bool is_refused = !_has_said || (_was_armed == ORVBrowser::armed::merge && _clicked == _was_chosen);
    if (has_ended && !_clicked.empty() && is_refused)
        _line.say(text_of_refusal(_window, _was_armed, _clicked));
    say_mode();
    if (_window.frame_canvas->underMouse())    // what lies there may be something else now
        _line.say_pointer(text_of_pixel(_window, _view.picture_pixel(_pointer_at)));
}

void WindowInput::say_mode()
{
    _line.say_mode(_is_unlinking ? tr("Remove a link: click the nucleus that is linked to the chosen one. "
                                      "Esc: cancel")
                                 : text_of_mode(_window));
}

void WindowInput::step_ended(edit_step& step)
{
    _has_said = true;
    _line.say(text_of_step(_window, step.title()));
}

void WindowInput::recording_changed()
{
    arm_unlinking(false);
    say_mode();
    _line.forget_result();
    _line.say_pointer({});
}

// The result of an action stays until another ROI is pointed at.
void WindowInput::pointer_moved()
{
    const QPoint pixel = _view.picture_pixel(_pointer_at);
    const std::string under = _window.xyROI(pixel.x(), pixel.y());
    if (under != _under && !under.empty())
        _line.forget_result();
    _under = under;
    _line.say_pointer(text_of_pixel(_window, pixel));
}
