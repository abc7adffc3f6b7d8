#include "keygen.h"

#include "ORV_roidb.h"

#include <algorithm>
#include <cstdlib>

namespace {

int field(const std::string& key, std::size_t offset) { return std::atoi(key.substr(offset, 3).c_str()); }

}    // namespace

std::string digit3(int a) { return roidb::digit(a, 3); }

std::string keygen(pos4i p) { return roidb::keygen(p); }

pos4i decode(std::string key)
{
    const int t = field(key, 0);
    const int z = field(key, 3);
    const int x = field(key, 6);
    return {x, field(key, 9), z, t};
}

std::string time_key(int t) { return keygen(pos4i(0, 0, 0, t)); }

std::string end_of_time_point(int t)
{
    constexpr int last_time_point = 999;
    constexpr const char* after_all_digits = ":";
    return t < last_time_point ? time_key(t + 1) : after_all_digits;
}

bool is_roi_key(const std::string& key) noexcept
{
    constexpr std::size_t shortest = 12;
    return key.size() >= shortest &&
           std::all_of(key.begin(), key.end(), [](char c) { return (c >= '0' && c <= '9') || c == '-'; });
}

std::set<std::string> values_of(const std::multimap<std::string, std::string>& pairs, const std::string& key)
{
    std::set<std::string> values;
    const auto [first, last] = pairs.equal_range(key);
    for (auto entry = first; entry != last; ++entry)
        values.insert(entry->second);
    return values;
}
