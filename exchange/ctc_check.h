// ctc_check.h - whether masks and their table of tracks fit together.
#pragma once
#include "run_callbacks.h"

#include <string>

// The rules of the tracking challenges: the table is sound (track_table.h), there is a mask for every time
// point from 0 to the last, all of one size and of so many planes, and a label is in a mask exactly when its
// track says so. `prefix` is "mask" or "man_track". Otherwise refused, after one line on standard error.
[[nodiscard]] outcome check_ctc(const std::string& folder, const std::string& prefix,
                                const std::string& table, const run_callbacks& callbacks = {});
