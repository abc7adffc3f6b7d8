#include "busy_run.h"

#include "keyboard_rules.h"

BusyRun::BusyRun(ORVBrowser& window) : LongRun(window), _window(&window)
{
    if (window.m_busy_runs++ > 0)
        return;
    window.setTrackingButtonsEnabled(false);
    window.setCursor(Qt::WaitCursor);
    window.announce_waiting();
}

BusyRun::~BusyRun()
{
    if (!_window || --_window->m_busy_runs > 0)
        return;
    _window->show_fitting_cursor();
    _window->setTrackingButtonsEnabled(_window->has_rois());
    // A disabled button hands the keyboard to another one: it belongs to the canvas.
    if (!is_field(_window->focusWidget()))
        _window->frame_canvas->setFocus();
    _window->announce_waiting();
}
