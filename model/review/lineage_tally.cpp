#include "lineage_tally.h"

#include "keygen.h"
#include "set_aside.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

namespace {

using pairs = std::multimap<std::string, std::string>;

std::unordered_set<std::string_view> parents_in(const pairs& links)
{
    std::unordered_set<std::string_view> parents;
    for (const auto& [child, parent] : links)
        parents.insert(parent);
    return parents;
}

// Runs visit(key, first, last) for every distinct key and its entries.
template <class Visit>
void for_each_key(const pairs& entries, const Visit& visit)
{
    for (auto first = entries.begin(); first != entries.end();) {
        auto last = first;
        while (last != entries.end() && last->first == first->first)
            ++last;
        if (is_roi_key(first->first))
            visit(first->first, first, last);
        first = last;
    }
}

void count_links(const curation& model, std::map<int, tally>& tallies)
{
    for_each_key(model.links(), [&](const std::string& child, auto first, auto last) {
        tally& at = tallies[decode(child).t()];
        at.links += static_cast<int>(std::distance(first, last));
        at.doubtful += std::distance(first, last) > 1 && !model.is_false(child);
    });
}

void count_units(const curation& model, std::map<int, tally>& tallies)
{
    const recording_span span = span_of(model);
    const auto parents = parents_in(model.links());
    for_each_key(model.head_members(), [&](const std::string& unit, auto first, auto last) {
        const int t = decode(unit).t();
        if (unit == time_key(t))    // which no list of units holds
            return;
        tally& at = tallies[t];
        ++at.units;
        const bool has_child = parents.contains(unit);
        const bool has_parent = model.links().contains(unit);
        const auto rois = static_cast<std::size_t>(std::distance(first, last));
        const bool is_false = std::all_of(
            first, last, [&](const auto& entry) { return model.false_positives().contains(entry.second); });
        if (is_false || is_set_aside(span, rois, has_child || has_parent))
            return;
        at.dead_ends += t < span.last_t && !has_child;
        at.unlinked += t > span.first_t && !has_parent;
    });
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
    count_links(model, tallies);
    count_units(model, tallies);
    return tallies;
}
