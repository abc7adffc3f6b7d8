// Marks on ROIs and units: selected, tracked, false positive, elite; and the chosen nucleus.
#include "curation.h"
#include "edit_scope.h"
#include "error_line.h"
#include "keygen.h"

#include <algorithm>

bool curation::isSelected(string key) { return m_selected_roi_set.contains(key); }

bool curation::isFwdTracked(string key) { return m_fwd_roi_set.contains(key); }

bool curation::isBwdTracked(string key) { return m_bwd_roi_set.contains(key); }

bool curation::isElite(string key) { return m_elite_head_roi_set.contains(key); }

void curation::toggle_selected(const string& key)
{
    const bool on = !m_selected_roi_set.contains(key);
    const EditScope step(*this, on ? "Select" : "Deselect", key);
    set_mark(change_kind::selected, key, on);
}

void curation::toggle_false_positive(const string& key)
{
    const bool on = !m_removed_roi_set.contains(key);
    const EditScope step(*this, on ? "False positive" : "No false positive", key);
    set_mark(change_kind::false_positive, key, on);
}

void curation::toggle_elite(const string& unit)
{
    const bool on = !m_elite_head_roi_set.contains(unit);
    const EditScope step(*this, on ? "Elite" : "Not elite", unit);
    set_mark(change_kind::elite, unit, on);
}

void curation::set_elite(const set<string>& units, bool on)
{
    const EditScope step(*this, on ? "Elite units" : "No elite units");
    for (const string& unit : units)
        set_mark(change_kind::elite, unit, on);
}

void curation::choose(const string& unit)
{
    m_lineage_mode_roi_set.clear();
    if (!unit.empty())
        m_lineage_mode_roi_set.insert(unit);
    notify();
}

// The chosen nucleus stays chosen under its new name, and what was noted of it is noted of that; a nucleus
// that is gone ("") is no longer chosen.
void curation::rename_unit(const string& from, const string& to)
{
    if (from == to)
        return;
    if (m_lineage_mode_roi_set.erase(from) > 0 && !to.empty())
        m_lineage_mode_roi_set.insert(to);
    for (const string& note : notes_about(from)) {
        remove_note(note);
        const string changed = about_another(note, from, to);
        if (!changed.empty() && !(changed.starts_with("CALLED ") && is_called(to)))
            add_note(changed);
    }
}

// Notes of one unit begin with their kind and its head; those of two may name it in any place.
std::vector<std::string> curation::notes_about(const string& unit) const
{
    std::vector<string> about;
    for (const char* kind : {"CALLED ", "EDITED ", "REVIEWED "}) {
        const string begin = kind + unit;
        for (auto note = m_unit_notes.lower_bound(begin);
             note != m_unit_notes.end() && note->starts_with(begin); ++note)
            about.push_back(*note);
    }
    for (const char* kind : {"DISMISSED ", "GAP "})
        for (auto note = m_unit_notes.lower_bound(kind);
             note != m_unit_notes.end() && note->starts_with(kind); ++note)
            if (note->find(unit) != string::npos)
                about.push_back(*note);
    return about;
}

// A nucleus has one name: where two become one, the first of them keeps its own.
bool curation::is_called(const string& unit) const
{
    const string begin = "CALLED " + unit + ' ';
    const auto found = m_unit_notes.lower_bound(begin);
    return found != m_unit_notes.end() && found->starts_with(begin);
}

void curation::note_edited(const string& unit)
{
    const EditScope step(*this, "Edit", unit);
    if (!m_head_members.contains(unit))
        return;
    add_note("EDITED " + unit);
    add_note("REVIEWED " + unit);
}

bool curation::is_reviewed(const string& unit) const
{
    return m_unit_notes.contains("REVIEWED " + unit) || m_elite_head_roi_set.contains(unit);
}

void curation::set_reviewed(const string& unit, bool on)
{
    const EditScope step(*this, on ? "Reviewed" : "Not reviewed", unit);
    set_note("REVIEWED " + unit, on && m_head_members.contains(unit));
}

void curation::set_dismissed(const dismissal& d, bool on)
{
    const EditScope step(*this, on ? "Not an error" : "May be an error", d.head);
    set_note("DISMISSED " + d.kind + ' ' + d.head + (d.other.empty() ? "" : ' ' + d.other), on);
}

void curation::set_gap(const string& earlier, const string& later, bool on)
{
    const EditScope step(*this, on ? "Gap" : "No gap", earlier, later);
    set_note("GAP " + earlier + ' ' + later, on);
}

bool curation::call(const string& unit, const string& name)
{
    if (!m_head_members.contains(unit)) {
        error_line("No unit to be named: ", unit);
        return false;
    }
    if (!name.empty() && !is_unit_name(name)) {
        error_line("A name has no blank at its ends and no control characters");
        return false;
    }
    const string named = "CALLED " + unit + ' ' + name;
    if (!name.empty() && m_unit_notes.contains(named))
        return true;
    const EditScope step(*this, name.empty() ? "No name" : "Name", unit);
    for (const string& note : notes_about(unit))
        if (note.starts_with("CALLED "))
            remove_note(note);
    if (!name.empty())
        add_note(named);
    return true;
}

void curation::set_note(const string& note, bool on)
{
    if (on)
        add_note(note);
    else if (m_unit_notes.contains(note))
        remove_note(note);
}

void curation::select_all(int t)
{
    if (!m_roidb)
        return;
    const EditScope step(*this, "Select all");
    const auto [first, last] = at_time_point(m_roidb->db, t);
    for (auto entry = first; entry != last; ++entry)
        if (!m_removed_roi_set.contains(entry->first))
            set_mark(change_kind::selected, entry->first, true);
}

// Marks that name no ROI of the recording count for nothing.
bool curation::clean_up()
{
    const auto is_marked = [this](const auto& entry) {
        return isSelected(entry.first) || isFwdTracked(entry.first) || isBwdTracked(entry.first);
    };
    if (!m_roidb || std::ranges::none_of(m_roidb->db, is_marked)) {
        error_line("Nothing is selected or tracked: no ROI is marked as a false positive");
        return false;
    }
    const EditScope step(*this, "Clean Up");
    for (const auto& entry : m_roidb->db)
        if (!is_marked(entry))
            set_mark(change_kind::false_positive, entry.first, true);
    return true;
}

void curation::add_selected(const set<string>& keys)
{
    const EditScope step(*this, "Read Info");
    for (const string& key : keys)
        set_mark(change_kind::selected, key, true);
}

void curation::add_false_positives(const set<string>& keys)
{
    const EditScope step(*this, "Read FP");
    for (const string& key : keys)
        set_mark(change_kind::false_positive, key, true);
}

void curation::set_false_positives(const set<string>& keys, bool on)
{
    const EditScope step(*this, on ? "False positives" : "No false positives");
    for (const string& key : keys)
        set_mark(change_kind::false_positive, key, on);
}
