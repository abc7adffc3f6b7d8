// Undo and redo, saving everything, taking up what was not saved.
#include "keygen.h"
#include "orvbrowser.h"
#include "replay.h"

void ORVBrowser::undo() { show_step(m_work.undo()); }

void ORVBrowser::redo() { show_step(m_work.redo()); }

bool ORVBrowser::can_undo() const { return m_work.can_undo(); }

bool ORVBrowser::can_redo() const { return m_work.can_redo(); }

std::size_t ORVBrowser::unsaved_edits() const { return m_work.unsaved_edits(); }

bool ORVBrowser::save_all()
{
    setCursor(Qt::WaitCursor);
    const bool is_saved = m_work.save_all();
    show_fitting_cursor();
    return is_saved;
}

bool ORVBrowser::take_up_work() { return take_up_work(0); }

bool ORVBrowser::take_up_work(std::size_t offer)
{
    if (!m_work.take_up(offer))
        return false;
    const edit_history& history = m_work.history();
    if (m_roidb)
        take_time_bounds();
    take_focal_planes();
    show_step(history.can_undo() ? &history.next_to_undo() : nullptr);
    show_changes();    // also when nothing is left to be undone
    return true;
}

// To any state there was or, undone, could be again: as many steps were done then.
void ORVBrowser::go_to_step(std::size_t done)
{
    const edit_step* last = nullptr;
    while (m_work.history().position() > done && can_undo())
        last = m_work.undo();
    while (m_work.history().position() < done && can_redo())
        last = m_work.redo();
    if (last && m_roidb)    // any of them may have changed the bounds
        take_time_bounds();
    show_step(last);
}

// After it was undone, or done again: its place, unless something of it is on view.
void ORVBrowser::show_step(const edit_step* step)
{
    if (!step)
        return;
    if (m_roidb && step->concerns(kept_in::rois))
        take_time_bounds();
    take_focal_planes();
    if (m_further_input)
        m_further_input->step_shows();
    const std::string key = find_place(*step, m_time_point, m_focal_plane);
    const pos4i there = key.empty() ? pos4i(0, 0, m_focal_plane, m_time_point) : decode(key);
    const bool is_on_view = there.t() == m_time_point && there.z() == m_focal_plane;
    if (there.t() != m_time_point)
        setCurrentTimePoint(there.t());
    if (there.z() != m_focal_plane)
        setCurrentFocalPlane(there.z());
    if (m_further_input && !key.empty())
        m_further_input->step_shown(key, is_on_view);
    show_changes();
}
