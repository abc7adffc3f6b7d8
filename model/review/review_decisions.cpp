// What a person decides about findings: proposals carried out, dismissals, marks of what was looked at.
#include "edit_scope.h"
#include "error_line.h"
#include "half_links.h"
#include "keygen.h"
#include "long_run.h"
#include "review.h"

#include <algorithm>

namespace {

dismissal dismissal_of(const finding& f)
{
    return {word_of(f.kind), f.unit, f.with.size() == 1 ? f.with.front() : std::string()};
}

bool is_alike(const finding& a, const finding& b) { return a.rule == b.rule && a.proposal == b.proposal; }

const char* title_of(const finding& f)
{
    constexpr const char* titles[] = {"Accept link",           "Accept unlink",
                                      "Accept merge",          "Accept cut",
                                      "Accept cut outline",    "Accept cut between planes",
                                      "Accept false positive", "Not an error"};
    return titles[static_cast<std::size_t>(f.proposal)];
}

}    // namespace

// ---- Accepting

bool review::accept(const finding& f, double offset)
{
    if (!_model.has_rois())
        return false;
    const EditScope step(_model, title_of(f), f.unit);
    if (carry_out(f, offset))
        return true;
    error_line("Cannot be done any more: ", proposal_of(f), " (", f.unit, ")");
    return false;
}

// Units are noted by their ROIs: heads may be others afterwards.
bool review::carry_out(const finding& f, double offset)
{
    if (f.proposal == proposal_kind::none) {
        _model.set_dismissed(dismissal_of(f), true);
        _model.set_reviewed(f.unit, true);
        return true;
    }
    std::set<std::string> rois = _model.member(f.unit);
    std::vector<std::string> others = f.proposal == proposal_kind::cut ? std::vector<std::string>() : f.with;
    for (const std::string& other : others)
        rois.merge(_model.member(other));
    const bool are_units =
        !_model.member(f.unit).empty() && std::ranges::all_of(f.with, [this](const std::string& other) {
            return _model.head_members().contains(other);
        });
    const std::string other = f.with.empty() ? std::string() : f.with.front();
    if (!are_units)
        return false;
    switch (f.proposal) {
    case proposal_kind::link:
        if (!carry_out_link(f.unit, other))
            return false;
        break;
    case proposal_kind::unlink:
        if (!carry_out_unlink(std::max(f.unit, other), std::min(f.unit, other)))
            return false;
        break;
    case proposal_kind::merge:
        if (other.empty() || other == f.unit)
            return false;
        _model.mergeUnits(f.unit, other);
        break;
    case proposal_kind::false_positive:
        _model.set_false_positives(rois, true);
        break;
    default:
        return carry_out_cut(f, offset);
    }
    note_edited(rois);
    return true;
}

void review::note_edited(const std::set<std::string>& rois)
{
    std::set<std::string> heads;
    for (const std::string& key : rois)
        if (const std::string head = _model.head(key); head != "N/A")
            heads.insert(head);
    for (const std::string& head : heads)
        _model.note_edited(head);
}

// The later one gets no second parent.
bool review::carry_out_link(const std::string& unit, const std::string& other)
{
    if (other.empty() || std::abs(decode(unit).t() - decode(other).t()) != 1)
        return false;
    const std::string& child = std::max(unit, other);
    if (!_model.parents(child).empty())
        return false;
    _model.link(unit, other);
    return true;
}

// However often the link is stored.
bool review::carry_out_unlink(const std::string& child, const std::string& parent)
{
    if (!_model.parents(child).contains(parent))
        return false;
    while (_model.parents(child).contains(parent))
        _model.release_child(parent, child);
    return true;
}

// ---- Cuts

// With two units that lie in it, each is taken for one nucleus; of an outline, the unit's own other ROIs and
// those of the neighbour tell where the two are.
parting_request review::request_of(const finding& f, double offset)
{
    parting_request how;
    how.offset = offset;
    if (f.proposal == proposal_kind::cut_between)
        how.above_plane = f.plane;
    if (f.proposal == proposal_kind::cut_outline && !f.with.empty()) {
        how.outline_plane = f.plane;
        how.centres = std::pair(_model.E_g(f.unit), _model.E_g(f.with.front()));
    }
    if (f.proposal == proposal_kind::cut && f.with.size() > 1)
        how.centres = std::pair(_model.E_g(f.with[0]), _model.E_g(f.with[1]));
    return how;
}

std::optional<unit_parting> review::preview(const finding& f, double offset)
{
    return _model.find_parting(f.unit, request_of(f, offset));
}

bool review::carry_out_cut(const finding& f, double offset)
{
    const LongRun run(_model);
    const std::set<std::string> free = free_around(f.unit);
    const auto how = preview(f, offset);
    const auto halves = how ? _model.part_unit(f.unit, *how) : std::nullopt;
    if (!halves)
        return false;
    if (f.proposal == proposal_kind::cut_outline) {
        const std::string piece = halves->second;
        for (const std::string& parent : _model.parents(piece))
            _model.release_child(parent, piece);
        for (const std::string& child : _model.children(piece))
            _model.release_child(piece, child);
        const std::set<std::string> rois = _model.member(piece);
        _model.mergeUnits(f.with.front(), piece);
        _model.note_edited(halves->first);
        note_edited(rois);
        return true;
    }
    const int t = decode(f.unit).t();
    half_links(_model, *halves, t - 1).give(free);
    half_links(_model, *halves, t + 1).give(free);
    _model.note_edited(halves->first);
    _model.note_edited(halves->second);
    return true;
}

// The units before and after that have no link to the time point of this one, and lie near.
std::set<std::string> review::free_around(const std::string& unit) const
{
    std::set<std::string> free;
    if (const scene_unit* const u = _scene.find(unit))
        for (const int t : {u->t - 1, u->t + 1})
            _scene.for_each_near(*u, t, unit_scene::farthest_reach, [&](const scene_unit& other, double) {
                if (_scene.is_live(other) && (t < u->t ? other.children.empty() : other.parent_entries == 0))
                    free.insert(other.head);
            });
    return free;
}

finding review::cut_by_hand(const std::string& unit) const
{
    finding f;
    f.kind = finding_kind::two_nuclei;
    f.rule = finding_rule::inner_cut;
    f.unit = unit;
    f.t = is_roi_key(unit) ? decode(unit).t() : 0;
    f.proposal = proposal_kind::cut;
    f.score = 1;
    return f;
}

// ---- Dismissals, and what was looked at

void review::dismiss(const finding& f) { _model.set_dismissed(dismissal_of(f), true); }

void review::take_back(const finding& f)
{
    const EditScope step(_model, "May be an error", f.unit);
    lineage noted;
    put_notes(_model.notes(), noted);
    for (const dismissal& d : noted.dismissed)
        if (d.head == f.unit && d.kind == word_of(f.kind))
            _model.set_dismissed(d, false);
}

void review::set_reviewed(const std::string& unit, bool on) { _model.set_reviewed(unit, on); }

bool review::is_reviewed(const std::string& unit) const { return _model.is_reviewed(unit); }

bool review::acknowledge_gap(const std::string& earlier, const std::string& later)
{
    const bool are_units = _model.head_members().contains(earlier) && _model.head_members().contains(later);
    if (!are_units || decode(later).t() < decode(earlier).t() + 2)
        return false;
    const EditScope step(_model, "Gap", earlier, later);
    _model.set_gap(earlier, later, true);
    _model.set_reviewed(earlier, true);
    _model.set_reviewed(later, true);
    return true;
}

bool review::is_gap(const std::string& earlier, const std::string& later) const
{
    return _model.notes().contains("GAP " + earlier + ' ' + later);
}

bool review::take_back_gap(const std::string& earlier, const std::string& later)
{
    if (!is_gap(earlier, later))
        return false;
    const EditScope step(_model, "No gap", earlier, later);
    _model.set_gap(earlier, later, false);
    return true;
}

// ---- All of a rule

review::alike review::all_like(const finding& f, const std::vector<const finding*>& among)
{
    const auto number = std::ranges::count_if(among, [&](const finding* open) { return is_alike(*open, f); });
    return {static_cast<std::size_t>(number), record_of(f.rule).share()};
}

// A unit that was changed by one of them is left: its findings may be others now.
review_summary review::accept_all_like(const finding& f, const std::vector<const finding*>& among,
                                       const std::function<bool()>& carry_on)
{
    std::vector<finding> all;
    for (const finding* const open : among)
        if (is_alike(*open, f))
            all.push_back(*open);
    review_summary summary;
    const EditScope step(_model, "Accept all");
    std::set<std::string> changed;
    for (const finding& next : all) {
        const auto is_changed = [&](const std::string& unit) { return changed.contains(unit); };
        const bool is_left = is_changed(next.unit) || std::ranges::any_of(next.with, is_changed);
        if ((carry_on && !carry_on()) || is_left || !carry_out(next, 0)) {
            ++summary.left;
            continue;
        }
        ++summary.accepted;
        if (next.proposal == proposal_kind::link)
            continue;
        changed.insert(next.unit);
        changed.insert(next.with.begin(), next.with.end());
    }
    return summary;
}
