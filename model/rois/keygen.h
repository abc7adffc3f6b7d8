// keygen.h - ROI keys: the names that sets, maps and links give to ROIs.
//
// A key is the time point, the focal plane, x and y, each as at least three
// digits. decode() is the inverse of keygen() for values in 0..999.
#pragma once
#include "ORV_pos.h"

#include <map>
#include <set>
#include <string>
#include <utility>

// The decimal text of a in at least three characters, '0' on the left: 7 gives "007", -5 gives "0-5".
std::string digit3(int a);

std::string keygen(pos4i p);

// Cuts the key into fields of three characters; a field is read up to its first character that is no
// digit, and is 0 without any. Throws std::out_of_range when the key has less than nine characters.
pos4i decode(std::string key);

// True iff decode() can cut the key into fields and does not throw.
inline bool is_decodable(const std::string& key) noexcept { return key.size() >= 9; }

// True iff the key looks as keygen() makes them: at least twelve characters, all of them digits or
// signs. "N/A", which stands for no unit, does not.
bool is_roi_key(const std::string& key) noexcept;

// The key of time point t, which is not after any of its ROI keys.
std::string time_key(int t);

// Not before any ROI key of time point t, and after none of the next. Up to 999, where keys end, that
// is the key of the next time point.
std::string end_of_time_point(int t);

// The entries of an ordered set or map of ROI keys that lie at time point t: first and one past the last.
template <class Keys>
auto at_time_point(Keys& keys, int t)
{
    const std::string first = time_key(t);
    const std::string last = end_of_time_point(t);
    // Below 0 keys sort the other way round; such a range is empty.
    const auto begin = keys.lower_bound(first);
    return std::pair(begin, first < last ? keys.lower_bound(last) : begin);
}

// The distinct values of one key: the members of a unit, the parents of a child.
std::set<std::string> values_of(const std::multimap<std::string, std::string>& pairs, const std::string& key);
