#include "link_making.h"

#include "edit_scope.h"
#include "keygen.h"
#include "long_run.h"

#include <algorithm>
#include <iterator>

link_making::link_making(curation& model, const making& how)
    : _model(model), _recording(model.recording()), _how(how), _linker(model.info().scale)
{
}

bool link_making::step(int t)
{
    const MachineScope step(_model, "Make links");
    const std::optional<link_set> links = find(t);
    if (links)
        _model.enter_links(t, *links, _how.spares);
    return links.has_value();
}

std::optional<std::size_t> link_making::count(int t)
{
    const std::optional<link_set> links = find(t);
    if (!links)
        return std::nullopt;
    std::size_t kept = 0;
    std::set<std::string> linked;
    for (auto [entry, last] = _model.links_into(t); entry != last; ++entry)
        if (_model.is_kept(*entry, _how.spares)) {
            ++kept;
            linked.insert(entry->first);
        }
    return kept + static_cast<std::size_t>(std::ranges::count_if(*links, [&](const auto& link) {
               return !linked.contains(link.first) && _model.may_be_entered(link, _how.spares);
           }));
}

// The links into time point t that stay, by the numbers of their units.
kept_links link_making::kept(int t, const std::vector<std::string>& heads) const
{
    const auto number_in = [](const std::vector<std::string>& units, const std::string& unit) {
        const auto found = std::ranges::lower_bound(units, unit);
        return found != units.end() && *found == unit
                   ? std::optional(static_cast<std::size_t>(found - units.begin()))
                   : std::nullopt;
    };
    kept_links stay;
    for (auto [entry, last] = _model.links_into(t); entry != last; ++entry) {
        const auto child = number_in(heads, entry->first);
        const auto parent = number_in(_before, entry->second);
        if (child && parent && _model.is_kept(*entry, _how.spares))
            stay.links.push_back({*child, *parent});
    }
    if (_how.spares == spared::touched) {
        const auto is_touched = [this](const std::string& unit) { return _model.is_touched(unit); };
        std::ranges::transform(_before, std::back_inserter(stay.fixed_parents), is_touched);
        std::ranges::transform(heads, std::back_inserter(stay.fixed_children), is_touched);
    }
    return stay;
}

// Nothing when the recording was closed meanwhile.
std::optional<link_making::link_set> link_making::find(int t)
{
    if (_model.recording() != _recording || !_model.has_rois())
        return std::nullopt;
    return _how.rule == unit_rule::overlap ? _model.links_by_overlap(t) : find_by_nearest(t);
}

// In the order of their heads.
std::vector<std::string> link_making::units_at(int t) const
{
    const std::set<std::string> units = _model.units(t);
    return {units.begin(), units.end()};
}

// REQUIRES: units of time point t, in the order of their heads
std::vector<unit_rasters> link_making::rasters_of(const std::vector<std::string>& units, int t) const
{
    std::vector<const std::pair<const std::string, roi>*> rois;    // found faster here than among all
    const auto [first_roi, last_roi] = at_time_point(_model.m_roidb->db, t);
    for (auto entry = first_roi; entry != last_roi; ++entry)
        rois.push_back(&*entry);
    const auto key_of = [](const auto* entry) -> const std::string& { return entry->first; };
    std::vector<const roi*> members;
    std::vector<std::size_t> ends;    // of the members of each unit
    auto [entry, last] = at_time_point(_model.m_head_members, t);
    for (const std::string& unit : units) {
        while (entry != last && entry->first < unit)
            ++entry;
        for (; entry != last && entry->first == unit; ++entry) {
            const auto found = std::ranges::lower_bound(rois, entry->second, {}, key_of);
            if (found != rois.end() && (*found)->first == entry->second)
                members.push_back(&(*found)->second);
        }
        ends.push_back(members.size());
    }
    const std::vector<q_roiimg*> made = _model.m_q_roiimgdb->qrimgs(members);
    std::vector<unit_rasters> rasters;
    rasters.reserve(units.size());
    std::size_t first = 0;
    for (const std::size_t end : ends) {
        rasters.emplace_back(made.begin() + first, made.begin() + end);
        first = end;
    }
    return rasters;
}

std::optional<link_making::link_set> link_making::find_by_nearest(int t)
{
    LongRun run(_model);    // keeps the rasters of both time points
    if (!_has_begun) {
        _before = units_at(t - 1);
        (void)_linker.link(rasters_of(_before, t - 1));
        _has_begun = true;
    } else if (_releases != _model.m_q_roiimgdb->releases(t - 1)) {
        _linker.give_again(rasters_of(_before, t - 1));
    }
    _releases = _model.m_q_roiimgdb->releases(t);
    std::vector<std::string> heads = units_at(t);
    const auto found = _linker.link(
        rasters_of(heads, t), [&run] { return run.poll_events(); }, kept(t, heads));
    if (!run.alive())
        return std::nullopt;
    link_set links;
    for (const unit_link& link : found)
        links.emplace(heads[link.child], _before[link.parent]);
    _before = std::move(heads);
    return links;
}
