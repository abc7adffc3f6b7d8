#include "input_report.h"

#include "canvas_view.h"
#include "edit_step.h"
#include "keygen.h"
#include "status_text.h"

#include <utility>

void InputReport::begins()
{
    _was_armed = _window.armed_mode();
    _was_chosen = _window.chosen();
    _were_parents = _window.split_parents();
    _clicked.reset();
    _has_ended_a_step = false;
    _line.forget_error();
    _line.forget_result();
}

void InputReport::served(const QString& mode)
{
    const QString result = _clicked ? text_of_end() : QString();
    if (!result.isEmpty())
        _line.say(result);
    _line.say_mode(mode.isEmpty() ? text_of_mode(_window) : mode);
    _under = say_what_lies_there();
}

// What a click in a mode has led to, unless a step tells.
QString InputReport::text_of_end() const
{
    using armed = ORVBrowser::armed;
    const bool is_on_roi = !_clicked->empty();
    if (_was_armed == armed::none)
        return {};
    if (_was_armed == _window.armed_mode())
        return _was_armed == armed::split && is_on_roi && !is_roi_key(*_clicked) ? text_of_no_unit()
                                                                                 : QString();
    if (_was_armed == armed::choose)
        return text_of_choice(_window, *_clicked);
    // Merging with itself is a step, which leaves all as it was.
    if (_has_ended_a_step && !(_was_armed == armed::merge && *_clicked == _was_chosen))
        return {};
    if (_was_armed == armed::split)
        return text_of_failed_split(_was_chosen, _were_parents);
    return is_on_roi ? text_of_refusal(_window, _was_armed, *_clicked) : QString();
}

void InputReport::step_ended(edit_step& step)
{
    _has_ended_a_step = true;
    _line.say(text_of_step(_window, step.title()));
}

void InputReport::recording_changed()
{
    _line.say_mode(text_of_mode(_window));
    _line.forget_result();
    _line.say_pointer({});
}

std::string InputReport::say_what_lies_there()
{
    const CanvasView* const view = CanvasView::of(_window);
    if (!_pointer_at || !view || !_window.isOpen()) {
        _line.say_pointer({});
        return _under;
    }
    const QPoint pixel = view->view().picture_pixel(*_pointer_at);
    _line.say_pointer(text_of_pixel(_window, pixel));
    return _window.xyROI(pixel.x(), pixel.y());
}

void InputReport::pointer_moved()
{
    const std::string before = std::exchange(_under, say_what_lies_there());
    if (_under != before && !_under.empty())
        _line.forget_result();
}
