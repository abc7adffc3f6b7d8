// review_walk.h - from one finding to the next: which is on view, and what a person decides about it.
//
// Shared by the page "Review", its keys, the work list and the preview on the canvas. The list is made in
// slices from when somebody first asks for it; the window stays alive.
#pragma once
#include "orvbrowser.h"
#include "review.h"

#include <QObject>
#include <QTimer>

#include <limits>
#include <optional>
#include <string>
#include <vector>

class ReviewWalk : public QObject, private curation_observer {
    Q_OBJECT

public:
    enum class order { score, time, lineage };

    // Which findings are listed, and how.
    struct choice {
        std::optional<finding_kind> kind;    // nothing: all
        int first_t = 0;                     // time points, both included
        int last_t = std::numeric_limits<int>::max();
        std::string lineage;    // of this unit alone; "": all
        order by = order::score;
    };

    explicit ReviewWalk(ORVBrowser& window);

    [[nodiscard]] static ReviewWalk* of(const ORVBrowser& window);    // null where no pages were added

    // Makes the list, if it is not made yet, in the background.
    void begin();
    [[nodiscard]] bool is_made() { return _window.isOpen() && _review.is_complete(); }
    [[nodiscard]] double progress() const { return _review.progress(); }    // 0 to 1

    // ---- The list, as chosen; the pointers are good until it changes
    [[nodiscard]] const choice& chosen() const noexcept { return _choice; }
    void choose(choice wanted);
    [[nodiscard]] const std::vector<const finding*>& listed();
    [[nodiscard]] std::size_t open_at(int t);       // makes the list where it is not made
    [[nodiscard]] const review_counts& counts();    // of the lineage where one is chosen

    // ---- The finding on view
    [[nodiscard]] const std::optional<finding>& current() const noexcept { return _current; }
    // The row that it has in the list, or had until it was settled; -1: none.
    [[nodiscard]] int row() const noexcept { return _row; }
    [[nodiscard]] bool is_listed();              // it is, in that row
    [[nodiscard]] std::string reason() const;    // in words; "" for no finding
    void go_to(int row);
    void next();
    void previous();
    // What its cut would make of it, moved as far as it was; nothing when it proposes none.
    [[nodiscard]] const std::optional<unit_parting>& parting() const noexcept { return _parting; }
    void move_cut(double pixels);    // along its normal, pixel widths

    // ---- Decisions; afterwards the next finding is shown
    void accept();
    void dismiss();
    void accept_all();    // of those that are listed
    [[nodiscard]] review::alike alike();
    // That both are one nucleus, which is not shown for some time points, or that they are not after all.
    // False when they are not at least two time points apart.
    [[nodiscard]] bool toggle_gap(const std::string& earlier, const std::string& later);

    // The nucleus on view: the one of the finding, else the chosen one; "" for none.
    [[nodiscard]] std::string unit_on_view();
    void toggle_reviewed();
    void cut_unit();    // shows where it would be cut; accepting does it

    // The next unit with such a finding after the place on view, or the one before: in order of time, around
    // the ends.
    void walk(finding_kind kind, bool forth);

    // Keys without modifiers. False for others.
    [[nodiscard]] bool take_key(int key);

signals:
    void list_changed();
    void shown();    // the finding on view, or its preview, is another

private:
    void state_changed() override;
    void waiting_changed() override;
    void recording_changed() override;
    [[nodiscard]] bool is_left();
    void look_whether_left();
    void step_ended(edit_step& step) override { follow(changes_in(step)); }
    void step_replayed(const edit_step& step, bool forth) override { follow(changes_in(step, forth)); }
    void follow(const scene_changes& changes);
    [[nodiscard]] bool stands(const finding& f);
    void cut_anew();
    void make_on();
    void update_list();
    void put_in_order();
    void show(std::optional<finding> f);
    void lead_to(finding f);
    void show_cut();
    void show_next_after(int row);
    void say(const QString& text);

    ORVBrowser& _window;
    review _review;
    const Observing _observing{_window, *this};
    QTimer _making;
    QTimer _cutting;    // runs while the preview is out of date
    QTimer _tell_soon;
    QTimer _look_soon;
    bool _is_making_put_off = false;
    bool _is_by_hand = false;      // the cut on view
    bool _is_accepting = false;    // all of a class
    bool _is_stop_asked = false;
    choice _choice;
    std::vector<const finding*> _listed;
    review_counts _lineage_counts;
    unsigned long _listed_at = 0;    // the revision of the review
    std::optional<finding> _current;
    int _row = -1;
    std::optional<unit_parting> _parting;
    double _offset = 0;
};
