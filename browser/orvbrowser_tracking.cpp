// The tracking buttons. Tracking itself is the curation's.
#include "busy_run.h"
#include "edit_scope.h"
#include "orvbrowser.h"

void ORVBrowser::pushButton_forward_tracking_clicked()
{
    repeat_tracking("Forward tracking", [this](const LongRun& run) {
        timeNext();
        forwardTracking(m_time_point - 1);
        return run.alive() && m_time_point == m_max_time_point;
    });
}

void ORVBrowser::pushButton_backward_tracking_clicked()
{
    repeat_tracking("Backward tracking", [this](const LongRun& run) {
        timePrev();
        backwardTracking(m_time_point + 1);
        return run.alive() && m_time_point == m_min_time_point;
    });
}

// Runs step() once, and again while "Auto" is on. step() answers whether the recording's end is reached.
void ORVBrowser::repeat_tracking(const char* what, const std::function<bool(const LongRun&)>& step)
{
    if (!has_rois())
        return;
    const EditScope edit(*this, what);
    BusyRun run(*this);
    do {
        const bool at_end = step(run);
        if (!run.alive())
            return;
        if (at_end)
            pushButton_auto->setChecked(false);
        show_changes();
        if (!run.process_events())
            return;
        run.checkpoint();
    } while (m_auto);
}

void ORVBrowser::do_zTracking()
{
    if (!has_rois())
        return;
    const EditScope edit(*this, "Z tracking");
    BusyRun run(*this);
    zTracking(m_time_point);
    if (!run.alive())
        return;
    show_changes();
    if (run.process_events())
        run.checkpoint();
}

void ORVBrowser::pushButton_z_clicked() { do_zTracking(); }

void ORVBrowser::pushButton_stop_clicked() { pushButton_auto->setChecked(false); }

void ORVBrowser::pushButton_auto_toggled(bool b) { m_auto = b; }
