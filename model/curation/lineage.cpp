// Lineage links between the units of successive time points, kept in m_linkage_multimap as child to
// parent, and what follows from them.
#include "curation.h"
#include "edit_scope.h"
#include "keygen.h"
#include "long_run.h"

#include <iostream>
#include <utility>
#include <vector>

std::set<std::string> curation::parents(string key) { return values_of(m_linkage_multimap, key); }

// The links whose child lies at time point t.
std::pair<curation::link_cursor, curation::link_cursor> curation::links_into(int t) const
{
    return at_time_point(m_linkage_multimap, t);
}

std::set<std::string> curation::children(string key)
{
    set<string> found;
    if (!is_roi_key(key))
        return found;
    const auto [first, last] = links_into(decode(key).t() + 1);
    for (auto entry = first; entry != last; ++entry)
        if (entry->second == key)
            found.insert(entry->first);
    return found;
}

void curation::link(string unit1, string unit2)
{
    const bool are_keys = is_roi_key(unit1) && is_roi_key(unit2);
    const int step = are_keys ? decode(unit2).t() - decode(unit1).t() : 0;
    if (step != 1 && step != -1) {
        std::cout << "Cannot link " << unit1 << " and " << unit2 << std::endl;
        return;
    }
    const std::string& parent = step == 1 ? unit1 : unit2;
    const std::string& child = step == 1 ? unit2 : unit1;
    if (parents(child).contains(parent))
        return;
    const EditScope edit(*this, "Link", parent, child);
    enter_link(child, parent);
}

void curation::release_child(string parent, string child)
{
    const EditScope step(*this, "Unlink", parent, child);
    const auto [first, last] = m_linkage_multimap.equal_range(child);
    for (auto entry = first; entry != last; ++entry) {
        if (entry->second == parent) {
            remove_link(entry);
            return;
        }
    }
}

// However often the link is stored.
void curation::release_all(const string& parent, const string& child)
{
    while (parents(child).contains(parent))
        release_child(parent, child);
}

void curation::release_parents(const string& unit)
{
    const EditScope step(*this, "Unlink", unit);
    m_lineage_mode_roi_set = {unit};
    for (const string& parent : parents(unit))
        release_all(parent, unit);
}

void curation::drop_links_into(int t)
{
    const EditScope step(*this, "Remove links");
    for (auto [entry, last] = links_into(t); entry != last;)
        remove_link(entry++);
}

// Each ancestor is visited once, however many ways lead to it.
std::set<std::string> curation::upstream_units(string key, int end_t)
{
    set<string> ancestors;
    std::vector<string> to_visit{key};
    while (!to_visit.empty()) {
        const std::string unit = to_visit.back();
        to_visit.pop_back();
        if (!is_roi_key(unit) || decode(unit).t() <= end_t)
            continue;
        for (const std::string& parent : parents(unit))
            if (ancestors.insert(parent).second)
                to_visit.push_back(parent);
    }
    return ancestors;
}

std::set<std::string> curation::subset_of_unit_from(string key)
{
    return upstream_units(key, m_min_time_point);
}

std::set<std::string> curation::descendants(const string& unit)
{
    set<string> found;
    std::vector<string> to_visit{unit};
    while (!to_visit.empty()) {
        const std::string from = to_visit.back();
        to_visit.pop_back();
        for (const std::string& child : children(from))
            if (found.insert(child).second)
                to_visit.push_back(child);
    }
    return found;
}

std::set<std::string> curation::subset_of_elite_unit_from(string key)
{
    set<string> elite = subset_of_unit_from(key);
    elite.insert(key);
    std::erase_if(elite, [this](const string& unit) { return !isElite(unit); });
    return elite;
}

bool curation::reach(string a, string b)
{
    if (!is_roi_key(a) || !is_roi_key(b))
        return false;
    const int t_a = decode(a).t();
    const int t_b = decode(b).t();
    if (t_a == t_b)
        return false;
    return t_a > t_b ? upstream_units(a, t_b).contains(b) : upstream_units(b, t_a).contains(a);
}

// The units of time point t that reach() the given unit, found in one go for a whole picture.
std::set<std::string> curation::units_reached_at(int t, const string& unit)
{
    if (!is_roi_key(unit))
        return {};
    const int t_unit = decode(unit).t();
    if (t < t_unit)
        return upstream_units(unit, t);
    set<string> level{unit};
    for (int next = t_unit + 1; next <= t && !level.empty(); ++next) {
        set<string> descendants;
        const auto [first, last] = links_into(next);
        for (auto entry = first; entry != last; ++entry)
            if (level.contains(entry->second))
                descendants.insert(entry->first);
        level = std::move(descendants);
    }
    if (t == t_unit)
        level.clear();
    return level;
}

pos3d curation::g(string key)
{
    pos3d sum;
    double volume = 0;
    if (!has_rois())
        return sum / volume;
    for (const std::string& m : member(key)) {
        const roi r = m_roidb->find_plus(m);
        const q_roiimg& raster = *m_q_roiimgdb->qrimg(r);
        if (raster.size() == 0)    // has no centroid
            continue;
        sum = sum + pos3d(raster.centroid().x(), raster.centroid().y(), r.z()) * raster.size();
        volume += raster.size();
    }
    return sum / volume;
}

pos3d curation::E_g(string key)
{
    const pos3d centroid = g(key);
    return {centroid.x(), centroid.y(), m_info.scale.in_pixels(centroid.z())};
}

bool curation::isLink(string parent, string child)
{
    if (!has_rois())
        return false;
    const set<string> p_member = member(parent);
    for (const std::string& c : member(child)) {
        const roi c_roi = m_roidb->find_plus(c);
        q_roiimg* const c_qrimg = m_q_roiimgdb->qrimg(c_roi);
        for (const std::string& p : p_member) {
            const roi p_roi = m_roidb->find_plus(p);
            if (p_roi.z() == c_roi.z() && is_overlap(m_q_roiimgdb->qrimg(p_roi), c_qrimg))
                return true;
        }
    }
    return false;
}

// The members of all units of a time point that are ROIs, by focal plane.
curation::members_by_plane curation::unit_members_at(int t)
{
    members_by_plane planes;
    const std::string no_unit = time_key(t);    // see units()
    const auto [first, last] = at_time_point(m_head_members, t);
    for (auto entry = first; entry != last; ++entry) {
        const auto& [unit, key] = *entry;
        const auto found = m_roidb->db.find(key);
        if (unit == no_unit || found == m_roidb->db.end() || found->second.outline().empty())
            continue;
        q_roiimg* const raster = m_q_roiimgdb->qrimg(found->second);
        planes[raster->z()].push_back({&unit, raster, raster->box()});
    }
    return planes;
}

// Links what isLink() finds overlapping.
void curation::makeLinkage(int t)
{
    if (!has_rois())
        return;
    const MachineScope step(*this, "Make links");
    for (const auto& [child, parent] : links_by_overlap(t))
        enter_link(child, parent);
}

// Looks only at members of one plane.
std::set<std::pair<std::string, std::string>> curation::links_by_overlap(int t)
{
    const LongRun run(*this);    // keeps the rasters of both time points
    const members_by_plane parental = unit_members_at(t - 1);
    set<std::pair<string, string>> links;
    for (const auto& [z, children] : unit_members_at(t)) {
        const auto plane = parental.find(z);
        if (plane == parental.end())
            continue;
        for (const unit_member& child : children)
            for (const unit_member& parent : plane->second)
                if (child.box.meets(parent.box) && is_overlap(parent.raster, child.raster))
                    links.emplace(*child.unit, *parent.unit);
    }
    return links;
}
