// What a person decides about the finding on view.
#include "busy_run.h"
#include "keygen.h"
#include "review_walk.h"

#include <algorithm>

void ReviewWalk::accept()
{
    look_whether_left();
    if (!_current)
        return say(tr("No finding is shown. N: the next one"));
    const finding f = *_current;
    const auto open = _review.all_of(f.unit);
    if (!_is_by_hand && std::ranges::find(open, f) == open.end()) {
        next();
        return say(tr("That is settled already"));
    }
    if (!_review.accept(f, _offset))    // which says why
        return;
    _window.show_changes();
    next();
}

void ReviewWalk::dismiss()
{
    look_whether_left();
    if (!_current)
        return say(tr("No finding is shown. N: the next one"));
    if (_is_by_hand)
        return show(std::nullopt);
    const finding f = *_current;
    _review.dismiss(f);
    next();
}

review::alike ReviewWalk::alike()
{
    return _current && !_is_by_hand ? _review.all_like(*_current, listed()) : review::alike();
}

void ReviewWalk::accept_all()
{
    if (!_current || !alike().is_offered())
        return;
    const finding f = *_current;
    const QPointer<ReviewWalk> self(this);
    review_summary summary;
    {
        BusyRun run(_window);
        _is_accepting = true;
        _is_stop_asked = false;
        say(tr("Accepting %1. Esc: stop").arg(alike().number));
        summary =
            _review.accept_all_like(f, listed(), [&] { return run.process_events() && !_is_stop_asked; });
        if (!self)
            return;
        _is_accepting = false;
        if (!run.alive())
            return;
    }
    _window.show_changes();
    next();
    say(tr("%1 accepted, %2 left").arg(summary.accepted).arg(summary.left));
}

std::string ReviewWalk::unit_on_view()
{
    look_whether_left();
    if (!_current)
        return _window.chosen();
    return _window.head_members().contains(_current->unit) ? _current->unit : std::string();
}

bool ReviewWalk::toggle_gap(const std::string& earlier, const std::string& later)
{
    return _review.is_gap(earlier, later) ? _review.take_back_gap(earlier, later)
                                          : _review.acknowledge_gap(earlier, later);
}

void ReviewWalk::toggle_reviewed()
{
    const std::string unit = unit_on_view();
    if (!_window.head_members().contains(unit))
        return say(tr("No nucleus is chosen"));
    _review.set_reviewed(unit, !_review.is_reviewed(unit));
    _window.show_changes();
}

void ReviewWalk::cut_unit()
{
    const std::string pointed = _window.head(_window.roi_under_pointer());
    const std::string on_view = unit_on_view();
    const std::string unit = !_current && is_roi_key(pointed) ? pointed : on_view;
    if (!_window.head_members().contains(unit))
        return say(tr("No nucleus is chosen"));
    show(_review.cut_by_hand(unit));
    _is_by_hand = true;
    emit shown();
    say(_parting ? tr("Cut it here? Return; comma and full stop move the cut; Esc: no")
                 : tr("There are no two sides to it"));
    if (!_parting)
        show(std::nullopt);
}

void ReviewWalk::walk(finding_kind kind, bool forth)
{
    _review.finish();
    const std::set<std::string>& units = _review.units_with(kind);
    if (units.empty())
        return say(tr("%1: none").arg(QString::fromUtf8(name_of(kind))));
    const std::string chosen = _window.chosen();
    const bool is_here = is_roi_key(chosen) && decode(chosen).t() == _window.time_point();
    const std::string from = is_here ? chosen : time_key(_window.time_point());
    auto found = forth ? units.upper_bound(from) : units.lower_bound(from);
    if (forth && found == units.end())
        found = units.begin();
    if (!forth)
        found = std::prev(found == units.begin() ? units.end() : found);
    const auto all = _review.all_of(*found);
    const auto of_kind = std::ranges::find(all, kind, &finding::kind);
    if (of_kind == all.end())
        return;
    _row = -1;
    _listed_at = 0;    // which finds its row
    show(*of_kind);
}
