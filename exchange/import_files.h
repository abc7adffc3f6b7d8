// import_files.h - an imported recording as files.
#pragma once
#include "ORV_roidb.h"
#include "import.h"
#include "lineage_file.h"

struct imported_recording {
    roidb rois;
    lineage units;
    recording_info info;
};

// False after one line on standard error: something has one of the names of the recording and is not to be
// replaced.
[[nodiscard]] bool is_free(const import_request& request);

// Writes the recording, with the images that were asked for: all or nothing. Images must have the size, the
// planes and the time points of the labels.
[[nodiscard]] outcome write_imported(const import_request& request, const imported_recording& made,
                                     const image_stack& labels, const run_callbacks& callbacks);
