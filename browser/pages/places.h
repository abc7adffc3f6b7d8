// places.h - going to planes, time points and units, and back to where one has been.
#pragma once
#include "canvas_marks.h"
#include "canvas_view.h"

#include <QObject>
#include <QTimer>

#include <optional>
#include <string>
#include <vector>

struct place {
    int t;    // time point
    int z;    // focal plane
    bool operator==(const place&) const noexcept = default;
};

class Places : public QObject, private curation_observer {
    Q_OBJECT

public:
    Places(ORVBrowser& window, CanvasView& view, CanvasMarks& marks);

    [[nodiscard]] static Places* of(const ORVBrowser& window);    // null where no pages were added

    void go_to(place there);
    // The middle plane of a unit, or a ROI in none; within view and ringed.
    void show_unit(const std::string& unit);
    void show_roi(const std::string& key);    // its own plane; its unit within view and ringed
    void go_to_fullest_plane();               // of this time point
    void go_to_next_plane(int step);          // with ROIs: 1 towards higher numbers, -1 towards lower ones
    void go_to_time_end(bool last);

    // What a person typed: a ROI key, whose own plane is shown, a unit's number, or time point and focal
    // plane. False when it names none.
    [[nodiscard]] bool go_to_typed(const std::string& text);

    // Where one has stayed before a jump, and back again from there; nothing at either end.
    void back();
    void forward();
    void settle();    // takes what is on view as where one stays; before several moves that are one jump

private:
    void recording_changed() override;
    [[nodiscard]] place here() const { return {_window.time_point(), _window.focal_plane()}; }
    [[nodiscard]] std::string middle_member(const std::string& unit);
    void show_unit_at(const std::string& unit, const std::string& member);
    void leave_for(std::vector<place>& from, std::vector<place>& to);
    void move(place there);

    ORVBrowser& _window;
    CanvasView& _view;
    CanvasMarks& _marks;
    const Observing _observing{_window, *this};
    QTimer _settle_soon;    // runs while a person may still be on the way
    std::vector<place> _before;
    std::vector<place> _after;
    std::optional<place> _here;    // none while a recording is being opened
};

// Shows a unit as `view` of the window does and then as Places does, where there are any.
void lead_to_unit(ORVBrowser& window, const std::string& unit);
