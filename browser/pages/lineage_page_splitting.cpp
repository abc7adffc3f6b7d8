// The buttons "Split" and "Auto split": which unit, what to know before, and what has become of it.
#include "busy_run.h"
#include "keygen.h"
#include "lineage_page.h"
#include "message_line.h"
#include "review_walk.h"

#include <algorithm>
#include <set>
#include <string>

// A doubtful unit that is no false positive and not among those left alone; "" when there is none.
std::string LineagePage::first_suspect(const std::set<std::string>& left_alone)
{
    _window.search_doubt_units();
    for (const std::string& unit : _window.doubtful())
        if (!_window.is_false(unit) && !left_alone.contains(unit))
            return unit;
    return {};
}

// Of the nucleus that was gone to, or chosen; where that is not doubtful, the first that is.
void LineagePage::split_shown()
{
    const std::string chosen = _window.chosen();
    const bool is_on_view = _window.links().count(chosen) > 1 && decode(chosen).t() == _window.time_point();
    const std::string unit = is_on_view ? chosen : first_suspect({});
    if (!unit.empty())
        _window.split_shown(unit);
    else if (MessageLine* const line = MessageLine::of(_window))
        line->say(tr("No unit is doubtful"));
}

// Parents without elite ancestors count as one nucleus: all that follows rests on the first time point.
void LineagePage::warn_of_first_time_point()
{
    ReviewWalk* const walk = ReviewWalk::of(_window);
    const int first = _window.min_time_point();
    const std::set<std::string> units = _window.units(first);
    const bool has_elite = std::ranges::any_of(
        units, [this](const std::string& unit) { return _window.elite().contains(unit); });
    const std::size_t open = walk ? walk->open_at(first) : 0;
    _split_warning.clear();
    if (!has_elite)
        _split_warning = tr("No unit of time point %1 is elite: all of them are taken for right").arg(first);
    else if (open > 0)
        _split_warning =
            tr("%1 findings are open at time point %2, whose units are taken for right").arg(open).arg(first);
    if (MessageLine* const line = MessageLine::of(_window))
        line->say_error(_split_warning);
}

// The passes begin once the switch itself is done: what goes on meanwhile may delete it.
void LineagePage::toggle_auto_split(bool on)
{
    _window.pushButton_auto_split_toggled(on);
    if (!on)
        return;
    warn_of_first_time_point();
    QMetaObject::invokeMethod(this, &LineagePage::split_all, Qt::QueuedConnection);
}

// Until none is left that anything can be done for, or the switch is off.
void LineagePage::split_all()
{
    if (!auto_split->isChecked() || _window.is_running())
        return;
    const QPointer<LineagePage> self(this);
    _splits = _merges = 0;
    {
        BusyRun run(_window);
        std::set<std::string> left_alone;
        for (std::string unit; auto_split->isChecked() && !(unit = first_suspect(left_alone)).empty();) {
            const unsigned long before = _window.edits();
            _window.split_shown(unit);
            if (!run.alive() || !run.process_events())
                break;
            run.checkpoint();
            if (_window.edits() == before)
                left_alone.insert(unit);
        }
    }
    if (!self)
        return;
    auto_split->setChecked(false);
    tell_splits();
}

// What a pass of the automatic split has done, from its step.
void LineagePage::step_ended(edit_step& step)
{
    if (!auto_split->isChecked() || !step.title().starts_with("Repair "))
        return;
    const bool has_cut = step.concerns(kept_in::rois);
    _splits += has_cut;
    _merges += !has_cut && step.changes().find("+unit ") != std::string::npos;
}

void LineagePage::tell_splits()
{
    if (!_window.isOpen())
        return;
    _window.search_doubt_units();
    std::set<std::string> left = _window.doubtful();
    std::erase_if(left, [this](const std::string& unit) { return _window.is_false(unit); });
    MessageLine* const line = MessageLine::of(_window);
    if (!line)
        return;
    const QString done = tr("%1 split, %2 merged, %3 left").arg(_splits).arg(_merges).arg(left.size());
    line->forget_error();
    line->say(_split_warning.isEmpty() ? done : done + ". " + _split_warning);
}
