// curation.h - one open recording and everything a person decides about it; no screen.
//
// Positions are image pixels, focal planes and time points; every set, map and link holds ROI keys
// (keygen.h). A unit is the ROIs of one nucleus at one time point, named by its head, the key of one
// of them. State changes through the primitive edits at the end alone, each of which notes in the open step
// what it did (edit_step.h); whoever must know hears of it (curation_observer.h). Each group below names the
// file that holds its bodies.
//
// Operations print their trace and report lines on standard output. What is asked of a recording that is not
// open has no effect and an empty answer. A derived class may read and write the state directly.
#pragma once
#include "ORV_pos.h"
#include "ORV_roi.h"
#include "curation_observer.h"
#include "edit_step.h"
#include "lineage_file.h"
#include "long_run.h"
#include "making.h"
#include "q_roiimgdb.h"
#include "recording_file.h"
#include "roidb_plus.h"
#include "run_state.h"
#include "unit_notes.h"
#include "unit_parting.h"

#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class EditScope;
struct open_step;
struct restored_state;
class unit_pixels;

class curation {
protected:
    // A derived class that overrides an operation may use these short names too.
    using string = std::string;
    template <class T>
    using set = std::set<T>;
    template <class T>
    using list = std::list<T>;

public:
    curation();
    virtual ~curation();
    curation(const curation&) = delete;
    curation& operator=(const curation&) = delete;

    // ---- The recording (curation.cpp)

    // Takes over the ROIs of a recording and its name, closing the one that is open; everything about them is
    // forgotten.
    void open_rois(std::unique_ptr<roidb_plus> rois);
    void close_rois();
    [[nodiscard]] bool has_rois() const noexcept { return m_roidb && m_q_roiimgdb; }
    [[nodiscard]] const roidb_plus& rois() const noexcept { return *m_roidb; }    // REQUIRES: has_rois()
    [[nodiscard]] const string& dataset() const noexcept { return m_dataset; }
    [[nodiscard]] const recording_info& info() const noexcept { return m_info; }
    void set_info(const recording_info& info);                       // a step
    void take_info(const recording_info& info) { m_info = info; }    // as the file beside the ROI file tells
    [[nodiscard]] int min_time_point() const noexcept { return m_min_time_point; }
    [[nodiscard]] int max_time_point() const noexcept { return m_max_time_point; }

    // Change whenever a recording is opened or closed; whenever units, links or elite marks change.
    [[nodiscard]] unsigned long recording() const noexcept { return m_recording; }
    [[nodiscard]] unsigned long edits() const noexcept { return m_edits; }

    // True iff an operation is going on, or a step is open: nothing can be undone then.
    [[nodiscard]] bool is_busy() const noexcept { return is_running() || m_open_step; }
    [[nodiscard]] bool is_running() const noexcept { return m_run_state->runs > 0; }
    [[nodiscard]] bool is_making_units() const noexcept
    {
        return m_auto_make_units;
    }    // those of a time point

    // ---- All units and links, for whoever counts, draws or saves them (curation.cpp)
    [[nodiscard]] const std::multimap<string, string>& head_members() const noexcept
    {
        return m_head_members;
    }
    [[nodiscard]] const std::multimap<string, string>& links() const noexcept { return m_linkage_multimap; }
    [[nodiscard]] const set<string>& elite() const noexcept { return m_elite_head_roi_set; }
    [[nodiscard]] const std::map<string, string>& members_head() const noexcept { return m_members_head; }
    [[nodiscard]] const set<string>& tracked_forward() const noexcept { return m_fwd_roi_set; }
    [[nodiscard]] const set<string>& tracked_backward() const noexcept { return m_bwd_roi_set; }
    [[nodiscard]] const set<string>& false_positives() const noexcept { return m_removed_roi_set; }
    [[nodiscard]] const unit_notes& notes() const noexcept { return m_unit_notes; }
    [[nodiscard]] const set<string>& selected() const noexcept { return m_selected_roi_set; }
    [[nodiscard]] const set<string>& doubtful() const noexcept    // as of search_doubt_units()
    {
        return m_falsely_grouped_units_candidates;
    }
    [[nodiscard]] string chosen() const;    // the head of the chosen nucleus, or ""

    // The lineage as it can be saved: without members that are no ROIs any more, and what names them.
    [[nodiscard]] lineage current_lineage() const;
    void replace_lineage(lineage units);
    void reset();    // forgets what was tracked, units, links and elite marks

    // ---- Marks (marks.cpp)
    virtual bool isSelected(string key);
    virtual bool isFwdTracked(string key);
    virtual bool isBwdTracked(string key);
    virtual bool isElite(string key);
    void toggle_selected(const string& key);
    void toggle_false_positive(const string& key);
    void toggle_elite(const string& unit);
    void note_edited(const string& unit);                        // that a person has made or changed it
    void set_reviewed(const string& unit, bool on);              // that a person has looked at it
    [[nodiscard]] bool is_reviewed(const string& unit) const;    // so noted, or elite
    void set_dismissed(const dismissal& d, bool on);             // that a finding is none
    void set_gap(const string& earlier, const string& later, bool on);    // that both are one nucleus
    // Names a nucleus; "" takes its name away. False, one line and nothing changed when it is no unit, or
    // this is no name (is_unit_name()).
    bool call(const string& unit, const string& name);
    [[nodiscard]] bool is_touched(const string& unit);    // so noted, reviewed, named, or elite
    void set_elite(const set<string>& units, bool on);
    void choose(const string& unit);    // "": no nucleus
    void select_all(int t);             // but for false positives
    // Marks as false positive what is neither selected nor tracked. False, and one line, when nothing is
    // either.
    bool clean_up();
    void add_selected(const set<string>& keys);
    void add_false_positives(const set<string>& keys);
    void set_false_positives(const set<string>& keys, bool on);    // in one step

    // ---- Taking ROIs out and bringing them back (curation.cpp)
    void drop_false_positives();
    // Replaces the ROIs after time point t by those of an ROI file of this recording. False, one line and
    // nothing changed when the file is not whole, of another recording, or has none.
    bool restore_rois(const string& filename, int t);

    // ---- Tracking (tracking.cpp)
    virtual void forwardTracking(int t);
    virtual void backwardTracking(int start_time_point);
    virtual void zTracking(int t);
    // The ROI and those that z tracking would reach from it; also through false positives where asked for.
    [[nodiscard]] set<string> reached_across_planes(const string& key, bool passes_false_positives);
    virtual void checkAdjacentFocalPlane(roi& r_from, int t, int z, set<string>* roiset, double mor_t,
                                         double mor_z);

    // ---- Units (units.cpp)
    virtual string head(roi r);
    virtual string head(string key);    // "N/A" for an ROI in no unit
    virtual set<string> member(string key);
    virtual set<string> units(int t);
    [[nodiscard]] set<string>
    heads_at(int t) const;    // the same, that at x = 0, y = 0 on plane 0 among them
    virtual int z_min(string unit);
    virtual int z_max(string unit);
    virtual unsigned int ID(string a);    // from so many times its time point on
    static constexpr unsigned int numbers_per_time_point = 1000;

    // ---- Making units and links (making.cpp)
    // Makes units of the ROIs of time point t that are no false positives and in no unit that is spared; the
    // units that are not go first, with their links.
    void make_units(int t, const making& how);
    void make_units(int t, double overlap);    // by overlap, of the ROIs in no unit
    // How many units time point t would have then; nothing when the recording was closed meanwhile.
    [[nodiscard]] std::optional<units_made> units_after_making(int t, const making& how);
    // Links into time point t of units that go there, or one time point earlier.
    [[nodiscard]] std::size_t links_of(const set<string>& gone_before, const set<string>& gone, int t) const;

    // ---- Lineage (lineage.cpp)
    virtual set<string> parents(string key);
    virtual set<string> children(string key);
    virtual set<string> upstream_units(string key, int end_t);
    virtual set<string> subset_of_unit_from(string key);
    [[nodiscard]] set<string> descendants(const string& unit);    // without itself
    virtual set<string> subset_of_elite_unit_from(string key);
    virtual bool reach(string a, string b);    // one of the two units is an ancestor of the other
    virtual pos3d g(string key);               // centroid: pixels, pixels, focal planes
    virtual pos3d E_g(string key);             // the same, all in pixels
    virtual bool isLink(string parent, string child);
    virtual void makeLinkage(int t);
    virtual void link(string unit1, string unit2);
    virtual void release_child(string parent, string child);
    void release_parents(const string& unit);    // which becomes the chosen nucleus
    void drop_links_into(int t);                 // those whose child lies at time point t

    // ---- Where the lineage needs a look (reports.cpp)
    virtual void search_doubt_units();
    // All of its ROIs are false positives: it counts nowhere as doubtful, dead end or unlinked.
    [[nodiscard]] bool is_false(const string& unit) const;
    [[nodiscard]] std::optional<string> first_dead_end();
    [[nodiscard]] std::optional<string> first_unlinked();

    // ---- Merging (merge.cpp)
    virtual void mergeUnits(string a, string b);

    // ---- Splitting: what to do (split.cpp), the cut (cut.cpp)
    // Repairs or splits the first suspect, or says that there is none. True iff anything was changed.
    bool split_first_suspect();
    bool split_suspect(const string& doubt);    // a unit with more than one parent link; the same answer
    virtual void manualSplit(string doubt, set<string> ps, int x, int y, int z);
    virtual unsigned int cross_section_size(string doubt, pos3d E_normal, pos3d E_pos, bool& plus,
                                            bool& minus);
    virtual pos3d search_cutting_position(string doubt, pos3d E_normal, pos3d E_pos, int SEARCH_WIDTH);
    virtual void splitROI(string doubt, pos3d E_normal, pos3d E_m, list<roi>& roi_plus, list<roi>& roi_minus);

    // ---- Parting a unit in two, which needs no parents (parting.cpp)
    // How it would be cut, which changes nothing. Nothing when there are not two sides.
    [[nodiscard]] std::optional<unit_parting> find_parting(const string& unit,
                                                           const parting_request& how = {});
    // Cuts it so; the heads of the plus and the minus half. Nothing, and one line, when it cannot be cut: all
    // stays as it is.
    std::optional<std::pair<string, string>> part_unit(const string& unit, const unit_parting& how);
    // The rasters of its ROIs, ascending by key; they are there as long as a LongRun.
    [[nodiscard]] std::vector<keyed_raster> rasters_of(const string& unit);

protected:
    // Lets whatever waits for this thread go on, between the small steps of a long operation. True iff there
    // was anything. What goes on may do anything a person can do: see long_run.h.
    virtual bool carry_on() { return false; }

    // ==== State ====
    std::multimap<string, string> m_head_members;        // unit head to each of its members
    std::map<string, string> m_members_head;             // member to the head of its unit
    std::multimap<string, string> m_linkage_multimap;    // child head to parent head
    set<string> m_linkage_set;
    set<string> m_elite_head_roi_set;
    set<string> m_lineage_mode_roi_set;    // at most the one chosen nucleus
    set<string> m_falsely_grouped_units_candidates;
    set<string> m_split_parents;
    set<string> m_fwd_roi_set;
    set<string> m_bwd_roi_set;
    set<string> m_selected_roi_set;
    set<string> m_removed_roi_set;
    set<string> m_mouse_over_roi_set;
    set<string> m_make_unit_roi_set;
    unit_notes m_unit_notes;    // what a person noted of units
    recording_info m_info;
    std::map<string, pos3d> m_smallest_enclosing_circle;
    string m_dataset;
    int m_max_focal_plane = 0;
    int m_min_focal_plane = 0;
    int m_max_time_point = 0;
    int m_min_time_point = 0;
    bool m_make_units = false;
    bool m_auto_make_units = false;
    roi m_unit_roi_head;
    std::unique_ptr<roidb_plus> m_roidb;    // null while no recording is open; so is the cache
    std::unique_ptr<q_roiimgdb> m_q_roiimgdb;

    // ---- For whoever opens and closes recordings in steps of its own
    void forget_recording();    // before the databases are those of another one: runs and the open step end
    void announce_recording() { tell(&curation_observer::recording_changed); }    // once they are
    void forget_everything();          // marks, units and links, without a step
    void release_dropped_rasters();    // unless a run may hold one
    void announce_waiting() { tell(&curation_observer::waiting_changed); }
    void close_runs() noexcept { m_run_state->is_closing = m_run_state->runs > 0; }
    [[nodiscard]] set<string> units_reached_at(int t, const string& unit);

private:
    friend class EditScope;
    friend class LongRun;
    friend class link_making;
    friend class Observing;
    friend class kept_work;

    // ---- Undo (undone.cpp)
    void take_over(restored_state state);
    void take_time_bounds_of_rois();
    void forget_what_is_gone();    // what was picked of units that an undone step has taken away

    // ---- Tracking
    void flood(const roi& r_from, int t, int z, double mor_t, double mor_z,
               const std::function<bool(const string&)>& take);
    bool for_each_marked(int t, const set<string>& keys, const std::function<void(roi&)>& visit);
    void track(int t, int t_to, set<string>& reached);

    // ---- Units and links
    using link_cursor = std::multimap<string, string>::const_iterator;
    struct unit_links {
        set<string> parents;
        set<string> children;
    };
    struct unit_member {
        const string* unit;
        q_roiimg* raster;
        pixel_box box;
    };
    using members_by_plane = std::map<int, std::vector<unit_member>>;

    void forget_lineage();
    void forget_unit(const string& unit);
    void register_unit(const string& unit, const set<string>& members);
    [[nodiscard]] bool is_spared(const string& key, spared spares);
    [[nodiscard]] bool may_be_grouped(const string& key, spared spares);
    [[nodiscard]] std::optional<making_plan> plan_units(int t, const making& how);
    [[nodiscard]] std::optional<key_groups> groups_at(int t, const making& how);
    [[nodiscard]] std::optional<key_groups> groups_by_nearest(int t, const making& how);
    [[nodiscard]] std::optional<key_groups> groups_by_overlap(int t, const making& how);
    [[nodiscard]] std::vector<roi> free_rois_in_order_of_planes(int t, spared spares);
    void dissolve(const set<string>& units, int t);
    [[nodiscard]] set<std::pair<string, string>> links_by_overlap(int t);    // child, parent
    [[nodiscard]] bool is_kept(const std::pair<const string, string>& link, spared spares);
    [[nodiscard]] bool may_be_entered(const std::pair<const string, string>& link, spared spares);
    void enter_links(int t, const set<std::pair<string, string>>& links, spared spares);
    void leave_unit(const string& key);
    void forget_missing_members();
    [[nodiscard]] set<string> one_that_stays_of_each_changed_unit();
    void rename_unit(const string& from, const string& to);
    [[nodiscard]] std::vector<string> notes_about(const string& unit) const;
    [[nodiscard]] bool is_called(const string& unit) const;
    [[nodiscard]] std::pair<link_cursor, link_cursor> links_into(int t) const;
    [[nodiscard]] set<string> parents_into(int t) const;
    [[nodiscard]] unit_links links_of(const string& unit, int t);
    void release_links(const string& unit, const unit_links& links);
    void release_all(const string& parent, const string& child);
    [[nodiscard]] members_by_plane unit_members_at(int t);

    // ---- Splitting
    struct unit_cut {
        pos3d E_position;
        list<roi> plus;
        list<roi> minus;
    };
    void handle_suspect(const string& doubt);
    [[nodiscard]] bool are_same_nucleus(const string& p1, const string& p2);
    [[nodiscard]] bool repair_links(const string& doubt, const string& p1, const string& p2,
                                    const set<string>& sisters1, const set<string>& sisters2);
    void pair_by_distance(const string& p1, const string& p2, const string& first, const string& second);
    // The heads of the halves; nothing when it was not cut.
    std::optional<std::pair<string, string>> cut_unit(const string& doubt, pos3d E_normal, pos3d E_m,
                                                      int search_width);
    [[nodiscard]] std::optional<unit_cut> find_cut(const string& doubt, pos3d E_normal, pos3d E_m,
                                                   int search_width);
    [[nodiscard]] unit_pixels pixels_of(const string& unit);
    [[nodiscard]] std::optional<pos3d> best_position(LongRun& run, const string& doubt, pos3d nom,
                                                     pos3d E_pos, int search_width);
    [[nodiscard]] bool are_new(const set<string>& old_members, const list<roi>& roi_plus,
                               const list<roi>& roi_minus) const;
    [[nodiscard]] const q_roiimg* raster_to_cut(const string& key);
    [[nodiscard]] const char* fault_of(const unit_cut& cut, const string& doubt, pos3d nom);
    void replace_members(const string& doubt, const list<roi>& roi_plus, const list<roi>& roi_minus);
    [[nodiscard]] static string half_that_keeps(const string& doubt, const list<roi>& roi_plus,
                                                const list<roi>& roi_minus);
    void inherit_marks(const set<string>& old_members, const set<string>& new_keys);
    using half_of_unit = std::map<string, string>;    // parent or child to the half it is linked to
    [[nodiscard]] half_of_unit pair_with_halves(const set<string>& units, pos3d nom, pos3d E_m,
                                                const string& head_plus, const string& head_minus);
    void link_to_halves(const half_of_unit& half_of, const string& head_plus, const string& head_minus);
    [[nodiscard]] string nearest(const set<string>& units, const string& to);

    // ---- Parting
    struct parted_rois {
        list<roi> plus;
        list<roi> minus;
        std::vector<std::pair<string, set<string>>>
            divided;    // those that are gone, and what is made of each
    };
    [[nodiscard]] std::optional<parted_rois> rois_of(const string& unit, const unit_parting& how);
    [[nodiscard]] static bool divide(const roi_parting& divided, const roi_mask& raster, parted_rois& parted);
    std::pair<string, string> enter_parts(const string& unit, const parted_rois& parted);

    // ---- Primitive edits: the only places that write what a step brings back (edits.cpp)
    void enter_roi(const roi& r);
    void remove_roi(const string& key);
    void enter_member(const string& unit, const string& key);
    void remove_unit(const string& unit);    // as named in m_head_members; members keep their entry
    void forget_head_of(const string& key);
    void enter_link(const string& child, const string& parent);
    void remove_link(link_cursor entry);
    bool set_mark(change_kind kind, const string& key, bool on);    // true iff it was not so before
    void clear_marks(change_kind kind);
    void notify() { tell(&curation_observer::state_changed); }
    void tell(void (curation_observer::*what)());
    [[nodiscard]] edit_step* noted();    // what the open step takes down; null between steps
    void end_step();
    void hand_over(open_step& ended);
    void keep_step_so_far();    // by whoever wants to
    void end_step_so_far();     // what is still edited by its scopes becomes a step of its own
    [[nodiscard]] set<string>& marks_of(change_kind kind);
    [[nodiscard]] std::optional<change_kind> kind_of(const set<string>& keys) const;
    [[nodiscard]] curation_tables tables();

    void enter_info(const recording_info& info);
    void add_note(const string& note);
    void remove_note(const string& note);
    void set_note(const string& note, bool on);
    void forget_dismissals(const string& key);
    void forget_review(const string& unit);

    std::shared_ptr<observer_list> m_observers;
    std::shared_ptr<run_state> m_run_state;
    std::shared_ptr<open_step> m_open_step;    // null between steps
    unsigned long m_recording = 0;
    unsigned long m_edits = 0;
};
