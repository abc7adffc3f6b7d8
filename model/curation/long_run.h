// long_run.h - one long operation, which lets whatever waits go on while it works.
//
// The handlers that run then may do anything a person can do: open another recording, close the
// window, remove ROIs. A run asks alive() after each process_events() and ends without touching the
// recording once that is false. What it holds of the recording across process_events() are copies,
// or is looked up again when roidb_plus::revision() has changed. Rasters stay readable until the
// outermost run ends or reaches a checkpoint().
#pragma once
#include "run_state.h"

#include <memory>

class LongRun {
public:
    explicit LongRun(curation& model);
    ~LongRun();
    LongRun(const LongRun&) = delete;
    LongRun& operator=(const LongRun&) = delete;

    // True iff the curation and the recording of this run are still open.
    [[nodiscard]] bool alive() const noexcept;

    // Lets whatever waits go on, then answers alive().
    [[nodiscard]] bool process_events();

    // The same for the small steps of an operation. While nothing happens it looks for events at fewer
    // and fewer of them, soon once in hundreds; what does happen is noticed hardly later, and then it
    // looks more often again. A step may be as long as several.
    [[nodiscard]] bool poll_events(int steps = 1);

    // Frees the rasters that have left the cache, when no other run may hold one.
    // REQUIRES: this run holds no raster
    void checkpoint();

private:
    bool let_others_go_on();    // true iff anything did

    std::shared_ptr<run_state> _state;
    unsigned long _recording;
};
