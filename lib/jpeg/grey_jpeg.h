// grey_jpeg.h - grey images as JPEG files.
#pragma once
#include <optional>
#include <span>
#include <string>
#include <vector>

// The image as a JPEG file's bytes: width x height grey levels, row by row.
[[nodiscard]] std::vector<unsigned char> grey_jpeg(const std::vector<unsigned char>& pixels, int width,
                                                   int height, int quality);

struct jpeg_size {
    int width = 0;
    int height = 0;

    bool operator==(const jpeg_size&) const = default;
};

// What the file says about its size, without decoding it; nothing when it is no JPEG file. Says nothing.
[[nodiscard]] std::optional<jpeg_size> size_of_jpeg(const std::string& filename);
