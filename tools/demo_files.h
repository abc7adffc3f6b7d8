// demo_files.h - a synthetic recording, made in memory and written as files.
#pragma once
#include "demo_detections.h"

#include <functional>

struct demo_recording {
    demo_options options;
    demo_embryo embryo;
    std::vector<demo_detection> detections;
};

// The same recording for the same options.
[[nodiscard]] demo_recording make_recording(const demo_options& options);

enum class demo_images { written, left_out };

// Called now and then, from the calling thread, with the images written so far and their number.
using demo_progress = std::function<void(int done, int total)>;

// Writes <name>/ttt-zzz.jpg, <name>.truth and then <name>.roi into the folder, which is made when it is not
// there. False after one line on standard error at the first file that cannot be written.
bool write_recording(const demo_recording& recording, const std::string& folder,
                     demo_images images = demo_images::written, const demo_progress& progress = {});
