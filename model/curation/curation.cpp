// The recording: opening, closing, what is asked of the whole of it, ROIs taken out and brought back.
#include "curation.h"

#include "edit_scope.h"
#include "error_line.h"
#include "keygen.h"
#include "open_step.h"
#include "roi_reader.h"

#include <algorithm>

namespace {

// The ROIs of a file after time point t; nothing, and one line on standard error, unless the file belongs to
// the recording, reads to its end, and has any.
std::optional<std::vector<roi>> later_rois(const std::string& filename, const std::string& dataset, int t)
{
    roi_reader reader(filename);
    std::string name;
    std::vector<roi> later;
    if (!reader.is_open()) {
        error_line("roidb: Cannot open ", filename);
        return std::nullopt;
    }
    if ((!reader.read_word(name) || name != dataset) && !reader.failed()) {
        error_line("different dataset");
        return std::nullopt;
    }
    bool is_whole = true;
    for (roi r; is_whole && !reader.is_at_end();) {
        is_whole = reader.read_record(r);
        if (is_whole && r.t() > t)
            later.push_back(r);
    }
    if (reader.failed())
        error_line(reader.failure());
    else if (!is_whole)
        error_line("Not an ROI file to its end: ", filename);
    else if (later.empty())
        error_line("No ROIs after time point ", t, " in ", filename);
    else
        return later;
    return std::nullopt;
}

// Whether these are the ROIs after time point t, and all of them.
bool are_there(const std::vector<roi>& later, const std::map<std::string, roi>& rois, int t)
{
    std::size_t same = 0;
    for (const roi& r : later) {
        const auto found = rois.find(keygen(r));
        same += found != rois.end() && found->second == r;
    }
    const auto is_later = [t](const auto& entry) { return entry.second.t() > t; };
    return same == later.size() && std::ranges::count_if(rois, is_later) == static_cast<std::ptrdiff_t>(same);
}

}    // namespace

curation::curation()
    : m_observers(std::make_shared<observer_list>()),
      m_run_state(std::make_shared<run_state>(run_state{this}))
{
}

curation::~curation()
{
    m_run_state->model = nullptr;
    if (m_open_step)
        m_open_step->model = nullptr;
}

// One may go, or come, while they are told.
void curation::tell(void (curation_observer::*what)())
{
    const std::shared_ptr<observer_list> observers = m_observers;
    for (std::size_t i = 0; i < observers->size(); ++i)
        ((*observers)[i]->*what)();
}

// ---- Opening and closing

void curation::open_rois(std::unique_ptr<roidb_plus> rois)
{
    close_rois();
    m_roidb = std::move(rois);
    m_dataset = m_roidb->name();
    m_q_roiimgdb = std::make_unique<q_roiimgdb>();
    forget_everything();
    m_min_time_point = m_roidb->t_min();
    m_max_time_point = m_roidb->t_max();
    m_min_focal_plane = default_focal_planes.first;
    m_max_focal_plane = default_focal_planes.last;
    announce_recording();
}

void curation::close_rois()
{
    forget_recording();
    m_roidb.reset();
    m_q_roiimgdb.reset();
}

// A step that is open ends here: what its scopes do from now on is done to another recording.
void curation::forget_recording()
{
    ++m_recording;
    if (m_open_step)
        end_step();
    tell(&curation_observer::recording_changes);
}

// The candidates of the splits stay.
void curation::forget_everything()
{
    m_auto_make_units = m_make_units = false;
    for (auto* keys : {&m_selected_roi_set, &m_removed_roi_set, &m_mouse_over_roi_set, &m_fwd_roi_set,
                       &m_bwd_roi_set, &m_make_unit_roi_set, &m_linkage_set, &m_lineage_mode_roi_set,
                       &m_split_parents, &m_elite_head_roi_set})
        keys->clear();
    m_smallest_enclosing_circle.clear();
    m_unit_notes.clear();
    m_info = {};
    m_head_members.clear();
    m_members_head.clear();
    m_linkage_multimap.clear();
    ++m_edits;
}

void curation::release_dropped_rasters()
{
    if (m_run_state->runs == 0 && m_q_roiimgdb)
        m_q_roiimgdb->release_dropped();
}

// ---- The lineage as a whole

std::string curation::chosen() const
{
    return m_lineage_mode_roi_set.empty() ? string() : *m_lineage_mode_roi_set.begin();
}

lineage curation::current_lineage() const
{
    lineage units;
    for (const auto& [head, member] : m_head_members)
        if (m_roidb->db.contains(member))
            units.head_members.emplace_hint(units.head_members.end(), head, member);
    const auto is_unit = [&](const string& head) { return units.head_members.contains(head); };
    for (const auto& [child, parent] : m_linkage_multimap)
        if (is_unit(child) && is_unit(parent))
            units.links.emplace_hint(units.links.end(), child, parent);
    for (const string& head : m_elite_head_roi_set)
        if (is_unit(head))
            units.elite.insert(units.elite.end(), head);
    put_notes(m_unit_notes, units);
    const auto is_gone = [this](const string& key) { return !key.empty() && !m_roidb->db.contains(key); };
    std::set<dismissal> dismissed;
    for (const dismissal& d : units.dismissed)
        if (!is_gone(d.head))
            dismissed.insert({d.kind, d.head, is_gone(d.other) ? string() : d.other});
    units.dismissed = std::move(dismissed);
    return units;
}

void curation::replace_lineage(lineage units)
{
    const EditScope step(*this, "Read Lineage");
    forget_lineage();
    for (const auto& [head, member] : units.head_members)
        enter_member(head, member);
    for (const auto& [child, parent] : units.links)
        enter_link(child, parent);
    for (const string& head : units.elite)
        set_mark(change_kind::elite, head, true);
    for (const string& note : notes_of(units))
        add_note(note);
    // What was picked may be no unit any more.
    m_lineage_mode_roi_set.clear();
    m_split_parents.clear();
    m_falsely_grouped_units_candidates.clear();
    notify();
}

void curation::forget_lineage()
{
    while (!m_head_members.empty())
        remove_unit(string(m_head_members.begin()->first));
    while (!m_members_head.empty())
        forget_head_of(string(m_members_head.begin()->first));
    while (!m_linkage_multimap.empty())
        remove_link(m_linkage_multimap.begin());
    clear_marks(change_kind::elite);
    while (!m_unit_notes.empty())
        remove_note(string(*m_unit_notes.begin()));
}

void curation::set_info(const recording_info& info)
{
    const EditScope step(*this, "Scale");
    enter_info(info);
}

void curation::reset()
{
    const EditScope step(*this, "Reset");
    clear_marks(change_kind::forward);
    clear_marks(change_kind::backward);
    forget_lineage();
    m_mouse_over_roi_set.clear();
    m_make_unit_roi_set.clear();
    m_smallest_enclosing_circle.clear();
    m_linkage_set.clear();
    ++m_edits;
    notify();
}

// ---- Taking ROIs out and bringing them back

void curation::drop_false_positives()
{
    if (!m_roidb)
        return;
    const EditScope step(*this, "Drop FP");
    const set<string> survivors = one_that_stays_of_each_changed_unit();
    for (const string& key : m_removed_roi_set)
        remove_roi(key);
    forget_missing_members();
    for (const string& key : survivors)
        note_edited(head(key));
}

// Of the units that lose ROIs as false positives, and have others.
std::set<std::string> curation::one_that_stays_of_each_changed_unit()
{
    set<string> changed;
    for (const string& key : m_removed_roi_set)
        if (const string unit = head(key); m_roidb->db.contains(key) && m_head_members.contains(unit))
            changed.insert(unit);
    set<string> survivors;
    for (const string& unit : changed) {
        const auto [first, last] = m_head_members.equal_range(unit);
        const auto stays = std::find_if(
            first, last, [this](const auto& entry) { return !m_removed_roi_set.contains(entry.second); });
        if (stays != last)
            survivors.insert(stays->second);
    }
    return survivors;
}

// What the file brings may lie outside the bounds of before, or end earlier.
bool curation::restore_rois(const string& filename, int t)
{
    std::optional<std::vector<roi>> later = m_roidb ? later_rois(filename, m_dataset, t) : std::nullopt;
    if (!later)
        return false;
    if (are_there(*later, m_roidb->db, t))    // the same ones
        return true;
    const EditScope step(*this, "Restore ROIs");
    set<string> replaced;
    for (const auto& [key, r] : m_roidb->db)
        if (r.t() > t)
            replaced.insert(replaced.end(), key);
    for (const string& key : replaced)
        remove_roi(key);
    for (const roi& r : *later)
        enter_roi(r);
    forget_missing_members();
    m_min_time_point = m_roidb->t_min();
    m_max_time_point = m_roidb->t_max();
    return true;
}
