#include "long_run.h"

LongRun::LongRun(ORVBrowser& window) : _window(&window), _recording(window.m_recording) { ++window.m_runs; }

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

bool LongRun::process_events()
{
    if (!alive())
        return false;
    _window->processEvents();
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
}
