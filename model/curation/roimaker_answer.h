// roimaker_answer.h - what roimaker answers to a mask.
//
// One line on the number of ROIs; for each a line that is thrown away and a line "word x y outline".
#pragma once
#include "ORV_roi.h"

#include <cstdio>
#include <list>

// The announced ROIs, as far as there are lines for them: focal plane 0, time point 0. Nothing is checked:
// from the first word that is no number on, positions are 0 and outlines empty.
[[nodiscard]] std::list<roi> read_answer(std::FILE* fp);
