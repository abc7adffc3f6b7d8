// The cut of one unit by a plane: where the plane goes, the ROIs of both sides, and the two units that
// take the place of the old one.
#include "body.h"
#include "curation.h"
#include "cutting_plane.h"
#include "error_line.h"
#include "half_mask.h"
#include "keygen.h"
#include "long_run.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <utility>
#include <vector>

namespace {

using key_set = std::set<std::string>;

// A start that moves by less, in pixels, stands still.
constexpr double smallest_move = 1e-9;

// Stands for a plane that was not found.
const pos3d no_position(NAN, NAN, NAN);

key_set keys_of(const std::list<roi>& rois)
{
    key_set keys;
    for (const roi& r : rois)
        keys.insert(keygen(r));
    return keys;
}

}    // namespace

// ---- Where the plane goes

unit_pixels curation::pixels_of(const string& unit)
{
    unit_pixels pixels(m_info.scale.plane_step());
    for (const std::string& key : member(unit))
        if (m_roidb->db.contains(key))    // it may have been dropped
            pixels.add(*m_q_roiimgdb->qrimg(m_roidb->find_plus(key)));
    return pixels;
}

unsigned int curation::cross_section_size(string doubt, pos3d E_normal, pos3d E_pos, bool& plus, bool& minus)
{
    if (!has_rois())
        return 0;
    const plane_section section = pixels_of(doubt).section(E_normal / E_normal.size(), E_pos);
    plus = plus || section.plus;
    minus = minus || section.minus;
    return section.size;
}

// The start moves towards the unit's own centroid until some plane divides the unit, or it moves no more.
pos3d curation::search_cutting_position(string doubt, pos3d E_normal, pos3d E_pos, int SEARCH_WIDTH)
{
    if (!has_rois())
        return no_position;
    LongRun run(*this);
    const pos3d nom = E_normal / E_normal.size();
    while (is_finite(E_pos) && is_finite(nom)) {
        const std::optional<pos3d> found = best_position(run, doubt, nom, E_pos, SEARCH_WIDTH);
        if (found || !run.alive())
            return found.value_or(no_position);
        const pos3d next = (E_pos + E_g(doubt)) / 2;
        if (!((next - E_pos).size() > smallest_move))
            break;
        E_pos = next;
    }
    std::cout << "Cannot split " << doubt << ": no plane divides it" << std::endl;
    return no_position;
}

// The plane with the smallest section among those that have pixels on both sides, the first of equals.
std::optional<pos3d> curation::best_position(LongRun& run, const string& doubt, pos3d nom, pos3d E_pos,
                                             int search_width)
{
    unsigned int min_size = 65535;
    std::optional<pos3d> min_pos;
    set<string> members = member(doubt);
    unsigned long revision = m_roidb->revision();
    unit_pixels pixels = pixels_of(doubt);
    for (int i = -search_width; i <= search_width; ++i) {
        if (!run.process_events())
            return std::nullopt;
        if (revision != m_roidb->revision() || members != member(doubt)) {    // a handler edited the unit
            revision = m_roidb->revision();
            members = member(doubt);
            pixels = pixels_of(doubt);
        }
        const pos3d E_search_point = E_pos + nom * i;
        const plane_section section = pixels.section(nom, E_search_point);
        std::cout << "s=" << section.size << " (" << E_search_point << ")" << std::endl;
        if (section.size < min_size && section.plus && section.minus) {
            min_size = section.size;
            min_pos = E_search_point;
        }
    }
    return min_pos;
}

// ---- The ROIs of both sides

namespace {

// The pixels of a raster on either side of the plane through E_m; those on the plane are plus.
std::pair<half_mask, half_mask> halves_of(const q_roiimg& raster, pos3d nom, pos3d E_m, double plane_step)
{
    std::pair<half_mask, half_mask> halves(raster, raster);
    for (int j = 0; j < raster.height(); ++j) {
        for (int i = 0; i < raster.width(); ++i) {
            if (raster.value(i, j) == 0)
                continue;
            const pos3d E_point(raster.top_left().x() + i, raster.top_left().y() + j,
                                raster.z() * plane_step);
            const bool is_minus = inner_product(nom, E_point - E_m) < 0;
            (is_minus ? halves.second : halves.first).set(i, j);
        }
    }
    return halves;
}

}    // namespace

// Null for a member that was dropped, or has no pixels: there is nothing to cut.
const q_roiimg* curation::raster_to_cut(const string& key)
{
    if (!m_roidb->db.contains(key))
        return nullptr;
    const q_roiimg* const raster = m_q_roiimgdb->qrimg(m_roidb->find_plus(key));
    return raster->size() > 0 ? raster : nullptr;
}

// Appends whatever roimaker answers: find_cut() looks whether it can stand for the unit.
void curation::splitROI(string doubt, pos3d E_normal, pos3d E_m, list<roi>& roi_plus, list<roi>& roi_minus)
{
    if (!has_rois())
        return;
    LongRun run(*this);
    const pos3d nom = E_normal / E_normal.size();
    for (const std::string& key : member(doubt)) {
        if (!run.process_events())
            return;
        const q_roiimg* const raster = raster_to_cut(key);
        if (!raster)
            continue;
        auto [canvas_plus, canvas_minus] = halves_of(*raster, nom, E_m, m_info.scale.plane_step());
        append_rois(canvas_plus, *raster, "roi_plus: ", roi_plus);
        append_rois(canvas_minus, *raster, "roi_minus: ", roi_minus);
    }
}

// Why the ROIs of a cut cannot take the place of the unit, or nothing.
const char* curation::fault_of(const unit_cut& cut, const string& doubt, pos3d nom)
{
    std::set<const roi*> placed;
    bool has_plus = false;
    bool has_minus = false;
    bool are_whole = true;
    const set<string> members = member(doubt);
    for (const std::string& key : members) {
        const q_roiimg* const raster = raster_to_cut(key);
        if (!raster)
            continue;
        const auto [half_plus, half_minus] =
            halves_of(*raster, nom, cut.E_position, m_info.scale.plane_step());
        has_plus = has_plus || half_plus.size > 0;
        has_minus = has_minus || half_minus.size > 0;
        are_whole = is_covered(half_plus, *raster, cut.plus, placed) && are_whole;
        are_whole = is_covered(half_minus, *raster, cut.minus, placed) && are_whole;
    }
    if (!has_plus || !has_minus)
        return "all of it lies on one side of the plane";
    if (cut.plus.empty() || cut.minus.empty())
        return "roimaker has made no outline of one half";
    if (!are_whole || placed.size() < cut.plus.size() + cut.minus.size())
        return "the outlines that roimaker has made are not those of its halves";
    return are_new(members, cut.plus, cut.minus) ? nullptr
                                                 : "another ROI stands where one of the halves would start";
}

// ---- The two units

// Searches a plane with this normal from E_m on and builds both sides, which changes nothing. Nothing
// after one line that tells why.
std::optional<curation::unit_cut> curation::find_cut(const string& doubt, pos3d E_normal, pos3d E_m,
                                                     int search_width)
{
    LongRun run(*this);
    const unsigned long revision = m_roidb->revision();
    const set<string> doubt_member = member(doubt);
    const unit_links links{parents(doubt), children(doubt)};
    const bool was_elite = isElite(doubt);
    unit_cut cut{search_cutting_position(doubt, E_normal, E_m, search_width), {}, {}};
    if (run.alive() && !is_finite(cut.E_position))    // the search has said why
        return std::nullopt;
    if (run.alive())
        splitROI(doubt, E_normal, cut.E_position, cut.plus, cut.minus);
    const char* why_not = nullptr;
    if (!run.alive())
        why_not = "its recording was closed meanwhile";
    else if (revision != m_roidb->revision() || doubt_member != member(doubt) ||
             links.parents != parents(doubt) || links.children != children(doubt) ||
             was_elite != isElite(doubt))
        why_not = "it was edited meanwhile";
    else
        why_not = fault_of(cut, doubt, E_normal / E_normal.size());
    if (!why_not)
        return cut;
    std::cout << "Cannot split " << doubt << ": " << why_not << std::endl;
    return std::nullopt;
}

// Cuts the unit by a plane with this normal, searched from E_m on. The unit, its links and its ROIs stay
// as they are unless all of that succeeds.
std::optional<std::pair<std::string, std::string>> curation::cut_unit(const string& doubt, pos3d E_normal,
                                                                      pos3d E_m, int search_width)
{
    if (!is_roimaker_there()) {
        error_line("Cannot find ", roimaker_path());
        return std::nullopt;
    }
    const std::optional<unit_cut> cut = find_cut(doubt, E_normal, E_m, search_width);
    if (!cut)
        return std::nullopt;
    const unit_links links{parents(doubt), children(doubt)};
    release_links(doubt, links);
    const string head_plus = *keys_of(cut->plus).begin();
    const string head_minus = *keys_of(cut->minus).begin();
    replace_members(doubt, cut->plus, cut->minus);
    const pos3d nom = E_normal / E_normal.size();
    for (const set<string>* units : {&links.parents, &links.children})
        link_to_halves(pair_with_halves(*units, nom, cut->E_position, head_plus, head_minus), head_plus,
                       head_minus);
    set_mark(change_kind::elite, doubt, false);
    return std::pair(head_plus, head_minus);
}

// True iff no other ROI, and no other unit, has the key of a new ROI, no two new ones have the same,
// and every key can be decoded.
bool curation::are_new(const set<string>& old_members, const list<roi>& roi_plus,
                       const list<roi>& roi_minus) const
{
    set<string> keys = keys_of(roi_plus);
    keys.merge(keys_of(roi_minus));
    const bool are_distinct = keys.size() == roi_plus.size() + roi_minus.size();
    return are_distinct && std::all_of(keys.begin(), keys.end(), [&](const string& key) {
               const bool is_free = old_members.contains(key) ||
                                    (!m_roidb->db.contains(key) && !m_members_head.contains(key) &&
                                     !m_head_members.contains(key));
               return is_free && keygen(decode(key)) == key;
           });
}

void curation::replace_members(const string& doubt, const list<roi>& roi_plus, const list<roi>& roi_minus)
{
    const set<string> old_members = member(doubt);
    forget_unit(doubt);
    for (const std::string& key : old_members)
        remove_roi(key);
    set<string> new_keys;
    for (const list<roi>* half : {&roi_plus, &roi_minus}) {
        const set<string> keys = keys_of(*half);
        for (const roi& r : *half)
            enter_roi(r);
        register_unit(*keys.begin(), keys);
        new_keys.insert(keys.begin(), keys.end());
    }
    inherit_marks(old_members, new_keys);
    m_split_parents.erase(doubt);
    rename_unit(doubt, half_that_keeps(doubt, roi_plus, roi_minus));
}

// The half that holds the ROI which named the old unit; else the one of more ROIs, the plus one of equals.
std::string curation::half_that_keeps(const string& doubt, const list<roi>& roi_plus,
                                      const list<roi>& roi_minus)
{
    const set<string> plus = keys_of(roi_plus);
    const set<string> minus = keys_of(roi_minus);
    const bool is_minus = minus.contains(doubt) || (!plus.contains(doubt) && minus.size() > plus.size());
    return is_minus ? *minus.begin() : *plus.begin();
}

// What was selected, tracked or removed on a plane stays so on that plane; no mark names an old ROI.
void curation::inherit_marks(const set<string>& old_members, const set<string>& new_keys)
{
    const auto plane = [](const string& key) { return decode(key).z(); };
    for (const change_kind kind :
         {change_kind::selected, change_kind::forward, change_kind::backward, change_kind::false_positive}) {
        std::set<int> marked_planes;
        for (const std::string& key : old_members)
            if (set_mark(kind, key, false) && is_decodable(key))
                marked_planes.insert(plane(key));
        for (const std::string& key : new_keys)
            if (marked_planes.contains(plane(key)))
                set_mark(kind, key, true);
    }
    for (const std::string& key : old_members)
        m_mouse_over_roi_set.erase(key);
}

// Parents, or children, go to the half on whose side of the plane their centroid lies. Where there are
// two or more and all lie on one side, the one nearest to the lone half goes there.
curation::half_of_unit curation::pair_with_halves(const set<string>& units, pos3d nom, pos3d E_m,
                                                  const string& head_plus, const string& head_minus)
{
    half_of_unit half_of;
    std::size_t on_plus = 0;
    for (const std::string& unit : units) {
        const bool is_plus = inner_product(nom, E_g(unit) - E_m) >= 0;
        half_of[unit] = is_plus ? head_plus : head_minus;
        on_plus += is_plus;
    }
    if (units.size() > 1 && on_plus == 0)
        half_of[nearest(units, head_plus)] = head_plus;
    else if (units.size() > 1 && on_plus == units.size())
        half_of[nearest(units, head_minus)] = head_minus;
    return half_of;
}

// A half that is left without one takes those that overlap it: the same two nuclei may be one unit at
// that time point too.
void curation::link_to_halves(const half_of_unit& half_of, const string& head_plus, const string& head_minus)
{
    for (const auto& [unit, half] : half_of)
        link(unit, half);
    for (const std::string& half : {head_plus, head_minus}) {
        const bool is_lone = std::none_of(half_of.begin(), half_of.end(),
                                          [&](const auto& entry) { return entry.second == half; });
        for (const auto& [unit, own_half] : half_of)
            if (is_lone && isLink(unit, half))
                link(unit, half);
    }
}

// The unit whose centroid lies nearest to that of `to`.
std::string curation::nearest(const set<string>& units, const string& to)
{
    const pos3d centre = E_g(to);
    return *std::min_element(units.begin(), units.end(), [&](const string& a, const string& b) {
        return (E_g(a) - centre).size() < (E_g(b) - centre).size();
    });
}
