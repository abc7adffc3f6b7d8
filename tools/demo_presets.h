// demo_presets.h - kinds of recordings by name, from easy to hard.
//
//   demo     nuclei that keep apart, mostly: what the program is shown with
//   crowded  nuclei that touch on all sides, tilted, with uneven outlines, and move by up to a radius
//   packed   as many as there is space for
//   noisy    crowded, and a detector that misses many outlines and finds many that are none
#pragma once
#include "demo_embryo.h"

#include <string_view>

// Sets everything but the name and the seed. False, and the options as they were, when there is no such
// preset.
[[nodiscard]] bool apply_preset(std::string_view preset, demo_options& options);
