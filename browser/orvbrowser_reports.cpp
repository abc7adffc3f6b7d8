// Where the lineage needs a look: doubtful units, dead ends, unlinked units.
#include "orvbrowser.h"

#include <iostream>

// Entries are counted, not distinct parents: a link stored twice makes its child a candidate too.
void ORVBrowser::search_doubt_units()
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
std::set<std::string> ORVBrowser::parents_into(int t) const
{
    set<string> found;
    const auto [first, last] = links_into(t);
    for (auto entry = first; entry != last; ++entry)
        found.insert(entry->second);
    return found;
}

void ORVBrowser::report(const char* finding, const string& unit)
{
    std::cout << finding << unit << std::endl;
    view(unit);
}

void ORVBrowser::pushButton_dead_end_clicked()
{
    for (int t = m_min_time_point; t < m_max_time_point; ++t) {
        const set<string> with_children = parents_into(t + 1);
        for (const std::string& unit : units(t)) {
            if (!with_children.contains(unit)) {
                report("Dead-end branch: ", unit);
                return;
            }
        }
    }
    std::cout << "Dead-end branch: none" << std::endl;
}

void ORVBrowser::pushButton_unlinked_unit_clicked()
{
    for (int t = m_min_time_point + 1; t <= m_max_time_point; ++t) {
        for (const std::string& unit : units(t)) {
            if (!m_linkage_multimap.contains(unit)) {
                report("Unlinked unit: ", unit);
                return;
            }
        }
    }
    std::cout << "Unlinked unit: none" << std::endl;
}
