#include "lineage_tally.h"

#include "keygen.h"

#include <string_view>
#include <unordered_set>

namespace {

using pairs = std::multimap<std::string, std::string>;

// Runs visit(key, number of entries) for every distinct key.
template <class Visit>
void for_each_key(const pairs& entries, const Visit& visit)
{
    for (auto entry = entries.begin(); entry != entries.end();) {
        const std::string& key = entry->first;
        int count = 0;
        for (; entry != entries.end() && entry->first == key; ++entry)
            ++count;
        if (is_roi_key(key))
            visit(key, count);
    }
}

std::unordered_set<std::string_view> parents_in(const pairs& links)
{
    std::unordered_set<std::string_view> parents;
    for (const auto& [child, parent] : links)
        parents.insert(parent);
    return parents;
}

}    // namespace

void tally::add(const tally& other) noexcept
{
    rois += other.rois;
    units += other.units;
    links += other.links;
    doubtful += other.doubtful;
    dead_ends += other.dead_ends;
    unlinked += other.unlinked;
}

std::map<int, tally> count_lineage(const curation& model)
{
    std::map<int, tally> tallies;
    for (const auto& [key, r] : model.rois().db)
        ++tallies[r.t()].rois;
    const auto parents = parents_in(model.links());
    for_each_key(model.links(), [&](const std::string& child, int count) {
        tally& at = tallies[decode(child).t()];
        at.links += count;
        at.doubtful += count > 1 && !model.is_false(child);
    });
    for_each_key(model.head_members(), [&](const std::string& unit, int) {
        const int t = decode(unit).t();
        if (unit == time_key(t))    // which no list of units holds
            return;
        tally& at = tallies[t];
        ++at.units;
        const bool has_child = parents.contains(unit);
        const bool has_parent = model.links().contains(unit);
        if (model.is_false(unit) || (!has_child && !has_parent && model.head_members().count(unit) == 1))
            return;    // false, or set aside
        at.dead_ends += t < model.max_time_point() && !has_child;
        at.unlinked += t > model.min_time_point() && !has_parent;
    });
    return tallies;
}
