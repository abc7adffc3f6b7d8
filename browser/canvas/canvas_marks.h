// canvas_marks.h - what is drawn over the picture: marks that would be lost on it, rings around what a person
// was led to, tails, the scale bar, and why there is nothing to see.
#pragma once
#include "canvas_view.h"
#include "tails.h"

#include <QObject>

#include <map>
#include <set>
#include <string>
#include <vector>

// How many ROIs each focal plane of the time point on view has, of those that have any and that one can go
// to.
[[nodiscard]] std::map<int, int> rois_by_plane(const ORVBrowser& window);

enum class tail_choice { none, of_chosen, of_near };

struct mark_choice {
    bool has_marks = true;    // crosses, numbers, the label and rings
    bool has_scale_bar = false;
    tail_choice tails = tail_choice::none;
    int tail_steps = 5;    // time points

    bool operator==(const mark_choice&) const = default;
};

class CanvasMarks : public QObject, private curation_observer {
    Q_OBJECT

public:
    CanvasMarks(ORVBrowser& window, CanvasView& view);

    [[nodiscard]] static CanvasMarks* of(const ORVBrowser& window);    // null where no pages were added

    void choose(const mark_choice& choice);
    [[nodiscard]] const mark_choice& choice() const noexcept { return _choice; }

    // A thick ring around a unit, or a ROI in none, and thin ones with a letter around its parents (p) and
    // children (c); until the next ones.
    void ring(const std::string& unit);
    void clear_rings();
    [[nodiscard]] const std::string& ringed() const noexcept { return _ringed; }

    // The smallest box of picture pixels around a unit, or a ROI in none: on focal plane z, or, where it has
    // nothing there, on all.
    [[nodiscard]] QRect box_of(const std::string& unit, int z);

    // What a plane with nothing to show tells instead, or "".
    [[nodiscard]] QString notice();

private:
    // What tails are found from.
    struct tail_origin {
        mark_choice choice;
        std::string chosen;
        int t = 0;
        int z = 0;
        unsigned long edits = 0;
        unsigned long recording = 0;
        unsigned long revision = 0;

        bool operator==(const tail_origin&) const = default;
    };

    void state_changed() override { _view.update_canvas(); }
    void waiting_changed() override { _view.update_canvas(); }    // tails are not drawn during a run
    void recording_changed() override { clear_rings(); }

    void paint(QPainter& painter);
    void paint_crosses(QPainter& painter);
    void paint_numbers(QPainter& painter);
    void paint_rings(QPainter& painter);
    void paint_ring(QPainter& painter, const std::string& unit, const QString& letter);
    [[nodiscard]] const std::vector<tail_segment>& segments();
    void paint_tails(QPainter& painter);
    void paint_scale_bar(QPainter& painter);
    void paint_notice(QPainter& painter);
    [[nodiscard]] QString where_rois_lie();
    void paint_label(QPainter& painter, const std::string& unit, const QString& text);
    void follow_split_parents();

    ORVBrowser& _window;
    CanvasView& _view;
    const Observing _observing{_window, *this};
    tails _tails{_window};
    tail_origin _segments_of;
    std::vector<tail_segment> _segments;
    mark_choice _choice;
    std::string _ringed;
    std::vector<std::string> _picked;    // parents for a split
};
