// Tracking the chosen ROIs forward, backward and across the focal planes.
//
// Writes m_fwd_roi_set, m_bwd_roi_set and, in z, m_selected_roi_set; with m_make_units also the units.
#include "curation.h"
#include "edit_scope.h"
#include "keygen.h"
#include "long_run.h"
#include "plane_walk.h"

#include <algorithm>
#include <vector>

namespace {

// Making a raster takes about as long as this many comparisons of two ROIs.
constexpr int steps_of_a_raster = 64;

constexpr double z_tracking_share = 0.5;    // of the larger of two areas, that they share more than

// One ROI from which the flood looks at one plane.
struct flood_level {
    q_roiimg* from;
    int z;
    PlaneWalk walk;
};

// The shared pixels over the larger of the two areas.
double shared_ratio(q_roiimg* a, q_roiimg* b)
{
    const double shared = q_shared_pixels(a, b);
    return std::min(shared / a->size(), shared / b->size());
}

// REQUIRES: r.raster
bool is_reached(q_roiimg* from, const plane_roi& r, double mor_t, double mor_z)
{
    if (mor_t == 0.0 && mor_z == 0.0)
        return r.box.meets(from->box()) && is_overlap(from, r.raster);
    return shared_ratio(from, r.raster) > (from->t() != r.record->t() ? mor_t : mor_z);
}

}    // namespace

// Which marks these are; nothing for keys of somebody else.
std::optional<change_kind> curation::kind_of(const set<string>& keys) const
{
    if (&keys == &m_fwd_roi_set)
        return change_kind::forward;
    if (&keys == &m_bwd_roi_set)
        return change_kind::backward;
    if (&keys == &m_selected_roi_set)
        return change_kind::selected;
    return std::nullopt;
}

// A depth-first flood over the planes of time point t, which goes on from what take() takes. Its depth is
// that of the data, so the levels lie on a stack of their own.
void curation::flood(const roi& r_from, int t, int z, double mor_t, double mor_z,
                     const std::function<bool(const string&)>& take)
{
    if (!has_rois())
        return;
    LongRun run(*this);
    std::vector<flood_level> levels;
    const auto look_at = [&](q_roiimg* from, int plane) {
        levels.push_back({from, plane, PlaneWalk(*m_roidb, *m_q_roiimgdb, t, plane)});
    };
    look_at(m_q_roiimgdb->qrimg(r_from), z);
    while (!levels.empty()) {
        flood_level& level = levels.back();
        const bool lost_its_origin = level.walk.is_stale() && !m_roidb->db.contains(keygen(*level.from));
        plane_roi* const r = lost_its_origin ? nullptr : level.walk.next();
        if (!r) {
            levels.pop_back();
            continue;
        }
        if (!run.poll_events(r->raster ? 1 : steps_of_a_raster))
            return;
        if (level.walk.is_stale())    // r may be gone: look again
            continue;
        q_roiimg* const raster = m_q_roiimgdb->raster_of(*r);
        if (!is_reached(level.from, *r, mor_t, mor_z) || m_removed_roi_set.contains(*r->key) ||
            !take(*r->key))
            continue;
        const int plane = level.z;
        look_at(raster, plane + 1);
        look_at(raster, plane - 1);    // lies on top and is searched first
    }
}

void curation::checkAdjacentFocalPlane(roi& r_from, int t, int z, set<string>* roiset, double mor_t,
                                       double mor_z)
{
    const EditScope step(*this, "Track");
    const std::optional<change_kind> kind = kind_of(*roiset);
    flood(r_from, t, z, mor_t, mor_z, [this, roiset, kind](const string& key) {
        if (!(kind ? set_mark(*kind, key, true) : roiset->insert(key).second))
            return false;
        if (!kind)
            notify();
        if (m_make_units)
            enter_member(keygen(m_unit_roi_head), key);
        return true;
    });
}

// Runs visit() for the ROIs of time point t that have a key in `keys` and are not removed, until the
// run ends. True iff it has not.
bool curation::for_each_marked(int t, const set<string>& keys, const std::function<void(roi&)>& visit)
{
    LongRun run(*this);
    for (int z = m_min_focal_plane; z <= m_max_focal_plane; ++z) {
        PlaneWalk walk(*m_roidb, *m_q_roiimgdb, t, z);
        while (plane_roi* const r = walk.next()) {
            if (!keys.contains(*r->key) || m_removed_roi_set.contains(*r->key))
                continue;
            visit(*m_q_roiimgdb->raster_of(*r));
            if (!run.alive())
                return false;
        }
    }
    return true;
}

// Spreads the selection of time point t over its planes, then steps to time point t_to.
void curation::track(int t, int t_to, set<string>& reached)
{
    if (!has_rois())
        return;
    const bool alive = for_each_marked(
        t, m_selected_roi_set, [&](roi& r) { checkAdjacentFocalPlane(r, t, r.z(), &reached, 0.0, 0.0); });
    if (alive)
        for_each_marked(t, reached,
                        [&](roi& r) { checkAdjacentFocalPlane(r, t_to, r.z(), &reached, 0.0, 0.0); });
}

void curation::forwardTracking(int t)
{
    const EditScope step(*this, "Forward tracking");
    track(t, t + 1, m_fwd_roi_set);
}

void curation::backwardTracking(int start_time_point)
{
    const EditScope step(*this, "Backward tracking");
    track(start_time_point, start_time_point - 1, m_bwd_roi_set);
}

void curation::zTracking(int t)
{
    if (!has_rois())
        return;
    const EditScope step(*this, "Z tracking");
    LongRun run(*this);
    for_each_marked(t, m_selected_roi_set, [&](roi& r) {
        checkAdjacentFocalPlane(r, t, r.z() - 1, &m_selected_roi_set, 0.0, z_tracking_share);
        if (!run.alive())
            return;
        if (roi as_it_is_now(r, {}); m_roidb->find(as_it_is_now))
            checkAdjacentFocalPlane(as_it_is_now, t, as_it_is_now.z() + 1, &m_selected_roi_set, 0.0,
                                    z_tracking_share);
    });
}

std::set<std::string> curation::reached_across_planes(const string& key, bool passes_false_positives)
{
    if (!has_rois() || !m_roidb->db.contains(key))
        return {};
    set<string> found{key};
    std::vector<string> to_visit{key};
    while (!to_visit.empty()) {
        q_roiimg* const from = m_q_roiimgdb->qrimg(m_roidb->find_plus(to_visit.back()));
        to_visit.pop_back();
        for (const int z : {from->z() - 1, from->z() + 1}) {
            const auto plane = m_q_roiimgdb->plane(*m_roidb, from->t(), z);
            for (plane_roi& r : plane->rois)
                if ((passes_false_positives || !m_removed_roi_set.contains(*r.key)) &&
                    shared_ratio(from, m_q_roiimgdb->raster_of(r)) > z_tracking_share &&
                    found.insert(*r.key).second)
                    to_visit.push_back(*r.key);
        }
    }
    release_dropped_rasters();
    return found;
}
