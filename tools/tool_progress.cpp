#include "tool_progress.h"

#include <iostream>
#include <unistd.h>

tool_progress::tool_progress() : _is_terminal(::isatty(STDERR_FILENO) == 1) {}

tool_progress::~tool_progress()
{
    if (_shown >= 0)
        std::cerr << "\r     \r" << std::flush;
}

run_callbacks tool_progress::callbacks()
{
    if (!_is_terminal)
        return {};
    return {[this](int done, int total) {
                const int percent = total > 0 ? static_cast<int>(100LL * done / total) : 100;
                if (percent != _shown)
                    std::cerr << '\r' << percent << " %" << std::flush;
                _shown = percent;
            },
            {}};
}
