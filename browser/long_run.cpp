#include "long_run.h"

#include <algorithm>

namespace {

constexpr int most_skipped = 512;    // steps between two looks for events: far less than a blink

}    // namespace

LongRun::LongRun(ORVBrowser& window) : _window(&window), _recording(window.m_recording)
{
    if (window.m_runs++ == 0)
        window.m_steps_between_looks = window.m_steps_to_skip = 0;
}

LongRun::~LongRun()
{
    if (!_window || --_window->m_runs > 0)
        return;
    _window->m_closing = false;
    _window->release_dropped_rasters();
}

bool LongRun::alive() const noexcept
{
    return _window && !_window->m_closing && _window->m_recording == _recording;
}

bool LongRun::process_events(QEventLoop::ProcessEventsFlags flags)
{
    if (!alive())
        return false;
    _window->process_events_of_run(flags);
    return alive();
}

bool LongRun::poll_events(int steps)
{
    if (!alive())
        return false;
    if (_window->m_steps_to_skip > 0) {
        _window->m_steps_to_skip -= steps;
        return true;
    }
    const bool was_quiet = !_window->process_events_of_run(QEventLoop::AllEvents);
    if (!_window)
        return false;
    _window->m_steps_between_looks =
        was_quiet ? std::min(2 * _window->m_steps_between_looks + 1, most_skipped) : 0;
    _window->m_steps_to_skip = _window->m_steps_between_looks;
    return alive();
}

void LongRun::checkpoint()
{
    if (alive() && _window->m_runs == 1 && _window->m_q_roiimgdb)
        _window->m_q_roiimgdb->release_dropped();
}

BusyRun::BusyRun(ORVBrowser& window) : LongRun(window)
{
    if (window.m_busy_runs++ > 0)
        return;
    window.setTrackingButtonsEnabled(false);
    window.setCursor(Qt::WaitCursor);
}

BusyRun::~BusyRun()
{
    if (!_window || --_window->m_busy_runs > 0)
        return;
    _window->show_mode_cursor();
    _window->setTrackingButtonsEnabled(_window->isOpen());
    // A disabled button hands the keyboard to another one: it belongs to the canvas.
    if (!qobject_cast<QLineEdit*>(_window->focusWidget()))
        _window->frame_canvas->setFocus();
}
