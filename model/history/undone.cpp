// What steps that are undone, done again or taken up mean to the rest of a curation.
#include "curation.h"
#include "restored_state.h"

#include <utility>

void curation::take_over(restored_state state)
{
    m_roidb = std::move(state.rois);
    m_q_roiimgdb = std::make_unique<q_roiimgdb>();
    m_head_members = std::move(state.head_members);
    m_members_head = std::move(state.members_head);
    m_linkage_multimap = std::move(state.links);
    m_elite_head_roi_set = std::move(state.elite);
    m_selected_roi_set = std::move(state.selected);
    m_removed_roi_set = std::move(state.false_positives);
    m_fwd_roi_set = std::move(state.forward);
    m_bwd_roi_set = std::move(state.backward);
    m_unit_notes = std::move(state.notes);
    m_info = state.info;
    m_lineage_mode_roi_set = std::move(state.chosen);
    take_time_bounds_of_rois();
    forget_what_is_gone();
}

void curation::take_time_bounds_of_rois()
{
    m_min_time_point = m_roidb->t_min();
    m_max_time_point = m_roidb->t_max();
}

void curation::forget_what_is_gone()
{
    const auto is_gone = [this](const string& unit) { return !m_head_members.contains(unit); };
    std::erase_if(m_split_parents, is_gone);
    std::erase_if(m_falsely_grouped_units_candidates, is_gone);
    std::erase_if(m_lineage_mode_roi_set, [&](const string& unit) { return unit != "N/A" && is_gone(unit); });
    std::erase_if(m_mouse_over_roi_set,
                  [this](const string& key) { return !m_roidb || !m_roidb->db.contains(key); });
    ++m_edits;
    notify();
}
