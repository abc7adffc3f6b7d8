// Where the lineage needs a look: doubtful units, dead ends, unlinked units.
#include "curation.h"

#include <algorithm>

// Entries are counted, not distinct parents: a link stored twice makes its child a candidate too.
void curation::search_doubt_units()
{
    m_falsely_grouped_units_candidates.clear();
    const string* previous = nullptr;
    for (const auto& [child, parent] : m_linkage_multimap) {
        if (previous && *previous == child)
            m_falsely_grouped_units_candidates.insert(child);
        previous = &child;
    }
}

// The parents that links into time point t name.
std::set<std::string> curation::parents_into(int t) const
{
    set<string> found;
    const auto [first, last] = links_into(t);
    for (auto entry = first; entry != last; ++entry)
        found.insert(entry->second);
    return found;
}

bool curation::is_false(const string& unit) const
{
    const auto [first, last] = m_head_members.equal_range(unit);
    return first != last && std::all_of(first, last, [this](const auto& entry) {
               return m_removed_roi_set.contains(entry.second);
           });
}

std::optional<std::string> curation::first_dead_end()
{
    for (int t = m_min_time_point; t < m_max_time_point; ++t) {
        const set<string> with_children = parents_into(t + 1);
        for (const std::string& unit : units(t))
            if (!with_children.contains(unit))
                return unit;
    }
    return std::nullopt;
}

std::optional<std::string> curation::first_unlinked()
{
    for (int t = m_min_time_point + 1; t <= m_max_time_point; ++t)
        for (const std::string& unit : units(t))
            if (!m_linkage_multimap.contains(unit))
                return unit;
    return std::nullopt;
}
