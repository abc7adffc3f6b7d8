// mask_answer.h - what roimaker answers: the number of regions; for each a line "region n pixels p" and a
// line "n x y outline".
#pragma once
#include "mask_input.h"

#include <cstddef>
#include <string>

constexpr std::size_t max_answer = 60000;    // bytes: fits into a pipe

struct mask_answer {
    std::string text;
    std::size_t left_out = 0;    // of the smallest regions, for which there was no room
};

[[nodiscard]] mask_answer answer_to(const mask& m);
