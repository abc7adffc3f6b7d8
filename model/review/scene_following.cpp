// The scene follows a step of the curation: what is changed, and whose findings may be others then.
#include "keygen.h"
#include "unit_scene.h"

#include <algorithm>

std::optional<std::set<std::string>> unit_scene::follow(const scene_changes& changes)
{
    if (changes.is_everything || _first_t != _model.min_time_point() || _last_t != _model.max_time_point() ||
        !follow_planes(changes.planes))
        return std::nullopt;
    std::set<std::string> reshaped = changes.reshaped;
    std::set<std::string> relinked = changes.relinked;
    for (const std::string& key : changes.rois)
        if (const auto head = _model.members_head().find(key); head != _model.members_head().end())
            reshaped.insert(head->second);
    std::set<std::string> around = reshaped;
    around.insert(relinked.begin(), relinked.end());
    const std::set<std::string> touched = around;
    std::set<int> times;
    for (const std::string& head : touched)
        if (const scene_unit* const u = find(head))
            collect_around(*u, around);
    for (const std::string& head : reshaped) {
        if (scene_unit* const u = find(head)) {
            for (const scene_unit* const child : u->children)
                relinked.insert(child->head);
            times.insert(u->t);
            remove_unit(*u);
        }
    }
    std::vector<scene_unit*> added;
    for (const std::string& head : reshaped)
        if (scene_unit* const u = add_unit(head)) {
            added.push_back(u);
            times.insert(u->t);
            if (u->shape.volume > 0) {
                std::vector<scene_unit*>& placed = _times[u->t].by_x;
                placed.insert(std::ranges::lower_bound(placed, u, lies_left_of), u);
            }
        }
    for (scene_unit* const u : added) {
        relate_to_all(*u);
        link_parents(*u);
        link_children(*u);
    }
    for (const std::string& head : relinked)
        if (scene_unit* const u = find(head)) {
            link_parents(*u);
            mark(*u);
        }
    for (const std::string& head : touched)
        if (const scene_unit* const u = find(head))
            collect_around(*u, around);
    follow_rois(changes.rois, around);
    collect_by_time(times, around);
    release_rasters();
    return around;
}

// False when the recording begins or ceases to be of one plane.
bool unit_scene::follow_planes(const std::map<int, int>& changes)
{
    const bool was_flat = is_flat();
    for (const auto& [plane, number] : changes)
        if (number != 0 && (_planes[plane] += number) <= 0)
            _planes.erase(plane);
    return was_flat == is_flat();
}

bool unit_scene::is_loose(const std::string& key) const
{
    return _model.rois().db.contains(key) && !_model.members_head().contains(key) &&
           !_model.false_positives().contains(key);
}

void unit_scene::follow_rois(const std::set<std::string>& keys, std::set<std::string>& found)
{
    for (const std::string& key : keys) {
        if (!is_roi_key(key))
            continue;
        std::set<std::string>& loose = _times[decode(key).t()].loose;
        if (is_loose(key))
            loose.insert(key);
        else
            loose.erase(key);
        found.insert(key);
    }
}

// What the median volume of a time point, or whether it has units at all, tells of its ROIs.
void unit_scene::collect_by_time(const std::set<int>& times, std::set<std::string>& found) const
{
    for (const int t : times) {
        for (const auto& [head, u] : units_at(t))
            if (u->shape.is_lone())
                found.insert(head);
        if (units_at(t).size() < 2)
            found.insert(loose_at(t).begin(), loose_at(t).end());
    }
}

void unit_scene::collect_near(const scene_unit& u, std::set<std::string>& found) const
{
    for (const int t : {u.t - 1, u.t + 1})
        for_each_near(u, t, farthest_reach,
                      [&](const scene_unit& other, double) { found.insert(other.head); });
}

// Those whose findings look at this unit: its kin, what lies near it or its kin in time, what lies in it or
// holds it, and what does so with that.
void unit_scene::collect_around(const scene_unit& u, std::set<std::string>& found) const
{
    found.insert(u.head);
    collect_near(u, found);
    for (const auto kin : {&scene_unit::parents, &scene_unit::children})
        for (const scene_unit* const other : u.*kin) {
            found.insert(other->head);
            collect_near(*other, found);
            for (const auto further : {&scene_unit::parents, &scene_unit::children})
                for (const scene_unit* const kin_of_kin : other->*further)
                    found.insert(kin_of_kin->head);
        }
    constexpr std::vector<scene_unit*> scene_unit::*relations[] = {
        &scene_unit::inner_before, &scene_unit::inner_after, &scene_unit::outer_before,
        &scene_unit::outer_after};
    for (const auto relation : relations)
        for (const scene_unit* const other : u.*relation) {
            found.insert(other->head);
            for (const auto further : relations)
                for (const scene_unit* const next : other->*further)
                    found.insert(next->head);
        }
    for (const auto& filled : u.fills)
        found.insert(filled.neighbour->head);
    for (const scene_unit* const other : u.filled_by)
        found.insert(other->head);
}
