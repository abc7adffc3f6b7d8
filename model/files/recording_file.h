// recording_file.h - what an ROI file does not tell about its recording: sizes, interval, focal planes.
//
// NAME.recording.json, beside NAME.roi, is one JSON object with the members "pixel_um", "plane_um",
// "interval_s" and "focal_planes" ([first, last]), each of which may be left out.
#pragma once
#include "physical_scale.h"

#include <optional>
#include <string>

struct plane_range {
    int first = 0;
    int last = 0;    // belongs to the range

    bool operator==(const plane_range&) const = default;
};

struct recording_info {
    physical_scale scale;
    std::optional<double> interval_s;    // from one time point to the next
    std::optional<plane_range> focal_planes;

    bool operator==(const recording_info&) const = default;
};

// "/a/b.roi" gives "/a/b.recording.json".
[[nodiscard]] std::string recording_file_of(const std::string& roi_file);

// What the file tells; the defaults when there is none. Also the defaults, after one line on standard error,
// when it cannot be read, or holds what is no size, no interval or no range of focal planes in 0 to 999.
[[nodiscard]] recording_info read_recording_file(const std::string& filename);

// The bytes of such a file. REQUIRES: sizes and interval are positive and finite
[[nodiscard]] std::string recording_text(const recording_info& info);

// Replaces the file at once. False after one line on standard error when that fails.
[[nodiscard]] bool write_recording_file(const std::string& filename, const recording_info& info);
