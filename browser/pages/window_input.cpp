#include "window_input.h"

#include "input_kinds.h"
#include "keygen.h"
#include "review_walk.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

namespace {

constexpr int turn_of_step = 120;    // of a wheel, in eighths of a degree
constexpr auto command_modifiers = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;

}    // namespace

WindowInput::WindowInput(ORVBrowser& window, CanvasView& view, CanvasMarks& marks, Places& places,
                         MessageLine& line)
    : QObject(&window), _window(window), _canvas(window.frame_canvas), _view(view), _marks(marks),
      _places(places), _line(line), _report(window, line), _edits(window, places, line),
      _click(window, _edits), _go_to(new GoToField(window, places))
{
    window.set_further_input(this);
    qApp->installEventFilter(this);    // keys may come from the tree, and clicks go to any control
    connect(qApp, &QApplication::focusChanged, this, &WindowInput::let_go_of_all);
    connect(&view, &CanvasView::picture_made, this, [this] { (void)_report.say_what_lies_there(); });
}

QPoint WindowInput::canvas_point(QPointF at) const { return at.toPoint() - _canvas->pos(); }

// ---- Keys

bool WindowInput::take_key(QKeyEvent& e)
{
    const int key = e.key();
    const bool begins = !is_idle_repeat(&e);
    if (begins)
        begin();
    if (is_typing())
        return false;
    if (begins && !is_looking(key))
        _marks.clear_rings();
    if ((key == Qt::Key_Left || key == Qt::Key_Right) &&
        (e.modifiers() & ~Qt::KeypadModifier) == Qt::ControlModifier) {
        if (_window.isOpen() && !_window.pushButton_auto->isChecked())
            _places.go_to_time_end(key == Qt::Key_Right);
        return true;
    }
    if (arms_a_mode(key))
        put_away_click();
    explain_key(key);
    if (e.modifiers() & command_modifiers)
        return false;
    if (!_window.isOpen())
        return key == Qt::Key_Escape && press_once(key);
    const bool is_plain = !(e.modifiers() & Qt::ShiftModifier);
    const bool is_bracket = key == Qt::Key_BracketLeft || key == Qt::Key_BracketRight;
    if ((is_plain || is_bracket) && press_stepping_key(key))
        return true;
    if (e.isAutoRepeat())
        return false;
    if (is_plain && !_click.is_armed() && _window.armed_mode() == ORVBrowser::armed::none &&
        review_takes(key))
        return true;
    return press_sign(key) || (is_plain && (press_once(key) || hold_key(key)));
}

void WindowInput::explain_key(int key)
{
    if ((key == Qt::Key_A || key == Qt::Key_S) && _window.isOpen() && _window.chosen().empty())
        _edits.say_none_is_chosen();
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
        break;
    case Qt::Key_Minus:
        _view.zoom_by(-1);
        break;
    case Qt::Key_0:
        _view.show_original();
        break;
    case Qt::Key_1:
        _view.fit();
        break;
    default:
        return false;
    }
    light_what_is_pointed_at();
    return true;
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
    case Qt::Key_Escape:
        cancel();
        return true;
    default:
        break;
    }
    const bool is_taken = _click.take_key(key);
    show_cursor();
    return is_taken;
}

bool WindowInput::hold_key(int key)
{
    switch (key) {
    case Qt::Key_H:
        _view.hide_outlines(true);
        return true;
    case Qt::Key_Space:
        _is_space_held = true;
        show_cursor();
        return true;
    default:
        return false;
    }
}

void WindowInput::cancel()
{
    put_away_click();
    if (_window.armed_mode() == ORVBrowser::armed::none)
        return;
    _window.disarm();
    _report.forget_mode();
}

void WindowInput::put_away_click()
{
    _click.put_away();
    show_cursor();
}

// What the next press on the canvas does first; the window's own modes show theirs.
void WindowInput::show_cursor()
{
    if (_is_panning)
        _canvas->setCursor(Qt::ClosedHandCursor);
    else if (_is_space_held)
        _canvas->setCursor(Qt::OpenHandCursor);
    else if (_click.is_armed())
        _canvas->setCursor(Qt::PointingHandCursor);
    else
        _canvas->unsetCursor();
}

// ---- What is held

void WindowInput::let_go(int key)
{
    if (key == Qt::Key_H)
        _view.hide_outlines(false);
    if (key != Qt::Key_Space || !_is_space_held)
        return;
    _is_space_held = false;
    show_cursor();
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
    show_cursor();
}

// Of every window: before it gets the event.
bool WindowInput::eventFilter(QObject* watched, QEvent* e)
{
    const bool is_widget = watched->isWidgetType();
    switch (e->type()) {
    case QEvent::KeyRelease:
        if (is_widget && !static_cast<QKeyEvent*>(e)->isAutoRepeat())
            let_go(static_cast<QKeyEvent*>(e)->key());
        break;
    case QEvent::MouseButtonRelease:
        if (is_widget)
            end_panning();
        break;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        if (is_widget && acts(static_cast<QWidget*>(watched)))
            _marks.clear_rings();
        [[fallthrough]];
    case QEvent::KeyPress:
        if (is_widget && !is_idle_repeat(e)) {
            _line.forget_error();
            _line.forget_result();
        }
        break;
    case QEvent::Leave:
        if (watched == _canvas)
            point_at({});
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, e);
}

// ---- Wheel and pointer

bool WindowInput::take_wheel(QWheelEvent& e)
{
    const QPoint at = _canvas->mapFromGlobal(e.globalPosition()).toPoint();
    const bool is_on_canvas = _canvas->rect().contains(at);
    if (is_on_canvas)
        _report.point_at(at);
    if (e.modifiers() == Qt::ShiftModifier)
        _view.pan_by(e.angleDelta() / 2);
    else if (e.modifiers() == Qt::ControlModifier)
        zoom_by_wheel(e.angleDelta().y(), is_on_canvas ? at : _canvas->rect().center());
    else
        return false;
    light_what_is_pointed_at();
    return true;
}

void WindowInput::zoom_by_wheel(int turn, QPoint about)
{
    _wheel_turn += turn;
    const int steps = _wheel_turn / turn_of_step;
    _wheel_turn %= turn_of_step;
    if (steps != 0)
        _view.zoom_by(steps, about);
}

// While a cut waits for its place, every press without modifiers is it.
bool WindowInput::take_press(QMouseEvent& e)
{
    begin();
    const bool is_cut = _window.is_cut_waiting() && e.modifiers() == Qt::NoModifier;
    const QPoint at = canvas_point(e.position());
    const bool is_on_canvas = _canvas->rect().contains(at);
    if (!is_cut && is_on_canvas && take_grip(e, at))
        return true;
    _marks.clear_rings();
    if (!is_cut && (e.button() == Qt::BackButton || e.button() == Qt::ForwardButton)) {
        e.button() == Qt::BackButton ? _places.back() : _places.forward();
        return true;
    }
    const QPoint p = _view.picture_pixel(at);
    const std::string key = is_on_canvas ? _window.xyROI(p.x(), p.y()) : std::string();
    if (is_on_canvas)
        _report.point_at(at);
    if (!is_cut && take_click(e, key))
        return true;
    _report.clicked(key.empty() ? key : _window.head(key));
    return false;
}

bool WindowInput::take_grip(const QMouseEvent& e, QPoint at)
{
    const bool is_grip = e.button() == Qt::MiddleButton || (e.button() == Qt::LeftButton && _is_space_held);
    if (!is_grip || e.modifiers() != Qt::NoModifier)
        return false;
    _is_panning = true;
    _pan_from = at;
    show_cursor();
    return true;
}

// The one that is waited for, when no other does anything; those with modifiers, while no mode is armed.
bool WindowInput::take_click(const QMouseEvent& e, const std::string& key)
{
    const auto modifiers = e.modifiers();
    if (_click.is_armed()) {
        if (e.button() != Qt::LeftButton || key.empty())
            return true;
        _click.take_click(key);
        show_cursor();
        return true;
    }
    if (key.empty() || _window.armed_mode() != ORVBrowser::armed::none)
        return false;
    if (e.button() == Qt::RightButton && (modifiers & Qt::ShiftModifier)) {
        _edits.toggle_unit(key, modifiers & Qt::ControlModifier);
        return true;
    }
    if (e.button() != Qt::LeftButton || !(modifiers & Qt::ControlModifier) ||
        (modifiers & ~(Qt::ControlModifier | Qt::ShiftModifier)))
        return false;
    modifiers& Qt::ShiftModifier ? _edits.toggle_link(key) : _edits.choose(key);
    return true;
}

bool WindowInput::take_move(QMouseEvent& e)
{
    if (_is_panning && e.buttons() == Qt::NoButton)    // released where nobody heard of it
        end_panning();
    const QPoint at = canvas_point(e.position());
    point_at(_canvas->rect().contains(at) ? std::optional(at) : std::nullopt);
    if (!_is_panning)
        return false;
    _view.pan_by(at - _pan_from);
    _pan_from = at;
    return true;
}

// ---- What is said and shown

void WindowInput::point_at(std::optional<QPoint> at)
{
    _report.point_at(at);
    if (!at)
        _line.say_pointer({});
}

void WindowInput::light_what_is_pointed_at()
{
    if (const std::optional<QPoint> at = _report.pointer_at())
        _window.light_roi_at(*at);
}

void WindowInput::begin()
{
    _report.begins();
    _were_parents = _window.split_parents();
}

void WindowInput::input_served()
{
    _report.served(_click.text());
    if (_were_parents != _window.split_parents())    // which are numbered on the canvas
        _view.update_canvas();
}

void WindowInput::pointer_moved() { _report.pointer_moved(); }

void WindowInput::recording_changed() { put_away_click(); }

void WindowInput::step_shows() { _places.settle(); }

// In the middle of its unit where one had to go there.
void WindowInput::step_shown(const std::string& key, bool was_on_view)
{
    const std::string unit = _window.head(key);
    if (!was_on_view && is_roi_key(unit))
        _places.show_unit(unit);
    else
        _places.show_roi(key);
}
