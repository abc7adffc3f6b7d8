// curation_probe.h - a curation without a window, with its state readable and its work kept.
#pragma once
#include "curation.h"
#include "kept_work.h"

#include <tuple>
#include <utility>
#include <vector>

class CurationProbe : public curation {
public:
    using curation::m_bwd_roi_set, curation::m_elite_head_roi_set, curation::m_fwd_roi_set,
        curation::m_head_members, curation::m_lineage_mode_roi_set, curation::m_linkage_multimap,
        curation::m_members_head, curation::m_mouse_over_roi_set, curation::m_q_roiimgdb,
        curation::m_removed_roi_set, curation::m_roidb, curation::m_selected_roi_set,
        curation::m_split_parents;

    kept_work work{*this};
};

// Entry by entry what undo promises to bring back.
template <class Curation>
auto state_of(const Curation& c)
{
    std::vector<std::pair<std::string, std::string>> rois;
    std::vector<std::tuple<std::string, int, int>> index;
    for (const auto& [key, r] : c.m_roidb->db)
        rois.emplace_back(key, r.outline());
    for (const auto& [plane, at] : c.m_roidb->tz_xy_db)
        index.emplace_back(plane, at.x(), at.y());
    return std::tuple(rois, index, c.m_head_members, c.m_members_head, c.m_linkage_multimap,
                      c.m_elite_head_roi_set, c.m_selected_roi_set, c.m_removed_roi_set, c.m_fwd_roi_set,
                      c.m_bwd_roi_set);
}
