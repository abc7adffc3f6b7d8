// window_input.h - keys, wheel and pointer beyond the window's own tables.
//
// New keys act without modifiers, but for those that a keyboard needs to produce a sign, once for each press,
// but for steps, and never in a field.
#pragma once
#include "awaited_click.h"
#include "canvas_view.h"
#include "further_input.h"
#include "go_to_field.h"
#include "input_report.h"
#include "message_line.h"
#include "places.h"
#include "quick_edits.h"

#include <QObject>
#include <QPoint>
#include <QPointer>

#include <optional>
#include <set>
#include <string>

class WindowInput : public QObject, public FurtherInput, private curation_observer {
    Q_OBJECT

public:
    WindowInput(ORVBrowser& window, CanvasView& view, CanvasMarks& marks, Places& places, MessageLine& line);

    bool take_key(QKeyEvent& e) override;
    bool take_wheel(QWheelEvent& e) override;
    bool take_press(QMouseEvent& e) override;
    bool take_move(QMouseEvent& e) override;
    void input_served() override;
    void pointer_moved() override;
    void step_shows() override;
    void step_shown(const std::string& key, bool was_on_view) override;

protected:
    // What is released, where the pointer leaves, what is pressed elsewhere.
    bool eventFilter(QObject* watched, QEvent* e) override;

private:
    void recording_changed() override;

    [[nodiscard]] bool review_takes(int key);
    [[nodiscard]] bool press_sign(int key);
    [[nodiscard]] bool press_stepping_key(int key);
    [[nodiscard]] bool press_once(int key);
    [[nodiscard]] bool hold_key(int key);
    void explain_key(int key);    // of the window's own table, when it will do nothing
    void cancel();
    void put_away_click();
    void let_go(int key);
    void let_go_of_all();
    void end_panning();
    [[nodiscard]] bool take_grip(const QMouseEvent& e, QPoint at);
    [[nodiscard]] bool take_click(const QMouseEvent& e, const std::string& key);
    void point_at(std::optional<QPoint> at);
    void show_cursor();
    void begin();    // a key or a press
    void light_what_is_pointed_at();
    void zoom_by_wheel(int turn, QPoint about);    // eighths of a degree
    [[nodiscard]] QPoint canvas_point(QPointF at) const;

    ORVBrowser& _window;
    const QPointer<PictureFrame> _canvas;
    CanvasView& _view;
    CanvasMarks& _marks;
    Places& _places;
    MessageLine& _line;
    InputReport _report;
    QuickEdits _edits;
    AwaitedClick _click;
    GoToField* _go_to;    // the window's
    const Observing _observing{_window, *this};
    bool _is_space_held = false;
    bool _is_panning = false;
    QPoint _pan_from;
    std::set<std::string> _were_parents;    // of a split, when the input began
    int _wheel_turn = 0;                    // eighths of a degree that are no whole step yet
};
