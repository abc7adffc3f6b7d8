// Which falsely grouped unit is split, and how: the automatic split and the manual one. The cut itself
// is in cut.cpp.
#include "curation.h"
#include "edit_scope.h"
#include "keygen.h"
#include "long_run.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <iterator>
#include <sstream>

namespace {

constexpr int auto_search_width = 30;      // pixels on either side of where the search starts
constexpr int manual_search_width = 20;    // pixels

using key_set = std::set<std::string>;

// Takes the largest keys from the larger set until both are of one size.
void trim_to_same_size(key_set& a, key_set& b)
{
    key_set& larger = a.size() > b.size() ? a : b;
    const std::size_t size = std::min(a.size(), b.size());
    larger.erase(std::next(larger.begin(), static_cast<std::ptrdiff_t>(size)), larger.end());
}

std::string print_with_commas(pos3d v)
{
    std::ostringstream text;
    text << v.x() << ',' << v.y() << ',' << v.z();
    return text.str();
}

}    // namespace

bool curation::split_first_suspect()
{
    search_doubt_units();
    if (m_falsely_grouped_units_candidates.empty() || !has_rois()) {
        std::cout << "Doubt units: none" << std::endl;
        return false;
    }
    return split_suspect(std::string(*m_falsely_grouped_units_candidates.begin()));
}

bool curation::split_suspect(const string& doubt)
{
    if (m_linkage_multimap.count(doubt) < 2 || !has_rois())
        return false;
    const MachineScope step(*this, "Repair", doubt);
    const LongRun run(*this);
    const unsigned long edits = m_edits;
    handle_suspect(doubt);
    return run.alive() && m_edits != edits;
}

void curation::handle_suspect(const string& doubt)
{
    const set<string> doubt_parents = parents(doubt);
    const std::string p1 = *doubt_parents.begin();
    if (doubt_parents.size() < 2) {
        while (m_linkage_multimap.count(doubt) > 1)
            release_child(p1, doubt);
        std::cout << "Doubled link released: " << p1 << " " << doubt << std::endl;
        return;
    }
    const std::string p2 = *std::next(doubt_parents.begin());
    if (are_same_nucleus(p1, p2)) {
        std::cout << "Merge units: " << p1 << " " << p2 << std::endl;
        mergeUnits(p1, p2);
        return;
    }
    std::cout << "Falsely grouped unit: " << doubt << std::endl;
    const set<string> sisters1 = children(p1);
    const set<string> sisters2 = children(p2);
    std::cout << "p1(" << p1 << "): sisters: " << sisters1 << std::endl;
    std::cout << "p2(" << p2 << "): sisters: " << sisters2 << std::endl;
    const bool normal_split = !repair_links(doubt, p1, p2, sisters1, sisters2);
    if (!normal_split || isElite(doubt))
        return;
    std::cout << "split: case 3" << std::endl;
    const pos3d E_g1 = E_g(p1);
    const pos3d E_g2 = E_g(p2);
    cut_unit(doubt, (E_g1 - E_g2) / (E_g1 - E_g2).size(), (E_g1 + E_g2) / 2, auto_search_width);
}

// Two units of one nucleus have the same elite ancestors, as far as both have any.
bool curation::are_same_nucleus(const string& p1, const string& p2)
{
    set<string> e1 = subset_of_elite_unit_from(p1);
    set<string> e2 = subset_of_elite_unit_from(p2);
    trim_to_same_size(e1, e2);
    return e1 == e2;
}

// True iff the unit is one nucleus and only the links were wrong: they are then repaired.
bool curation::repair_links(const string& doubt, const string& p1, const string& p2,
                            const set<string>& sisters1, const set<string>& sisters2)
{
    if (children(doubt).size() != 1 || parents(doubt).size() != 2)
        return false;
    if (sisters1.size() * sisters2.size() == 2) {
        std::cout << "split: case 1" << std::endl;
        const bool p1_has_only_doubt = sisters2.size() == 2;
        set<string> other_children = p1_has_only_doubt ? sisters2 : sisters1;
        other_children.erase(doubt);
        const std::string the_other_sister = *other_children.begin();
        if (parents(the_other_sister).size() != 1 || children(the_other_sister).contains(doubt))
            return false;
        const std::string& releaser = p1_has_only_doubt ? p1 : p2;
        release_child(releaser, doubt);
        return true;
    }
    if (sisters1.size() != 2 || sisters1 != sisters2)
        return false;
    std::cout << "split: case 2" << std::endl;
    pair_by_distance(p1, p2, *sisters1.begin(), *sisters1.rbegin());
    return true;
}

// Both parents have both children: each keeps one, so that the distances between centroids are small.
void curation::pair_by_distance(const string& p1, const string& p2, const string& first, const string& second)
{
    const auto distance = [this](const string& a, const string& b) { return (E_g(a) - E_g(b)).size(); };
    const double straight = distance(p1, first) + distance(p2, second);
    const double crossed = distance(p1, second) + distance(p2, first);
    for (const std::string& parent : {p1, p2})
        for (const std::string& child : {first, second})
            release_all(parent, child);
    link(p1, straight < crossed ? first : second);
    link(p2, straight < crossed ? second : first);
}

void curation::manualSplit(string doubt, set<string> ps, int x, int y, int z)
{
    std::cout << "manual split mode:" << std::endl;
    std::cout << "    doubt: " << doubt << "  parents: " << ps << std::endl;
    const bool are_units = ps.size() > 1 && !member(doubt).empty() && !member(*ps.begin()).empty() &&
                           !member(*std::next(ps.begin())).empty();
    if (!are_units || !has_rois()) {
        std::cout << "Cannot split " << doubt << ": not a unit and two parent units" << std::endl;
        return;
    }
    const EditScope step(*this, "Split", doubt);
    const pos3d E_g1 = E_g(*ps.begin());
    const pos3d E_g2 = E_g(*std::next(ps.begin()));
    const pos3d E_normal = (E_g1 - E_g2) / (E_g1 - E_g2).size();
    const pos3d E_m(x, y, m_info.scale.in_pixels(z));
    std::cout << " E_normal: (" << print_with_commas(E_normal) << ")" << std::endl;
    std::cout << "      E_m: (" << print_with_commas(E_m) << ")" << std::endl;
    if (const auto halves = cut_unit(doubt, E_normal, E_m, manual_search_width)) {
        note_edited(halves->first);
        note_edited(halves->second);
    }
}
