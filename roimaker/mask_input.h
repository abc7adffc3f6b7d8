// mask_input.h - the pixel mask that roimaker reads: the width, the height, then one line of `width`
// digits for each row, '0' outside.
#pragma once
#include <cstdio>
#include <optional>
#include <vector>

constexpr int max_side = 4096;    // pixels

struct mask {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> pixels;    // row by row, 0 outside, 1 inside
};

// The mask; nothing when the input is none. Nothing beyond its last line is asked for.
[[nodiscard]] std::optional<mask> read_mask(std::FILE* in);
