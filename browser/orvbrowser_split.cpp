// The split buttons and the manual split. What is done with a suspect, and the cut, are the curation's.
#include "busy_run.h"
#include "orvbrowser.h"

#include <QTimer>

namespace {

constexpr int idle_pass_ms = 200;    // between passes that change nothing

}    // namespace

void ORVBrowser::pushButton_auto_split_toggled(bool on) { m_auto_split = on; }

void ORVBrowser::pushButton_split_clicked()
{
    if (!can_process_events())    // so deep inside other handlers that no event would end it
        return;
    const QPointer<ORVBrowser> self(this);
    {
        BusyRun run(*this);
        do {
            const bool changed = split_first_suspect();
            if (!run.alive())
                return;
            show_changes();
            if (!run.process_events())
                return;
            run.checkpoint();
            if (!changed && !wait_while_auto_split(run))
                return;
        } while (m_auto_split);
    }
    if (self)
        finish();
}

void ORVBrowser::split_shown(const string& doubt)
{
    BusyRun run(*this);
    split_suspect(doubt);
    if (run.alive())
        finish();
}

// Nothing is left to do but for events, which may bring work or end the run: they are waited for
// without burning a core. False when the run has ended.
bool ORVBrowser::wait_while_auto_split(LongRun& run)
{
    QTimer alarm;
    alarm.setSingleShot(true);
    alarm.start(idle_pass_ms);
    while (run.alive() && m_auto_split && alarm.isActive())
        process_events_of_run(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    return run.alive();
}

void ORVBrowser::manualSplit(string doubt, set<string> ps, int x, int y, int z)
{
    BusyRun run(*this);
    curation::manualSplit(std::move(doubt), std::move(ps), x, y, z);
    if (run.alive())
        finish();
}
