// Units: the ROIs of one nucleus at one time point, kept in m_head_members and m_members_head.
#include "curation.h"
#include "edit_scope.h"
#include "keygen.h"
#include "long_run.h"
#include "plane_walk.h"

#include <QScopeGuard>

#include <iterator>

std::string curation::head(roi r) { return head(keygen(r)); }

std::string curation::head(string key)
{
    const auto found = m_members_head.find(key);
    return found == m_members_head.end() ? "N/A" : found->second;
}

std::set<std::string> curation::member(string key) { return values_of(m_head_members, key); }

// A head at x = 0, y = 0 on plane 0 is not listed: its key is the time key itself.
std::set<std::string> curation::units(int t)
{
    set<string> heads;
    const auto [first, last] = at_time_point(m_head_members, t);
    for (auto entry = first; entry != last; ++entry)
        if (entry->first != time_key(t))
            heads.insert(heads.end(), entry->first);
    return heads;
}

int curation::z_min(string unit)
{
    const set<string> members = member(unit);
    return members.empty() ? 0 : decode(*members.begin()).z();
}

int curation::z_max(string unit)
{
    const set<string> members = member(unit);
    return members.empty() ? 0 : decode(*members.rbegin()).z();
}

void curation::forget_unit(const string& unit)
{
    for (const std::string& key : member(unit))
        forget_head_of(key);
    remove_unit(unit);
}

void curation::register_unit(const string& unit, const set<string>& members)
{
    for (const std::string& key : members)
        enter_member(unit, key);
}

// The unit of an ROI that is gone: without its head it is named by the smallest key that is left.
void curation::leave_unit(const string& key)
{
    const std::string unit = head(key);
    set<string> members = member(unit);
    members.erase(key);
    if (key != unit && !members.empty()) {
        forget_unit(unit);
        register_unit(unit, members);
        return;
    }
    const unit_links links{parents(unit), children(unit)};
    release_links(unit, links);
    forget_unit(unit);
    forget_head_of(key);
    const bool was_elite = set_mark(change_kind::elite, unit, false);
    move_choice(unit, members.empty() ? "" : *members.begin());
    if (members.empty())
        return;
    const std::string new_head = *members.begin();
    register_unit(new_head, members);
    for (const std::string& parent : links.parents)
        link(parent, new_head);
    for (const std::string& child : links.children)
        link(new_head, child);
    if (was_elite)
        set_mark(change_kind::elite, new_head, true);
}

// After ROIs were taken out of the recording.
void curation::forget_missing_members()
{
    set<string> missing;
    for (const auto& [key, unit] : m_members_head)
        if (!m_roidb->db.contains(key))
            missing.insert(missing.end(), key);
    for (const std::string& key : missing)
        leave_unit(key);
}

unsigned int curation::ID(string a)
{
    constexpr unsigned int per_time_point = 1000;
    // Outlives recordings: a key keeps its number for the rest of the program's run.
    static std::multimap<unsigned int, string> keys;
    constexpr std::size_t shortest_key = 9;    // that decode() takes; "N/A" counts at time point 0
    const auto t = static_cast<unsigned int>(a.size() < shortest_key ? 0 : decode(a).t());
    const auto [first, last] = keys.equal_range(t);
    unsigned int count = 0;
    for (auto entry = first; entry != last; ++entry, ++count)
        if (entry->second == a)
            return t * per_time_point + count;
    keys.emplace(t, a);
    return t * per_time_point + count;
}

void curation::make_units(int t, double overlap)
{
    if (!has_rois())
        return;
    const EditScope step(*this, "Make units");
    LongRun run(*this);
    m_auto_make_units = true;
    const auto done = qScopeGuard([state = m_run_state] {
        if (state->model)    // a handler may delete it
            state->model->m_auto_make_units = false;
    });
    std::set<int> planes;
    const auto [first, last] = at_time_point(m_roidb->db, t);
    for (auto entry = first; entry != last; ++entry)
        planes.insert(entry->second.z());
    for (const int z : planes) {
        PlaneWalk walk(*m_roidb, *m_q_roiimgdb, t, z);
        while (plane_roi* const r = walk.next()) {
            if (m_members_head.contains(*r->key) || m_removed_roi_set.contains(*r->key))
                continue;
            make_unit_around(*r, overlap);
            if (!run.alive())
                return;
        }
    }
}

// Entered once it is complete: what a handler does meanwhile never meets half of one.
void curation::make_unit_around(const plane_roi& r, double overlap)
{
    LongRun run(*this);
    const std::string key = *r.key;
    set<string> members;
    flood(*r.record, r.record->t(), r.record->z(), 0.0, overlap, [&](const string& reached) {
        return !m_members_head.contains(reached) && members.insert(reached).second;
    });
    if (!run.alive())
        return;
    members.insert(key);    // without a pixel it is not reached
    std::erase_if(members, [&](const string& member) {
        return m_members_head.contains(member) || !m_roidb->db.contains(member);
    });
    if (!members.empty())
        register_unit(members.contains(key) ? key : *members.begin(), members);
}
