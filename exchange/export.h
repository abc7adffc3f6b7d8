// export.h - a curated recording as other programs read it, and what they will not find there.
//
//   ctc        masks and a table of tracks, as the tracking challenges keep their results:
//   NN_RES/maskTTT.tif, 16 bit, a
//              page a focal plane, and NN_RES/res_track.txt
//   geff       a graph with properties in a zarr folder, version 2, not compressed
//   trackmate  one XML file: spots and tracks
//   csv        units.csv, links.csv and columns.txt in a folder
//
// Kinds of loss: merge (all parents but the nearest), overlap (pixels that two units claim; the smaller
// outline keeps them), hidden (a unit all of whose pixels others claim, shown as one pixel beside them, or
// not at all), gap (a nucleus that is not shown for a time becomes a track of its own), many_children,
// outside (pixels outside the image), false_positive, no_unit (ROIs in no unit), beyond (ROIs that are not
// within 0 to 999), mark, name, dismissal, outlines.
#pragma once
#include "ORV_roidb.h"
#include "lineage_file.h"
#include "loss_report.h"
#include "recording_file.h"
#include "run_callbacks.h"

#include <set>
#include <string>

enum class export_format { ctc, geff, trackmate, csv };

struct export_request {
    const roidb& rois;
    const lineage& units;
    recording_info info = {};
    std::set<std::string> false_positives = {};    // ROIs

    // The folder of the recording's images; they tell how far it reaches where info does not. May be missing.
    std::string image_folder = {};

    // The file (trackmate) or folder that is made. For ctc, a name like 02_RES or 01_GT is that folder; any
    // other is the folder of a data set, in which the next free NN_RES is made.
    std::string target = {};

    // An export that is there already is replaced; a folder that holds anything else is not. A data set is
    // added to.
    bool replaces = false;
};

// Writes the target and, beside it, what it lacks as text, TARGET.losses.txt: both, or neither, and then
// there is one line on standard error unless it was stopped. What was written as ctc is read again and
// checked.
[[nodiscard]] outcome export_recording(export_format format, const export_request& request,
                                       loss_report& report, const run_callbacks& callbacks = {});
