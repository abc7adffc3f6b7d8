// units.h - ROIs and units put into a curation, with or without a window, and what must hold of them.
#pragma once
#include "ORV_pos.h"
#include "ORV_roi.h"
#include "keygen.h"
#include "q_roiimg.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

using keys = std::set<std::string>;

// A filled rectangle; its key.
template <class Curation>
std::string put_roi(Curation& w, pos4i at, int width = 4, int height = 4)
{
    std::string outline;
    for (const auto& [direction, pixels] :
         {std::pair('2', height), {'3', width}, {'0', height}, {'1', width}})
        outline.append(static_cast<std::size_t>(pixels), direction);
    w.m_roidb->entry_plus({at, outline});
    return keygen(at);
}

// A unit named by its first member; its head.
template <class Curation>
std::string put_unit(Curation& w, const std::vector<std::string>& members)
{
    for (const std::string& key : members) {
        w.m_members_head.emplace(key, members.front());
        w.m_head_members.emplace(members.front(), key);
    }
    return members.front();
}

// What does not hold of the ROIs, units, links and rasters of an open recording, or nothing.
template <class Curation>
const char* broken_state_rule(Curation& w)
{
    const auto& [rois, index] = std::tie(w.m_roidb->db, w.m_roidb->tz_xy_db);
    if (rois.size() > index.size() || !std::ranges::all_of(rois, [&index](const auto& entry) {
            const auto& [key, r] = entry;
            const std::pair<const std::string, pos2i> at(keygen(pos4i(0, 0, r.z(), r.t())), r);
            const auto [first, last] = index.equal_range(at.first);
            return key == keygen(r) && std::find(first, last, at) != last;
        }))
        return "each ROI has an entry in the index (a record that a file holds twice has two)";
    if (w.m_head_members.size() != w.m_members_head.size() ||
        !std::ranges::all_of(w.m_head_members, [&](const auto& unit) {
            return w.head(unit.second) == unit.first && w.head(unit.first) == unit.first &&
                   rois.contains(unit.second) && decode(unit.first).t() == decode(unit.second).t();
        }))
        return "a unit is made of ROIs of one time point, its head among them, and each knows it";
    std::set<std::pair<std::string, std::string>> links;
    if (!std::ranges::all_of(w.m_linkage_multimap, [&](const auto& link) {
            return decode(link.first).t() == decode(link.second).t() + 1 && links.insert(link).second &&
                   w.m_head_members.contains(link.first) && w.m_head_members.contains(link.second);
        }))
        return "a link joins two units one time point apart, once";
    if (!std::ranges::all_of(w.m_elite_head_roi_set,
                             [&](auto& h) { return w.m_head_members.contains(h) || h == "N/A"; }))
        return "an elite mark is on a unit";
    if (!std::ranges::all_of(w.m_q_roiimgdb->db, [&](const auto& entry) {
            const auto r = rois.find(entry.first);
            return keygen(*entry.second) == entry.first &&
                   (r == rois.end() || q_roiimg(r->second).outline() == entry.second->outline());
        }))
        return "a cached raster is that of its ROI";
    return nullptr;
}
