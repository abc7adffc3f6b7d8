// The list: making it in slices, following the curation, and what is asked of it. review_decisions.cpp holds
// what a person decides.
#include "review.h"

#include "finding_rules.h"
#include "keygen.h"

#include <algorithm>
#include <chrono>

namespace {

// A step that names more units than this is followed by making the list anew, in slices.
constexpr std::size_t most_followed = 2000;

bool has_note(const unit_notes& notes, const std::string& text)
{
    const auto note = notes.lower_bound(text);
    return note != notes.end() && note->starts_with(text) &&
           (note->size() == text.size() || (*note)[text.size()] == ' ');
}

}    // namespace

review::review(curation& model) : _model(model), _observing(model, *this), _scene(model) { begin_anew(); }

review::~review() = default;

// ---- Making the list

void review::recording_changes()
{
    _list.clear();
    _is_complete = false;
    has_changed();
}

void review::begin_anew()
{
    _scene.begin();
    _list.clear();
    _next_t = _scene.first_t();
    _is_complete = false;
    _counts = {};
    _counted.clear();
    _most = 0;
    _known_edits = _model.edits();
    has_changed();
}

// What is changed without a step, as when work is taken up, is noticed by the count of edits.
void review::begin_anew_if_stale()
{
    if (_known_edits != _model.edits() && !_model.is_busy())
        begin_anew();
}

bool review::advance(int slice_ms)
{
    begin_anew_if_stale();
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(slice_ms);
    while (!_is_complete && _model.has_rois()) {
        if (!_scene.is_loaded())
            _scene.load_next();
        else if (_next_t <= _scene.last_t())
            find_all_at(_next_t++);
        else {
            _list.keep_ranked();
            _is_complete = true;
            has_changed();
            return false;
        }
        if (std::chrono::steady_clock::now() >= end)
            return true;
    }
    return false;
}

void review::finish()
{
    while (advance(1000)) {
    }
}

bool review::is_complete()
{
    begin_anew_if_stale();
    return _is_complete;
}

double review::progress() const noexcept
{
    if (_is_complete)
        return 1;
    const int times = _scene.last_t() - _scene.first_t() + 1;
    const int done = (_scene.next_t() - _scene.first_t()) + (_next_t - _scene.first_t());
    return times > 0 ? done / (2.0 * times + 1) : 0;
}

void review::find_all_at(int t)
{
    for (const auto& [head, u] : _scene.units_at(t)) {
        set_open(head, findings_of(_scene, *u));
        count(head, u);
    }
    for (const std::string& key : _scene.loose_at(t))
        set_open(key, findings_of_roi(_scene, key));
    _scene.release_rasters();
}

// ---- Following the curation

// A list in the making begins anew: what was loaded may be others by now.
void review::follow(const scene_changes& changes)
{
    if (!_is_complete || changes.reshaped.size() + changes.relinked.size() > most_followed)
        return begin_anew();
    const auto around = _scene.follow(changes);
    if (!around)
        return begin_anew();
    for (const std::string& key : *around)
        find_again(key);
    _scene.release_rasters();
    _known_edits = _model.edits();
    has_changed();
}

void review::find_again(const std::string& key)
{
    scene_unit* const u = _scene.find(key);
    count(key, u);
    if (u)
        set_open(key, findings_of(_scene, *u));
    else
        set_open(key, is_roi_key(key) ? findings_of_roi(_scene, key) : std::vector<finding>());
}

void review::count(const std::string& key, const scene_unit* u)
{
    if (const auto before = _counted.find(key); before != _counted.end()) {
        --_counts.units;
        _counts.reviewed -= before->second;
        _counted.erase(before);
    }
    if (!u || !_scene.is_live(*u))
        return;
    ++_counts.units;
    _counts.reviewed += u->is_reviewed;
    _counted.emplace(key, u->is_reviewed);
}

void review::set_open(const std::string& key, std::vector<finding> found)
{
    const std::size_t dismissed =
        std::erase_if(found, [this](const finding& f) { return is_dismissed(f) || is_in_gap(f); });
    _list.set(key, std::move(found), dismissed > 0 ? 1 : 0);
}

bool review::is_dismissed(const finding& f) const
{
    return has_note(_model.notes(), std::string("DISMISSED ") + word_of(f.kind) + ' ' + f.unit);
}

bool review::is_in_gap(const finding& f) const
{
    const scene_unit* const u = _scene.find(f.unit);
    return u && ((f.kind == finding_kind::dead_end && u->is_before_gap) ||
                 (f.kind == finding_kind::unlinked && u->is_behind_gap));
}

void review::has_changed()
{
    ++_revision;
    if (_is_complete)
        _most = std::max(_most, _list.ranked().size() + _list.dismissed());
    if (on_change)
        on_change();
}

// ---- The list

unsigned long review::revision()
{
    begin_anew_if_stale();
    return _revision;
}

const std::vector<const finding*>& review::ranked()
{
    static const std::vector<const finding*> none;
    return is_complete() ? _list.ranked() : none;
}

const finding* review::of(const std::string& unit)
{
    static const std::vector<finding> none;
    const std::vector<finding>& open = is_complete() ? _list.all_of(unit) : none;
    return open.empty() ? nullptr : &open.front();
}

std::vector<finding> review::all_of(const std::string& unit)
{
    return is_complete() ? _list.all_of(unit) : std::vector<finding>();
}

const std::set<std::string>& review::units_with(finding_kind kind)
{
    static const std::set<std::string> none;
    return is_complete() ? _list.units_with(kind) : none;
}

// ---- Counts

const review_counts& review::counts()
{
    begin_anew_if_stale();
    _counts.open = ranked().size();
    _counts.total = _most;
    _counts.kinds.clear();
    for (std::size_t k = 0; k < finding_kind_count; ++k)
        if (const auto kind = static_cast<finding_kind>(k); _list.listed(kind) > 0)
            _counts.kinds[kind] = _list.listed(kind);
    return _counts;
}

std::set<std::string> review::lineage_of(const std::string& unit)
{
    std::set<std::string> found;
    const scene_unit* const start = is_complete() ? _scene.find(unit) : nullptr;
    std::vector<const scene_unit*> to_visit;
    if (start)
        to_visit.push_back(start);
    while (!to_visit.empty()) {
        const scene_unit* const u = to_visit.back();
        to_visit.pop_back();
        if (!found.insert(u->head).second)
            continue;
        to_visit.insert(to_visit.end(), u->parents.begin(), u->parents.end());
        to_visit.insert(to_visit.end(), u->children.begin(), u->children.end());
    }
    return found;
}

std::string review::root_of(const std::string& unit)
{
    const scene_unit* u = is_complete() ? _scene.find(unit) : nullptr;
    while (u && !u->parents.empty())
        u = u->parents.front();
    return u ? u->head : unit;
}

review_counts review::counts_of(const std::set<std::string>& units)
{
    review_counts found;
    for (const std::string& unit : units) {
        if (const finding* const f = of(unit)) {
            ++found.open;
            ++found.kinds[f->kind];
        }
        const scene_unit* const u = is_complete() ? _scene.find(unit) : nullptr;
        if (!u || !_scene.is_live(*u))
            continue;
        ++found.units;
        found.reviewed += u->is_reviewed;
    }
    found.total = found.open;
    return found;
}
