// The primitive edits: what a step brings back is written here and nowhere else, and noted.
#include "curation.h"
#include "keygen.h"
#include "open_step.h"

#include <iterator>

namespace {

// How many entries of its key stand before this one.
template <class Entries, class Cursor>
int position_of(const Entries& entries, Cursor entry)
{
    return static_cast<int>(std::distance(entries.lower_bound(entry->first), entry));
}

constexpr std::string_view dismissed = "DISMISSED ";

bool is_dismissal(unit_notes::const_iterator note, const unit_notes& notes)
{
    return note != notes.end() && note->starts_with(dismissed);
}

}    // namespace

edit_step* curation::noted() { return m_open_step ? &m_open_step->step : nullptr; }

// A record whose key is taken stays out, but for its entry in the index.
void curation::enter_roi(const roi& r)
{
    const bool is_new = !m_roidb->db.contains(keygen(r));
    m_roidb->entry_plus(r);
    m_q_roiimgdb->remove(r);
    if (edit_step* const step = noted()) {
        if (is_new)
            step->add_roi(r);
        step->add_index(keygen(pos4i(0, 0, r.z(), r.t())), r);
    }
    notify();
}

// By its record, not by decoding its key: a mark from a file may be no key, or one of another position.
void curation::remove_roi(const string& key)
{
    const auto found = m_roidb->db.find(key);
    if (found == m_roidb->db.end())
        return;
    const roi gone = found->second;
    if (edit_step* const step = noted()) {
        step->remove_roi(gone);
        const string plane = keygen(pos4i(0, 0, gone.z(), gone.t()));
        const auto [first, last] = m_roidb->tz_xy_db.equal_range(plane);
        int position = 0;
        for (auto entry = first; entry != last; ++entry, ++position) {
            if (!(entry->second == static_cast<const pos2i&>(gone)))
                continue;
            step->remove_index(plane, gone, position);
            break;
        }
    }
    m_roidb->remove(gone);
    if (m_q_roiimgdb)
        m_q_roiimgdb->remove(gone);
    forget_dismissals(key);
    notify();
}

// An ROI that is in a unit already stays there, as far as it knows.
void curation::enter_member(const string& unit, const string& key)
{
    m_head_members.emplace_hint(m_head_members.end(), unit,
                                key);    // there without a search, if it is the last
    const bool is_new = m_members_head.emplace(key, unit).second;
    if (edit_step* const step = noted()) {
        step->add(change_kind::unit, unit, key);
        if (is_new)
            step->add(change_kind::head, key, unit);
    }
    forget_dismissals(unit);
    forget_dismissals(key);
    forget_review(unit);
    ++m_edits;
    notify();
}

void curation::forget_head_of(const string& key)
{
    const auto found = m_members_head.find(key);
    if (found == m_members_head.end())
        return;
    if (edit_step* const step = noted())
        step->remove(change_kind::head, key, found->second);
    m_members_head.erase(found);
    ++m_edits;
    notify();
}

void curation::remove_unit(const string& unit)
{
    const auto [first, last] = m_head_members.equal_range(unit);
    if (edit_step* const step = noted())
        for (auto entry = first; entry != last; ++entry)
            step->remove(change_kind::unit, entry->first, entry->second);
    m_head_members.erase(first, last);
    forget_dismissals(unit);
    forget_review(unit);
    ++m_edits;
    notify();
}

void curation::enter_link(const string& child, const string& parent)
{
    m_linkage_multimap.emplace_hint(m_linkage_multimap.end(), child, parent);    // without a search, as above
    if (edit_step* const step = noted())
        step->add(change_kind::link, child, parent);
    forget_review(child);
    forget_review(parent);
    ++m_edits;
    notify();
}

void curation::remove_link(link_cursor entry)
{
    if (edit_step* const step = noted())
        step->remove(change_kind::link, entry->first, entry->second, position_of(m_linkage_multimap, entry));
    forget_review(string(entry->first));
    forget_review(string(entry->second));
    m_linkage_multimap.erase(entry);
    ++m_edits;
    notify();
}

std::set<std::string>& curation::marks_of(change_kind kind)
{
    switch (kind) {
    case change_kind::elite:
        return m_elite_head_roi_set;
    case change_kind::selected:
        return m_selected_roi_set;
    case change_kind::false_positive:
        return m_removed_roi_set;
    case change_kind::forward:
        return m_fwd_roi_set;
    default:
        return m_bwd_roi_set;
    }
}

bool curation::set_mark(change_kind kind, const string& key, bool on)
{
    set<string>& marks = marks_of(kind);
    const bool is_changed = on ? marks.insert(key).second : marks.erase(key) > 0;
    if (!is_changed)
        return false;
    if (edit_step* const step = noted())
        on ? step->add(kind, key) : step->remove(kind, key);
    m_edits += kind == change_kind::elite || kind == change_kind::false_positive;
    notify();
    return true;
}

void curation::clear_marks(change_kind kind)
{
    set<string>& marks = marks_of(kind);
    if (edit_step* const step = noted())
        for (const string& key : marks)
            step->remove(kind, key);
    marks.clear();
    m_edits += kind == change_kind::elite || kind == change_kind::false_positive;
    notify();
}

void curation::add_note(const string& note)
{
    if (!m_unit_notes.insert(note).second)
        return;
    if (edit_step* const step = noted())
        step->add(change_kind::note, note);
    notify();
}

void curation::remove_note(const string& note)
{
    if (edit_step* const step = noted())
        step->remove(change_kind::note, note);
    m_unit_notes.erase(note);
    notify();
}

// A finding is dismissed as long as its unit has the same ROIs. Kind by kind: there are few of those.
void curation::forget_dismissals(const string& key)
{
    std::vector<string> about;
    for (auto note = m_unit_notes.lower_bound("DISMISSED "); is_dismissal(note, m_unit_notes);) {
        const string of_kind = note->substr(0, note->find(' ', dismissed.size()));
        const string of_unit = of_kind + ' ' + key;
        for (note = m_unit_notes.lower_bound(of_unit);
             note != m_unit_notes.end() && note->starts_with(of_unit); ++note)
            about.push_back(*note);
        note = m_unit_notes.lower_bound(of_kind + '!');    // comes after ' '
    }
    for (const string& note : about)
        remove_note(note);
}

// What a machine changes has to be looked at again.
void curation::forget_review(const string& unit)
{
    const bool is_by_machine = m_open_step && m_open_step->machine_scopes > 0;
    if (m_unit_notes.empty() || !is_by_machine)
        return;
    if (const string note = "REVIEWED " + unit; m_unit_notes.contains(note))
        remove_note(note);
}

void curation::enter_info(const recording_info& info)
{
    if (info == m_info)
        return;
    if (edit_step* const step = noted())
        step->exchange(change_kind::scale, recording_text(m_info), recording_text(info));
    m_info = info;
    notify();
}

curation_tables curation::tables()
{
    return {.rois = m_roidb.get(),
            .rasters = m_q_roiimgdb.get(),
            .head_members = &m_head_members,
            .members_head = &m_members_head,
            .links = &m_linkage_multimap,
            .elite = &m_elite_head_roi_set,
            .selected = &m_selected_roi_set,
            .false_positives = &m_removed_roi_set,
            .forward = &m_fwd_roi_set,
            .backward = &m_bwd_roi_set,
            .notes = &m_unit_notes,
            .info = &m_info,
            .chosen = &m_lineage_mode_roi_set};
}

// ---- Steps

void curation::end_step()
{
    const std::shared_ptr<open_step> ended = std::exchange(m_open_step, nullptr);
    ended->model = nullptr;
    hand_over(*ended);
}

void curation::keep_step_so_far()
{
    if (!m_open_step || m_open_step->step.is_empty())
        return;
    const std::shared_ptr<open_step> open = m_open_step;
    const std::shared_ptr<observer_list> observers = m_observers;
    for (std::size_t i = 0; i < observers->size(); ++i)
        (*observers)[i]->step_goes_on(open->step);
}

void curation::end_step_so_far()
{
    if (!m_open_step)
        return;
    open_step so_far(nullptr, m_open_step->step.title(), m_open_step->chosen_before);
    std::swap(so_far.step, m_open_step->step);
    m_open_step->chosen_before = chosen();
    m_open_step->step = edit_step(so_far.step.title());
    hand_over(so_far);
}

void curation::hand_over(open_step& ended)
{
    if (ended.step.is_empty())    // choosing alone is no step
        return;
    if (ended.chosen_before != chosen())
        ended.step.exchange(change_kind::chosen, ended.chosen_before, chosen());
    ended.step.shrink();
    const std::shared_ptr<observer_list> observers = m_observers;
    for (std::size_t i = observers->size();
         i-- > 0;)    // whoever came first keeps it, and so hears of it last
        if (i < observers->size())
            (*observers)[i]->step_ended(ended.step);
}
