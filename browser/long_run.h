// long_run.h - one long operation of the window, which lets pending events be processed while it works.
//
// The handlers that run then may do anything a person can do: open another recording, close the
// window, remove ROIs. A run asks alive() after each process_events() and ends without touching the
// recording once that is false. What it holds of the recording across process_events() are copies,
// or is looked up again when roidb_plus::revision() has changed. Rasters stay readable until the
// outermost run ends or reaches a checkpoint().
#pragma once
#include "orvbrowser.h"

#include <QPointer>

class LongRun {
public:
    explicit LongRun(ORVBrowser& window);
    ~LongRun();
    LongRun(const LongRun&) = delete;
    LongRun& operator=(const LongRun&) = delete;

    // True iff the window and the recording of this run are still open.
    [[nodiscard]] bool alive() const noexcept;

    // Lets pending events be processed, then answers alive().
    [[nodiscard]] bool process_events(QEventLoop::ProcessEventsFlags flags = QEventLoop::AllEvents);

    // The same for the small steps of an operation. While nothing happens it looks for events at fewer
    // and fewer of them, soon once in hundreds; what does happen is noticed hardly later, and then it
    // looks more often again. A step may be as long as several.
    [[nodiscard]] bool poll_events(int steps = 1);

    // Frees the rasters that have left the cache, when no other run may hold one.
    // REQUIRES: this run holds no raster
    void checkpoint();

protected:
    QPointer<ORVBrowser> _window;

private:
    unsigned long _recording;
};

// A run that a person waits for: the wait cursor is shown and the tracking buttons are disabled until
// the outermost such run ends.
class BusyRun : public LongRun {
public:
    explicit BusyRun(ORVBrowser& window);
    ~BusyRun();
};
