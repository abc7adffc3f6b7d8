// image_import.h - grey images of any depth as the 8-bit JPEG files of a recording.
#pragma once
#include "image_stack.h"
#include "import.h"

#include <filesystem>

// Writes ttt-zzz.jpg into the folder for every plane, grey levels by `range` or else by the percentiles 0.1
// and 99.9 of all pixels. The stack is read twice or, where values have more than 16 bits, three times.
// `total` steps are counted for all of it, from `done` on.
[[nodiscard]] outcome import_images(image_stack& images, const std::filesystem::path& folder,
                                    const std::optional<grey_range>& range, const run_callbacks& callbacks);
