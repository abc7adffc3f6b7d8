// keygen.h - ROI keys: the names that sets, maps and links give to ROIs.
//
// A key is the time point, the focal plane, x and y, each as at least three
// digits. decode() is the inverse of keygen() for values in 0..999.
#pragma once
#include "ORV_pos.h"

#include <string>

// The decimal text of a in at least three characters, '0' on the left: 7 gives "007", -5 gives "0-5".
std::string digit3(int a);

std::string keygen(pos4i p);

// Cuts the key into fields of three characters; a field is read up to its first character that is no
// digit, and is 0 without any. Throws std::out_of_range when the key has less than nine characters.
pos4i decode(std::string key);

// True iff decode() can read the key: at least twelve characters, all of them digits or signs. "N/A",
// which stands for no unit, is none.
bool is_roi_key(const std::string& key) noexcept;
