// recording_file.h - what an ROI file does not tell about its recording: sizes, interval, extent.
//
// NAME.recording.json, beside NAME.roi, is one JSON object with the members "pixel_um", "plane_um",
// "interval_s", "focal_planes" and "time_points" ([first, last]) and "image_size" ([width, height]), each of
// which may be left out. Others are kept as they are.
#pragma once
#include "physical_scale.h"

#include <optional>
#include <string>

struct key_range {
    int first = 0;
    int last = 0;    // belongs to the range

    bool operator==(const key_range&) const = default;
};

// Of a recording that does not tell its focal planes: as far as tracking looks.
constexpr key_range default_focal_planes{0, 55};

struct pixel_size {
    int width = 1;
    int height = 1;

    bool operator==(const pixel_size&) const = default;
};

struct recording_info {
    physical_scale scale;
    std::optional<double> interval_s = {};    // from one time point to the next
    std::optional<key_range> focal_planes = {};
    std::optional<key_range> time_points = {};
    std::optional<pixel_size> image_size = {};    // pixels
    std::string further = {};                     // members of other programs, a JSON object; "" without any

    bool operator==(const recording_info&) const = default;
};

// "/a/b.roi" gives "/a/b.recording.json", and so does "/a/b".
[[nodiscard]] std::string recording_file_of(const std::string& roi_file);

// What the file tells; the defaults when there is none. Also the defaults, after one line on standard error,
// when it cannot be read, or holds what is no size, no interval, or no range of 0 to 999.
[[nodiscard]] recording_info read_recording_file(const std::string& filename);

// Takes over what the text of such a file tells. False, and nothing changed, when anything in it is wrong.
[[nodiscard]] bool take_recording_text(const std::string& text, recording_info& info);

// The bytes of such a file. REQUIRES: sizes and interval are positive and finite
[[nodiscard]] std::string recording_text(const recording_info& info);

// Replaces the file at once. False after one line on standard error when that fails.
[[nodiscard]] bool write_recording_file(const std::string& filename, const recording_info& info);
