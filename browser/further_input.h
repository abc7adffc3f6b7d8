// further_input.h - keys and pointer for whoever goes beyond the window's own tables.
//
// Asked before the tables, wherever an event comes from; what one of them takes, the tables do not get.
#pragma once
#include <string>

class QKeyEvent;
class QMouseEvent;
class QWheelEvent;

class FurtherInput {
public:
    virtual ~FurtherInput() = default;

    [[nodiscard]] virtual bool take_key(QKeyEvent& e) = 0;
    [[nodiscard]] virtual bool take_wheel(QWheelEvent& e) = 0;
    [[nodiscard]] virtual bool take_press(QMouseEvent& e) = 0;
    [[nodiscard]] virtual bool take_move(QMouseEvent& e) = 0;

    // A key or a press has been served; the pointer points at something else, or the wheel has turned.
    // Whoever it was for.
    virtual void input_served() {}
    virtual void pointer_moved() {}

    // The window will show where a step lies that was undone or done again, and has shown it: a change of it,
    // as the key of a ROI. `was_on_view` where nobody had to go there.
    virtual void step_shows() {}
    virtual void step_shown(const std::string& /*key*/, bool /*was_on_view*/) {}
};
