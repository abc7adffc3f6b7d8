// run_callbacks.h - how long work tells how far it is, and asks whether to go on.
#pragma once
#include <functional>

// Both are called on the calling thread, a few times a second or more often. Without them: silent, to the
// end.
struct run_callbacks {
    std::function<void(int done, int total)> progress = {};
    std::function<bool()> carry_on = {};    // false: stop, with nothing written

    // Tells how far it is; true iff it goes on.
    [[nodiscard]] bool step(int done, int total) const
    {
        if (progress)
            progress(done, total);
        return !carry_on || carry_on();
    }
};

enum class outcome {
    done,
    stopped,    // carry_on() said so: nothing was written
    refused     // one line on standard error tells why: nothing was written
};
