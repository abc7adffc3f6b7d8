// Parting a unit in two by what its pixels look like, which needs no parents: how it would be cut, and the
// cut.
#include "body.h"
#include "curation.h"
#include "edit_scope.h"
#include "error_line.h"
#include "half_mask.h"
#include "keygen.h"
#include "long_run.h"

#include <algorithm>
#include <iostream>

namespace {

using side = roi_parting::side;

half_mask half_of(const roi_parting& parted, const roi_mask& raster, side which)
{
    half_mask half(raster);
    for (int y = 0; y < raster.height(); ++y)
        for (int x = 0; x < raster.width(); ++x)
            if (parted.sides[static_cast<std::size_t>(y) * static_cast<std::size_t>(raster.width()) +
                             static_cast<std::size_t>(x)] == which)
                half.set(x, y);
    return half;
}

}    // namespace

std::vector<keyed_raster> curation::rasters_of(const string& unit)
{
    std::vector<keyed_raster> rasters;
    for (const string& key : member(unit))
        if (const auto r = m_roidb->db.find(key); r != m_roidb->db.end())
            rasters.emplace_back(key, m_q_roiimgdb->qrimg(r->second));
    return rasters;
}

std::optional<unit_parting> curation::find_parting(const string& unit, const parting_request& how)
{
    if (!has_rois())
        return std::nullopt;
    const LongRun run(*this);    // keeps the rasters
    return part_rasters(rasters_of(unit), m_info.scale.plane_step(), how);
}

// The ROIs of both sides: the records of whole ones, and what roimaker makes of the halves of the others.
// Nothing after a line that tells why they cannot take the place of the unit.
std::optional<curation::parted_rois> curation::rois_of(const string& unit, const unit_parting& how)
{
    const LongRun run(*this);
    const auto rasters = rasters_of(unit);
    parted_rois parted;
    const char* why_not = nullptr;
    if (!std::ranges::equal(rasters, how.rois, [](const keyed_raster& now, const roi_parting& then) {
            const pixel_box box = now.second->box();
            return now.first == then.key && box.left == then.box.left && box.top == then.box.top &&
                   box.right == then.box.right && box.bottom == then.box.bottom;
        }))
        why_not = "it was edited meanwhile";
    else if (!how.has_both_sides())
        why_not = "all of it lies on one side";
    for (std::size_t i = 0; !why_not && i < rasters.size(); ++i) {
        const roi_parting& r = how.rois[i];
        if (!r.is_divided)
            (r.is_plus ? parted.plus : parted.minus).push_back(m_roidb->find_plus(r.key));
        else if (!divide(r, *rasters[i].second, parted))
            why_not = "the outlines that roimaker has made are not those of its halves";
    }
    if (!why_not && !are_new(member(unit), parted.plus, parted.minus))
        why_not = "another ROI stands where one of the halves would start";
    if (!why_not)
        return parted;
    std::cout << "Cannot cut " << unit << ": " << why_not << std::endl;
    return std::nullopt;
}

// False when the outlines made of the halves do not enclose all of their pixels.
bool curation::divide(const roi_parting& divided, const roi_mask& raster, parted_rois& parted)
{
    std::set<const roi*> placed;
    std::size_t made = 0;
    set<string> keys;
    for (const bool is_plus : {true, false}) {
        half_mask half = half_of(divided, raster, is_plus ? side::plus : side::minus);
        list<roi> rois;
        append_rois(half, raster, is_plus ? "roi_plus: " : "roi_minus: ", rois);
        if (!is_covered(half, raster, rois, placed))
            return false;
        made += rois.size();
        for (const roi& r : rois)
            keys.insert(keygen(r));
        list<roi>& of_side = is_plus ? parted.plus : parted.minus;
        of_side.splice(of_side.end(), rois);
    }
    parted.divided.emplace_back(divided.key, std::move(keys));
    return placed.size() == made;
}

std::optional<std::pair<std::string, std::string>> curation::part_unit(const string& unit,
                                                                       const unit_parting& how)
{
    if (!has_rois())
        return std::nullopt;
    if (std::ranges::any_of(how.rois, &roi_parting::is_divided) && !is_roimaker_there()) {
        error_line("Cannot find ", roimaker_path());
        return std::nullopt;
    }
    const EditScope step(*this, "Cut", unit);
    const std::optional<parted_rois> parted = rois_of(unit, how);
    if (!parted)
        return std::nullopt;
    const unit_links links{parents(unit), children(unit)};
    release_links(unit, links);
    const auto [plus, minus] = enter_parts(unit, *parted);
    for (const set<string>* units : {&links.parents, &links.children})
        link_to_halves(pair_with_halves(*units, how.where.normal, how.where.middle(), plus, minus), plus,
                       minus);
    set_mark(change_kind::elite, unit, false);
    return std::pair(plus, minus);
}

// What is whole keeps its record; marks on what is divided go to all of its parts.
std::pair<std::string, std::string> curation::enter_parts(const string& unit, const parted_rois& parted)
{
    forget_unit(unit);
    for (const auto& [key, made] : parted.divided)
        remove_roi(key);
    string heads[2];
    for (const bool is_plus : {true, false}) {
        set<string> keys;
        for (const roi& r : is_plus ? parted.plus : parted.minus) {
            keys.insert(keygen(r));
            if (!m_roidb->db.contains(keygen(r)))
                enter_roi(r);
        }
        register_unit(*keys.begin(), keys);
        heads[is_plus ? 0 : 1] = *keys.begin();
    }
    for (const auto& [key, made] : parted.divided)
        inherit_marks({key}, made);
    m_split_parents.erase(unit);
    rename_unit(unit, half_that_keeps(unit, parted.plus, parted.minus));
    return {heads[0], heads[1]};
}
