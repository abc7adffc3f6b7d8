#include "review_walk.h"

#include "keygen.h"
#include "message_line.h"
#include "places.h"

#include <algorithm>
#include <map>
#include <utility>

namespace {

constexpr double step_of_cut = 1;    // pixel widths, for each press of a key

bool is_cut(const finding& f)
{
    return f.proposal == proposal_kind::cut || f.proposal == proposal_kind::cut_outline ||
           f.proposal == proposal_kind::cut_between;
}

}    // namespace

ReviewWalk::ReviewWalk(ORVBrowser& window) : QObject(&window), _window(window), _review(window)
{
    setObjectName("reviewWalk");
    connect(&_making, &QTimer::timeout, this, &ReviewWalk::make_on);
    connect(&_cutting, &QTimer::timeout, this, &ReviewWalk::cut_anew);
    _tell_soon.setSingleShot(true);
    connect(&_tell_soon, &QTimer::timeout, this, &ReviewWalk::list_changed);
    _look_soon.setSingleShot(true);
    connect(&_look_soon, &QTimer::timeout, this, &ReviewWalk::look_whether_left);
    _review.on_change = [this] { _tell_soon.start(0); };
}

ReviewWalk* ReviewWalk::of(const ORVBrowser& window)
{
    return window.findChild<ReviewWalk*>("reviewWalk", Qt::FindDirectChildrenOnly);
}

// Called after each single change.
void ReviewWalk::state_changed()
{
    if (_current)
        _look_soon.start(0);
}

void ReviewWalk::waiting_changed()
{
    if (!_window.is_waited_for() && std::exchange(_is_making_put_off, false))
        begin();
}

// Another nucleus was chosen, or what the finding is about has gone.
bool ReviewWalk::is_left()
{
    return _current && (!stands(*_current) || (_window.head_members().contains(_current->unit) &&
                                               _window.chosen() != _current->unit));
}

void ReviewWalk::look_whether_left()
{
    if (is_left())
        show(std::nullopt);
}

void ReviewWalk::recording_changed()
{
    _making.stop();
    show(std::nullopt);
    choice wanted;    // time points and lineages are of this recording
    wanted.kind = _choice.kind;
    wanted.by = _choice.by;
    choose(std::move(wanted));
}

// ---- The list

void ReviewWalk::begin()
{
    if (_window.isOpen() && !is_made() && !_making.isActive())
        _making.start(0);
}

void ReviewWalk::make_on()
{
    if (_window.is_busy()) {    // what goes on makes it stale, and would look for us at each of its steps
        _is_making_put_off = true;
        _making.stop();
        return;
    }
    if (!_window.isOpen() || !_review.advance())
        _making.stop();
    emit list_changed();
}

void ReviewWalk::choose(choice wanted)
{
    _choice = std::move(wanted);
    _listed_at = 0;
    _row = -1;
    emit list_changed();
}

const std::vector<const finding*>& ReviewWalk::listed()
{
    if (!is_made())
        _listed.clear();
    else if (_listed_at != _review.revision())
        update_list();
    return _listed;
}

void ReviewWalk::update_list()
{
    _listed = _review.ranked();
    _listed_at = _review.revision();
    if (!_window.head_members().contains(_choice.lineage))
        _choice.lineage.clear();
    std::set<std::string> lineage;
    if (!_choice.lineage.empty()) {
        lineage = _review.lineage_of(_choice.lineage);
        _lineage_counts = _review.counts_of(lineage);
    }
    std::erase_if(_listed, [&](const finding* f) {
        return (_choice.kind && f->kind != *_choice.kind) || f->t < _choice.first_t ||
               f->t > _choice.last_t || (!_choice.lineage.empty() && !lineage.contains(f->unit));
    });
    put_in_order();
    const auto found = std::ranges::find_if(_listed, [this](const finding* f) { return _current == *f; });
    if (found != _listed.end())
        _row = static_cast<int>(found - _listed.begin());
}

void ReviewWalk::put_in_order()
{
    if (_choice.by == order::time)
        std::ranges::stable_sort(_listed, {}, [](const finding* f) { return f->unit; });
    if (_choice.by != order::lineage)
        return;
    std::map<std::string, std::string> roots;
    for (const finding* const f : _listed)
        roots.emplace(f->unit, _review.root_of(f->unit));
    std::ranges::stable_sort(_listed, {},
                             [&](const finding* f) { return std::pair(roots.at(f->unit), f->unit); });
}

std::size_t ReviewWalk::open_at(int t)
{
    _review.finish();
    return static_cast<std::size_t>(
        std::ranges::count_if(_review.ranked(), [t](const finding* f) { return f->t == t; }));
}

const review_counts& ReviewWalk::counts()
{
    (void)listed();    // which keeps those of the lineage
    return _choice.lineage.empty() ? _review.counts() : _lineage_counts;
}

// ---- The finding on view

bool ReviewWalk::is_listed()
{
    const auto& all = listed();
    return _row >= 0 && _row < static_cast<int>(all.size()) &&
           _current == *all[static_cast<std::size_t>(_row)];
}

std::string ReviewWalk::reason() const
{
    if (!_current)
        return {};
    return _is_by_hand ? tr("As you have asked").toStdString() : reason_of(*_current);
}

void ReviewWalk::go_to(int row)
{
    if (row < 0 || row >= static_cast<int>(listed().size()))
        return;
    _row = row;
    show(*_listed[static_cast<std::size_t>(row)]);
}

void ReviewWalk::next()
{
    begin();
    show_next_after(is_listed() ? _row : _row - 1);    // where it is settled, the next has its row
}

void ReviewWalk::previous()
{
    begin();
    const int rows = static_cast<int>(listed().size());
    if (rows > 0)
        go_to(_row <= 0 ? rows - 1 : std::min(_row, rows) - 1);
}

void ReviewWalk::show_next_after(int row)
{
    const int rows = static_cast<int>(listed().size());
    if (rows > 0)
        return go_to(row < -1 || row + 1 >= rows ? 0 : row + 1);
    show(std::nullopt);
    const bool are_others = is_made() && _review.counts().open > 0;
    say(are_others  ? tr("Nothing left of what is listed; %1 others").arg(_review.counts().open)
        : is_made() ? tr("Nothing left")
                    : tr("The list is being made"));
}

void ReviewWalk::show(std::optional<finding> f)
{
    _current = std::move(f);
    _parting.reset();
    _cutting.stop();
    _offset = 0;
    _is_by_hand = false;
    if (_current)
        lead_to(*_current);
    else
        emit shown();
}

// Events are served on the way: they may show another one, or delete the window.
void ReviewWalk::lead_to(finding f)
{
    const QPointer<ReviewWalk> self(this);
    if (_window.head_members().contains(f.unit))
        _window.choose(f.unit);
    lead_to_unit(_window, f.unit);
    if (!self || _current != f)
        return;
    const bool has_plane = f.proposal == proposal_kind::cut_outline ||
                           f.proposal == proposal_kind::cut_between || f.kind == finding_kind::two_pieces;
    if (has_plane)
        _window.setCurrentFocalPlane(f.plane);
    if (!self || _current != f)
        return;
    show_cut();
    emit shown();
    const bool may_be_gap = f.proposal == proposal_kind::none &&
                            (f.kind == finding_kind::dead_end || f.kind == finding_kind::unlinked);
    say(QString::fromStdString(reason_of(f) + ". " + proposal_of(f)) + tr("? Return") +
        (may_be_gap ? tr("; seen again after a gap: J") : QString()));
}

void ReviewWalk::show_cut()
{
    if (_current && is_cut(*_current))
        _parting = _review.preview(*_current, _offset);
}

void ReviewWalk::move_cut(double pixels)
{
    if (!_parting)
        return;
    auto moved = _review.preview(*_current, _offset + pixels);
    if (!moved)    // all of it would lie on one side
        return;
    _offset += pixels;
    _parting = std::move(moved);
    emit shown();
}

// ---- What was edited meanwhile

void ReviewWalk::follow(const scene_changes& changes)
{
    if (!_current || _is_accepting)
        return;
    const auto is_reshaped = [&](const std::string& unit) { return changes.reshaped.contains(unit); };
    if (!stands(*_current))
        show(std::nullopt);
    else if (is_cut(*_current) &&
             (is_reshaped(_current->unit) || std::ranges::any_of(_current->with, is_reshaped)))
        _cutting.start(0);    // this is called in the middle of the edit
}

// Whether its units, or ROI in none, are there, and no link was made or removed by hand.
bool ReviewWalk::stands(const finding& f)
{
    const bool is_free =
        _window.has_rois() && _window.rois().db.contains(f.unit) && !is_roi_key(_window.head(f.unit));
    const auto is_unit = [this](const std::string& unit) { return _window.head_members().contains(unit); };
    if ((!is_unit(f.unit) && !is_free) || !std::ranges::all_of(f.with, is_unit))
        return false;
    if (f.with.empty() || (f.proposal != proposal_kind::link && f.proposal != proposal_kind::unlink))
        return true;
    const auto [parent, child] = std::minmax(f.unit, f.with.front());
    return _window.parents(child).contains(parent) == (f.proposal == proposal_kind::unlink);
}

void ReviewWalk::cut_anew()
{
    if (_window.is_busy())
        return;
    _cutting.stop();
    _offset = 0;
    show_cut();
    if (_parting)
        emit shown();
    else
        show(std::nullopt);
}

bool ReviewWalk::take_key(int key)
{
    if (_is_accepting) {
        _is_stop_asked |= key == Qt::Key_Escape;
        return true;
    }
    switch (key) {
    case Qt::Key_N:
        return next(), true;
    case Qt::Key_P:
        return previous(), true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return accept(), true;
    case Qt::Key_I:
        return dismiss(), true;
    case Qt::Key_V:
        return toggle_reviewed(), true;
    case Qt::Key_K:
        return cut_unit(), true;
    case Qt::Key_Comma:
    case Qt::Key_Period:
        if (!_parting)
            return false;
        return move_cut(key == Qt::Key_Comma ? -step_of_cut : step_of_cut), true;
    case Qt::Key_Escape:
        if (!_current)
            return false;
        return show(std::nullopt), true;
    default:
        return false;
    }
}

void ReviewWalk::say(const QString& text)
{
    if (MessageLine* const line = MessageLine::of(_window))
        line->say(text);
}
