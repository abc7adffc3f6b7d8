// Making units of whole time points, by either rule, and again with care for what is there; which links stay.
#include "curation.h"
#include "edit_scope.h"
#include "keygen.h"
#include "long_run.h"

#include <QScopeGuard>

#include <algorithm>

bool curation::is_touched(const string& unit)
{
    return isElite(unit) || m_unit_notes.contains("EDITED " + unit);
}

// Whether making leaves the unit of this ROI, if it is in one, as it is.
bool curation::is_spared(const string& key, spared spares)
{
    const string unit = spares == spared::nothing ? string() : head(key);
    if (unit.empty() || unit == "N/A")
        return false;
    return spares == spared::what_is || is_touched(unit);
}

// REQUIRES: an ROI of the recording
bool curation::may_be_grouped(const string& key, spared spares)
{
    return !m_removed_roi_set.contains(key) && !is_spared(key, spares);
}

// ---- Units

void curation::make_units(int t, double overlap)
{
    make_units(t, {unit_rule::overlap, overlap, spared::what_is});
}

// A unit is entered once it is complete: what a handler does meanwhile never meets half of one.
void curation::make_units(int t, const making& how)
{
    if (!has_rois())
        return;
    const MachineScope step(*this, "Make units");
    const LongRun run(*this);
    m_auto_make_units = true;
    const auto done = qScopeGuard([state = m_run_state] {
        if (state->model)    // a handler may delete it
            state->model->m_auto_make_units = false;
    });
    const std::pair before(m_roidb->revision(), m_edits);
    std::optional<key_groups> groups = groups_at(t, how);
    if (!groups)
        return;
    const bool was_edited = before != std::pair(m_roidb->revision(), m_edits);
    dissolve(units_to_make_anew(t, how.spares), t);
    for (auto& [named, members] : *groups) {
        if (was_edited)
            std::erase_if(members, [&](const string& key) {    // a handler may have taken it
                return m_members_head.contains(key) || !m_roidb->db.contains(key);
            });
        if (!members.empty())
            register_unit(members.contains(named) ? named : *members.begin(), members);
    }
}

std::optional<std::size_t> curation::units_after_making(int t, const making& how)
{
    const std::optional<key_groups> groups = has_rois() ? groups_at(t, how) : std::nullopt;
    if (!groups)
        return std::nullopt;
    return units(t).size() - units_to_make_anew(t, how.spares).size() + groups->size();
}

std::set<std::string> curation::units_to_make_anew(int t, spared spares)
{
    set<string> found = spares == spared::what_is ? set<string>() : units(t);
    std::erase_if(found, [&](const string& unit) { return is_spared(unit, spares); });
    return found;
}

// The ROIs that belong together; nothing when the recording was closed meanwhile.
std::optional<curation::key_groups> curation::groups_at(int t, const making& how)
{
    return how.rule == unit_rule::nearest ? groups_by_nearest(t, how) : groups_by_overlap(t, how);
}

std::optional<curation::key_groups> curation::groups_by_nearest(int t, const making& how)
{
    LongRun run(*this);
    std::vector<string> keys;
    std::vector<const roi*> rois;
    const auto [first, last] = at_time_point(m_roidb->db, t);
    for (auto entry = first; entry != last; ++entry)
        if (may_be_grouped(entry->first, how.spares)) {
            keys.push_back(entry->first);
            rois.push_back(&entry->second);
        }
    const std::vector<q_roiimg*> made = m_q_roiimgdb->qrimgs(rois);
    const std::vector<const roi_mask*> rasters(made.begin(), made.end());
    const auto found = group_nearest(rasters, {.share = how.share}, [&run] { return run.poll_events(); });
    if (!run.alive())
        return std::nullopt;
    key_groups groups;
    for (const roi_group& group : found) {
        set<string> members;
        for (const std::size_t i : group)
            members.insert(keys[i]);
        const string named = *members.begin();
        groups.push_back({named, std::move(members)});
    }
    return groups;
}

// Plane by plane from the lowest, each ROI takes in those on neighbouring planes that share enough with it,
// and so on.
std::optional<curation::key_groups> curation::groups_by_overlap(int t, const making& how)
{
    LongRun run(*this);
    key_groups groups;
    set<string> taken;
    for (const roi& r : free_rois_in_order_of_planes(t, how.spares)) {
        const string key = keygen(r);
        if (taken.contains(key))
            continue;
        set<string> members;
        flood(r, t, r.z(), 0.0, how.share, [&](const string& reached) {
            return may_be_grouped(reached, how.spares) && !taken.contains(reached) &&
                   members.insert(reached).second;
        });
        if (!run.alive())
            return std::nullopt;
        members.insert(key);    // without a pixel it is not reached
        taken.insert(members.begin(), members.end());
        groups.push_back({key, std::move(members)});
    }
    return groups;
}

// Plane by plane, on each as the index has them.
std::vector<roi> curation::free_rois_in_order_of_planes(int t, spared spares)
{
    std::vector<roi> free;
    const auto [first, last] = at_time_point(m_roidb->tz_xy_db, t);
    for (auto entry = first; entry != last; ++entry) {
        const pos4i plane = decode(entry->first);
        const auto found =
            m_roidb->db.find(keygen(pos4i(entry->second.x(), entry->second.y(), plane.z(), plane.t())));
        if (found != m_roidb->db.end() && may_be_grouped(found->first, spares))
            free.push_back(found->second);
    }
    return free;
}

// Their ROIs are in no unit then, and their links gone. REQUIRES: units of time point t
void curation::dissolve(const set<string>& units, int t)
{
    if (units.empty())
        return;
    for (const int into : {t, t + 1})
        for (auto [entry, last] = links_into(into); entry != last;)
            if (const auto link = entry++; units.contains(into == t ? link->first : link->second))
                remove_link(link);
    for (const string& unit : units) {
        forget_unit(unit);
        set_mark(change_kind::elite, unit, false);
        rename_unit(unit, "");
    }
}

// ---- Links

// Whether making leaves a link (child, parent) that there is.
bool curation::is_kept(const std::pair<const string, string>& link, spared spares)
{
    return spares == spared::what_is ||
           (spares == spared::touched && is_touched(link.first) && is_touched(link.second));
}

// Between two units that a person has made or changed stays what is there, also when that is no link.
bool curation::may_be_entered(const std::pair<const string, string>& link, spared spares)
{
    return spares != spared::touched || !is_touched(link.first) || !is_touched(link.second);
}

// A child that keeps a link to a parent is not linked to others; nor is one whose unit has gone meanwhile.
void curation::enter_links(int t, const set<std::pair<string, string>>& links, spared spares)
{
    for (auto [entry, last] = links_into(t); entry != last;) {
        const auto next = std::next(entry);
        if (!is_kept(*entry, spares))
            remove_link(entry);
        entry = next;
    }
    set<string> linked;
    const auto [first, last] = links_into(t);
    for (auto entry = first; entry != last; ++entry)
        linked.insert(entry->first);
    for (const auto& [child, parent] : links)
        if (!linked.contains(child) && m_head_members.contains(child) && m_head_members.contains(parent) &&
            may_be_entered({child, parent}, spares))
            enter_link(child, parent);
}
