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

// Of work that is a part of a whole: what it tells counts from `first` to `last`, parts of 1, of the whole.
// REQUIRES: `whole` outlives the answer
[[nodiscard]] inline run_callbacks part_of(const run_callbacks& whole, double first, double last)
{
    run_callbacks part{.progress = {}, .carry_on = whole.carry_on};
    if (whole.progress)
        part.progress = [&whole, first, last](int done, int total) {
            constexpr int steps = 1000;
            const double share = total > 0 ? static_cast<double>(done) / total : 1;
            whole.progress(static_cast<int>(steps * (first + (last - first) * share)), steps);
        };
    return part;
}

enum class outcome {
    done,
    stopped,    // carry_on() said so: nothing was written
    refused     // one line on standard error tells why: nothing was written
};
