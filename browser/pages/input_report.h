// input_report.h - what the message line says of each key and click: what came of it or why nothing did, the
// armed mode, and what lies under the pointer.
#pragma once
#include "message_line.h"
#include "orvbrowser.h"

#include <QPoint>

#include <optional>
#include <set>
#include <string>

class InputReport : private curation_observer {
public:
    InputReport(ORVBrowser& window, MessageLine& line) : _window(window), _line(line) {}

    // An input begins: what was said of the one before is over. It is a click on this unit, on "N/A" or on
    // no ROI (""). It has been served; what a mode beside the window's own waits for, or "".
    void begins();
    void clicked(const std::string& unit) { _clicked = unit; }
    void served(const QString& mode);

    // No mode is armed any more, and that needs no word.
    void forget_mode() { _was_armed = ORVBrowser::armed::none; }

    // The pointer is at a point of the canvas, or none. Then what lies there is said; the result of an
    // action stays until another ROI is pointed at.
    void point_at(std::optional<QPoint> canvas_point) { _pointer_at = canvas_point; }
    void pointer_moved();
    [[nodiscard]] const std::optional<QPoint>& pointer_at() const noexcept { return _pointer_at; }
    std::string say_what_lies_there();    // the ROI

private:
    void step_ended(edit_step& step) override;
    void recording_changed() override;

    [[nodiscard]] QString text_of_end() const;

    ORVBrowser& _window;
    MessageLine& _line;
    const Observing _observing{_window, *this};
    std::optional<QPoint> _pointer_at;
    std::string _under;    // the ROI there when the input or the way of the pointer ended
    ORVBrowser::armed _was_armed = ORVBrowser::armed::none;    // when the input began
    std::string _was_chosen;
    std::set<std::string> _were_parents;    // of a split
    std::optional<std::string> _clicked;    // while a click is served
    bool _has_ended_a_step = false;
};
