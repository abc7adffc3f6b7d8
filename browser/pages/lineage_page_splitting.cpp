// The buttons "Split" and "Auto split": which unit, what to know before, and what has become of it.
#include "keygen.h"
#include "lineage_page.h"
#include "message_line.h"
#include "review_walk.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int idle_look_ms = 450;    // two idle passes of the automatic split, and a little

}    // namespace

// Of the nucleus that was gone to, or chosen; where that is not doubtful, the first that is.
void LineagePage::split_shown()
{
    const std::string chosen = _window.chosen();
    if (_window.links().count(chosen) > 1 && decode(chosen).t() == _window.time_point())
        _window.split_shown(chosen);
    else
        _window.pushButton_split_clicked();
}

// Parents without elite ancestors count as one nucleus: all that follows rests on the first time point.
void LineagePage::warn_of_first_time_point()
{
    MessageLine* const line = MessageLine::of(_window);
    ReviewWalk* const walk = ReviewWalk::of(_window);
    const int first = _window.min_time_point();
    const std::set<std::string> units = _window.units(first);
    const bool has_elite = std::ranges::any_of(
        units, [this](const std::string& unit) { return _window.elite().contains(unit); });
    const std::size_t open = walk ? walk->open_at(first) : 0;
    if (line && !has_elite)
        line->say_error(tr("No unit of time point %1 is elite: all of them are taken for right").arg(first));
    else if (line && open > 0)
        line->say_error(tr("%1 findings are open at time point %2, whose units are taken for right")
                            .arg(open)
                            .arg(first));
}

// The passes begin once the switch itself is done: what goes on meanwhile may delete it.
void LineagePage::toggle_auto_split(bool on)
{
    _window.pushButton_auto_split_toggled(on);
    if (on)
        warn_of_first_time_point();
    if (on)
        QMetaObject::invokeMethod(this, &LineagePage::split_all, Qt::QueuedConnection);
}

// The window goes on looking for work until the switch is off: that is done once a pass has found none.
void LineagePage::split_all()
{
    if (!auto_split->isChecked() ||
        _window.is_running())    // a loop that is going on reads the switch itself
        return;
    const QPointer<LineagePage> self(this);
    _splits = _merges = 0;
    _edits_at_last_look = _window.edits();
    QTimer look;
    connect(&look, &QTimer::timeout, this, [this] {
        if (std::exchange(_edits_at_last_look, _window.edits()) == _window.edits())
            auto_split->setChecked(false);
    });
    look.start(idle_look_ms);
    _window.pushButton_split_clicked();
    if (!self)
        return;
    auto_split->setChecked(false);    // the window may have ended the loop itself
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
    line->forget_error();    // what was warned of
    line->say(tr("%1 split, %2 merged, %3 left").arg(_splits).arg(_merges).arg(left.size()));
}
