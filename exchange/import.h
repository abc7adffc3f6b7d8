// import.h - recordings made of the label images of other programs.
//
// "labels": a folder of label images, one file for each time point, whose pages are planes, or one for each
// time point and plane. Every label of a time point becomes a unit; there are no links. "ctc": a folder of
// the tracking challenges, masks and the table of their tracks, which become links, and gaps where a nucleus
// is not shown for a time.
#pragma once
#include "image_stack.h"
#include "loss_report.h"
#include "recording_file.h"
#include "run_callbacks.h"

#include <optional>
#include <string>
#include <vector>

enum class import_kind { labels, ctc };

// What becomes black and white.
struct grey_range {
    double low = 0;
    double high = 0;    // above low
};

struct import_request {
    import_kind kind = import_kind::labels;
    std::string source =
        {};    // a folder; for labels also one file; for ctc also what has one such folder in it
    std::string folder = {};                 // where the recording is to be, made when it is missing
    std::string name = {};                   // of the recording, one word that names files
    std::string images = {};                 // a folder of grey images that go with the labels, or empty
    std::optional<grey_range> range = {};    // without it: percentiles 0.1 and 99.9 of all images
    reading_window window = {};
    recording_info info = {};    // sizes of the files' pixels, before binning
    bool replaces = false;       // what has one of the names of the recording
};

struct import_report {
    std::size_t rois = 0;
    std::size_t units = 0;
    std::size_t links = 0;
    std::size_t gaps = 0;
    std::vector<std::string> notes = {};    // what is not as expected, a line each

    // The same by ROI or unit: "piece" and "hole" (label_units.h), "gap" (a nucleus that is not shown for
    // a time), "no_track" (a unit whose label is in no track).
    std::vector<loss> losses = {};
};

// Writes NAME.roi, NAME.lineage, NAME.recording.json and, with images, the folder NAME: all of them, or none,
// and then there is one line on standard error unless it was stopped.
[[nodiscard]] outcome import_recording(const import_request& request, import_report& report,
                                       const run_callbacks& callbacks = {});
