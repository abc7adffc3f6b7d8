// Units: the ROIs of one nucleus at one time point, kept in m_head_members and m_members_head.
#include "curation.h"
#include "keygen.h"

#include <iterator>

std::string curation::head(roi r) { return head(keygen(r)); }

std::string curation::head(string key)
{
    const auto found = m_members_head.find(key);
    return found == m_members_head.end() ? "N/A" : found->second;
}

std::set<std::string> curation::member(string key) { return values_of(m_head_members, key); }

std::set<std::string> curation::heads_at(int t) const
{
    set<string> heads;
    const auto [first, last] = at_time_point(m_head_members, t);
    for (auto entry = first; entry != last; ++entry)
        heads.insert(heads.end(), entry->first);
    return heads;
}

// A head at x = 0, y = 0 on plane 0 is not listed: its key is the time key itself.
std::set<std::string> curation::units(int t)
{
    set<string> heads = heads_at(t);
    heads.erase(time_key(t));
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
    rename_unit(unit, members.empty() ? "" : *members.begin());
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
    // Outlives recordings: a key keeps its number for the rest of the program's run.
    static std::multimap<unsigned int, string> keys;
    constexpr std::size_t shortest_key = 9;    // that decode() takes; "N/A" counts at time point 0
    const auto t = static_cast<unsigned int>(a.size() < shortest_key ? 0 : decode(a).t());
    const auto [first, last] = keys.equal_range(t);
    unsigned int count = 0;
    for (auto entry = first; entry != last; ++entry, ++count)
        if (entry->second == a)
            return t * numbers_per_time_point + count;
    keys.emplace(t, a);
    return t * numbers_per_time_point + count;
}
