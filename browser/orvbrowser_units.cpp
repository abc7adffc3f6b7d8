// Units: the ROIs of one nucleus at one time point, kept in m_head_members and m_members_head.
#include "keygen.h"
#include "orvbrowser.h"

#include <iterator>

std::string ORVBrowser::head(roi r) { return head(keygen(r)); }

std::string ORVBrowser::head(string key)
{
    const auto found = m_members_head.find(key);
    return found == m_members_head.end() ? "N/A" : found->second;
}

std::set<std::string> ORVBrowser::member(string key) { return values_of(m_head_members, key); }

// A head at x = 0, y = 0 on plane 0 is not listed: its key is the time key itself.
std::set<std::string> ORVBrowser::units(int t)
{
    set<string> heads;
    const auto [first, last] = at_time_point(m_head_members, t);
    for (auto entry = first; entry != last; ++entry)
        if (entry->first != time_key(t))
            heads.insert(heads.end(), entry->first);
    return heads;
}

int ORVBrowser::z_min(string unit)
{
    const set<string> members = member(unit);
    return members.empty() ? 0 : decode(*members.begin()).z();
}

int ORVBrowser::z_max(string unit)
{
    const set<string> members = member(unit);
    return members.empty() ? 0 : decode(*members.rbegin()).z();
}

void ORVBrowser::forget_unit(const string& unit)
{
    for (const std::string& key : member(unit))
        m_members_head.erase(key);
    m_head_members.erase(unit);
    ++m_edits;
}

void ORVBrowser::register_unit(const string& unit, const set<string>& members)
{
    for (const std::string& key : members) {
        m_members_head.emplace(key, unit);
        m_head_members.emplace(unit, key);
    }
    ++m_edits;
}

// The chosen nucleus stays chosen under its new name; a nucleus that is gone ("") is no longer.
void ORVBrowser::move_choice(const string& from, const string& to)
{
    if (m_lineage_mode_roi_set.erase(from) > 0 && !to.empty())
        m_lineage_mode_roi_set.insert(to);
}

// The unit of an ROI that is gone: without its head it is named by the smallest key that is left.
void ORVBrowser::leave_unit(const string& key)
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
    m_members_head.erase(key);
    const bool was_elite = m_elite_head_roi_set.erase(unit) > 0;
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
        m_elite_head_roi_set.insert(new_head);
}

// After ROIs were taken out of the recording.
void ORVBrowser::forget_missing_members()
{
    set<string> missing;
    for (const auto& [key, unit] : m_members_head)
        if (!m_roidb->db.contains(key))
            missing.insert(missing.end(), key);
    for (const std::string& key : missing)
        leave_unit(key);
}

unsigned int ORVBrowser::ID(string a)
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

void ORVBrowser::view(string key)
{
    if (!is_roi_key(key))
        return;
    const pos4i position = decode(key);
    setCurrentTimePoint(position.t());
    setCurrentFocalPlane(position.z());
    finish();
}
