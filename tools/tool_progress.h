// tool_progress.h - how far a command is, on standard error while that is a terminal.
#pragma once
#include "run_callbacks.h"

// Shows nothing elsewhere, and leaves no trace when the work is done.
class tool_progress {
public:
    tool_progress();
    ~tool_progress();
    tool_progress(const tool_progress&) = delete;
    tool_progress& operator=(const tool_progress&) = delete;

    // REQUIRES: this object outlives the callbacks
    [[nodiscard]] run_callbacks callbacks();

private:
    bool _is_terminal;
    int _shown = -1;    // per cent
};
