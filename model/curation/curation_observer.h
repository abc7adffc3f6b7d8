// curation_observer.h - who hears of what changes in a curation.
#pragma once
#include <memory>
#include <vector>

class curation;

class edit_step;

class curation_observer {
public:
    virtual ~curation_observer() = default;

    // ROIs, units, links or marks have changed: called after each single change, so it must be quick.
    virtual void state_changed() {}

    // The open step has come to a state that could be kept, and goes on. Called often, so it must be quick.
    virtual void step_goes_on(const edit_step&) {}

    // A step has changed something and is complete. Who keeps it takes it.
    virtual void step_ended(edit_step&) {}

    // A step was undone, or done again.
    virtual void step_replayed(const edit_step&, bool /*forth*/) {}

    // Files beside the recording have been saved.
    virtual void work_saved() {}

    // What an earlier run of the program has left was found, taken up or declined.
    virtual void offers_changed() {}

    // A person begins to wait for a long operation, or need wait no longer.
    virtual void waiting_changed() {}

    // A recording is about to be opened or closed, and was.
    virtual void recording_changes() {}
    virtual void recording_changed() {}
};

using observer_list = std::vector<curation_observer*>;    // told in the order in which they came

// A place among the observers of a curation, for as long as it lives; the curation may go before.
class Observing {
public:
    Observing(curation& model, curation_observer& observer);
    ~Observing();
    Observing(const Observing&) = delete;
    Observing& operator=(const Observing&) = delete;

private:
    std::shared_ptr<observer_list> _observers;
    curation_observer* _observer;
};
