// file_series.h - the TIFF files of a folder as time points and focal planes, by the numbers in their names.
//
// Names are alike but for one number, the time point, or two, the time point and the focal plane: the one
// behind a z is the plane, the one behind a t the time point, else the time point comes first.
#pragma once
#include <optional>
#include <string>
#include <vector>

struct series_file {
    int t = 0;
    int z = 0;    // 0 where the pages of a file are the planes
    std::string path;
};

struct file_series {
    std::string folder;
    std::vector<series_file> files;    // in ascending order of (t, z), no two alike
    bool has_plane_numbers = false;    // each file is one plane
};

// Files with other endings than .tif and .tiff do not count. `source` may also be one file, time point 0.
// Nothing, after one line on standard error, when there is no such file or the names do not tell which is
// which.
[[nodiscard]] std::optional<file_series> find_series(const std::string& source);

// The files of a folder that are named <prefix>NUMBER.tif or .tiff, whatever the case; each is one time
// point. Others are left alone. Nothing, after one line, when there is none or two have one number.
[[nodiscard]] std::optional<file_series> find_frames(const std::string& folder, const std::string& prefix);
