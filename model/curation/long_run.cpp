#include "long_run.h"

#include "curation.h"

#include <algorithm>

namespace {

constexpr int most_skipped = 512;    // steps between two looks for events: far less than a blink

}    // namespace

LongRun::LongRun(curation& model) : _state(model.m_run_state), _recording(model.m_recording)
{
    if (_state->runs++ == 0)
        _state->steps_between_looks = _state->steps_to_skip = 0;
}

LongRun::~LongRun()
{
    if (--_state->runs > 0 || !_state->model)
        return;
    _state->is_closing = false;
    _state->model->release_dropped_rasters();
}

bool LongRun::alive() const noexcept
{
    return _state->model && !_state->is_closing && _state->model->m_recording == _recording;
}

bool LongRun::process_events()
{
    if (!alive())
        return false;
    (void)let_others_go_on();
    return alive();
}

bool LongRun::poll_events(int steps)
{
    if (!alive())
        return false;
    if (_state->steps_to_skip > 0) {
        _state->steps_to_skip -= steps;
        return true;
    }
    const bool was_quiet = !let_others_go_on();
    _state->steps_between_looks = was_quiet ? std::min(2 * _state->steps_between_looks + 1, most_skipped) : 0;
    _state->steps_to_skip = _state->steps_between_looks;
    return alive();
}

// What was done so far can be kept first: whatever goes on now finds a state that could be left as it is.
bool LongRun::let_others_go_on()
{
    _state->model->keep_step_so_far();
    return _state->model->carry_on();
}

void LongRun::checkpoint()
{
    if (alive() && _state->runs == 1 && _state->model->m_q_roiimgdb)
        _state->model->m_q_roiimgdb->release_dropped();
}
