#include "unit_rules.h"

#include "q_roiimg.h"

#include <charconv>
#include <iostream>
#include <memory>

namespace {

bool parse_share(const std::string& text, double& share)
{
    double parsed = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), parsed);
    if (error != std::errc() || end != text.data() + text.size() || !(parsed >= 0 && parsed <= 1))
        return false;
    share = parsed;
    return true;
}

// The ROIs of one time point in the order of their keys, and the units made of them.
struct frame {
    std::vector<const std::string*> keys;
    std::vector<std::unique_ptr<q_roiimg>> owned;
    std::vector<const roi_mask*> rasters;
    std::vector<const std::string*> heads;

    void add(const std::string& key, const roi& r)
    {
        keys.push_back(&key);
        owned.push_back(std::make_unique<q_roiimg>(r));
        owned.back()->map();
        rasters.push_back(owned.back().get());
    }

    // The rasters of each unit.
    [[nodiscard]] std::vector<unit_rasters> group(const nearest_rule& rule, lineage& made)
    {
        std::vector<unit_rasters> units;
        for (const roi_group& group : group_nearest(rasters, rule)) {
            heads.push_back(keys[group.front()]);
            unit_rasters& unit = units.emplace_back();
            for (const std::size_t i : group) {
                unit.push_back(rasters[i]);
                made.head_members.emplace(*heads.back(), *keys[i]);
            }
        }
        return units;
    }
};

}    // namespace

std::optional<rule_choice> chosen_rule(const tool_arguments& arguments)
{
    constexpr const char* rules[] = {"nearest", "overlap"};
    const auto rule = one_of(arguments, "rule", rules);
    if (!rule)
        return std::nullopt;
    rule_choice choice;
    if (*rule == "overlap")
        choice = {unit_rule::overlap, 0};
    if (!arguments.has("share") || parse_share(arguments.value("share", ""), choice.share))
        return choice;
    refuse_use("no value for --share: " + arguments.value("share", ""));
    return std::nullopt;
}

std::optional<lineage> make_lineage(const std::string& roi_file, const roidb& rois, const rule_choice& choice)
{
    if (choice.rule == unit_rule::overlap)
        return lineage_by_overlap(roi_file, choice.share);
    return lineage_by_nearest(rois, {.share = choice.share});
}

lineage lineage_by_nearest(const roidb& rois, const nearest_rule& grouping, const linking_rule& linking)
{
    lineage made;
    unit_linker linker({}, linking);
    frame before;    // its rasters are compared with those of the next time point
    for (auto next = rois.db.begin(); next != rois.db.end();) {
        const int t = next->second.t();
        frame now;
        for (; next != rois.db.end() && next->second.t() == t; ++next)
            now.add(next->first, next->second);
        if (!before.owned.empty() && before.owned.front()->t() + 1LL != t)
            linker.follow({}, {});    // time points without ROIs lie between
        for (const unit_link& link : linker.link(now.group(grouping, made)))
            made.links.emplace(*now.heads[link.child], *before.heads[link.parent]);
        before = std::move(now);
    }
    return made;
}

lineage_counts count(const lineage& made)
{
    lineage_counts counts;
    for (auto unit = made.head_members.begin(); unit != made.head_members.end();
         unit = made.head_members.upper_bound(unit->first))
        ++counts.units;
    const auto links = in_order(made.links);
    std::map<std::string, std::size_t> children;
    for (std::size_t i = 0; i < links.size(); ++i)
        if (i == 0 || links[i] != links[i - 1])    // a link may be stored twice
            ++children[links[i].second];
    for (const auto& [parent, number] : children) {
        counts.links += number;
        counts.divisions += number > 1;
    }
    return counts;
}

void print(const lineage_counts& counts)
{
    std::cout << "units " << counts.units << "\nlinks " << counts.links << "\ndivisions " << counts.divisions
              << '\n';
}
