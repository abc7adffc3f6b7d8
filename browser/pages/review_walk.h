// review_walk.h - from one finding to the next: which is on view, and what a person decides about it.
//
// Shared by the page "Review", its keys, the work list and the preview on the canvas. The list is made in
// slices from when somebody first asks for it; the window stays alive.
#pragma once
#include "orvbrowser.h"
#include "review.h"

#include <QObject>
#include <QTimer>

#include <optional>
#include <string>
#include <vector>

class ReviewWalk : public QObject, private curation_observer {
    Q_OBJECT

public:
    enum class order { score, time, lineage };

    explicit ReviewWalk(ORVBrowser& window);

    [[nodiscard]] static ReviewWalk* of(const ORVBrowser& window);    // null where no pages were added

    // Makes the list, if it is not made yet, in the background.
    void begin();
    [[nodiscard]] bool is_made() { return _window.isOpen() && _review.is_complete(); }
    [[nodiscard]] double progress() const { return _review.progress(); }    // 0 to 1

    // ---- The list, as chosen; the pointers are good until it changes
    void set_filter(std::optional<finding_kind> kind);
    void set_order(order wanted);
    [[nodiscard]] const std::vector<const finding*>& listed();
    [[nodiscard]] const review_counts& counts() { return _review.counts(); }

    // ---- The finding on view
    [[nodiscard]] const std::optional<finding>& current() const noexcept { return _current; }
    // The row that it has in the list, or had until it was settled; -1: none.
    [[nodiscard]] int row() const noexcept { return _row; }
    void go_to(int row);
    void next();
    void previous();
    // What its cut would make of it, moved as far as it was; nothing when it proposes none.
    [[nodiscard]] const std::optional<unit_parting>& parting() const noexcept { return _parting; }
    void move_cut(double pixels);    // along its normal, pixel widths

    // ---- Decisions; afterwards the next finding is shown
    void accept();
    void dismiss();
    void accept_all();
    [[nodiscard]] review::alike alike();

    // Of the nucleus on view: the one of the finding, else the chosen one.
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
    void recording_changed() override;
    void make_on();
    void update_list();
    void show(std::optional<finding> f);
    void lead_to(const finding& f);
    void show_cut();
    void show_next_after(int row);
    void say(const QString& text);
    [[nodiscard]] std::string unit_on_view();

    ORVBrowser& _window;
    review _review;
    const Observing _observing{_window, *this};
    QTimer _making;
    QTimer _tell_soon;
    std::optional<finding_kind> _filter;
    order _order = order::score;
    std::vector<const finding*> _listed;
    unsigned long _listed_at = 0;    // the revision of the review
    std::optional<finding> _current;
    int _row = -1;
    std::optional<unit_parting> _parting;
    double _offset = 0;
};
