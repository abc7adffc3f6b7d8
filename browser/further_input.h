// further_input.h - keys and pointer for whoever goes beyond the window's own tables.
//
// Asked before the tables, wherever an event comes from; what one of them takes, the tables do not get.
#pragma once

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

    // A key or a press begins to be served, and has been; the pointer has moved. Whoever it was for.
    virtual void input_begins() {}
    virtual void input_served() {}
    virtual void pointer_moved() {}
};
