#include "unit_rules.h"

#include "link_making.h"

#include <charconv>
#include <iostream>

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

}    // namespace

std::optional<making> chosen_rule(const tool_arguments& arguments)
{
    constexpr const char* rules[] = {"nearest", "overlap"};
    const auto rule = one_of(arguments, "rule", rules);
    if (!rule)
        return std::nullopt;
    making choice;
    if (*rule == "overlap")
        choice = {.rule = unit_rule::overlap, .share = 0};
    if (!arguments.has("share") || parse_share(arguments.value("share", ""), choice.share))
        return choice;
    refuse_use("no value for --share: " + arguments.value("share", ""));
    return std::nullopt;
}

std::optional<lineage> make_lineage(const std::string& roi_file, const making& choice)
{
    auto rois = std::make_unique<roidb_plus>("");
    if (!rois->read_plus(roi_file))
        return std::nullopt;
    curation model;
    model.open_rois(std::move(rois));
    model.take_info(read_recording_file(recording_file_of(roi_file)));
    link_making links(model, choice);
    for (int t = model.min_time_point(); t <= model.max_time_point(); ++t) {    // the rasters are at hand
        model.make_units(t, choice);
        if (t > model.min_time_point())
            links.step(t);
    }
    return model.current_lineage();
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
