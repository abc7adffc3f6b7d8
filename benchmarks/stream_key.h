// stream_key.h - ROI keys made by string streams: what the benchmarks compare the key maker with.
#pragma once
#include "ORV_pos.h"

#include <iomanip>
#include <sstream>
#include <string>

inline std::string stream_digit3(int a)
{
    std::stringstream text;
    text << std::setw(3) << std::setfill('0') << a;
    std::string word;
    text >> word;
    return word;
}

inline std::string stream_key(pos4i p)
{
    return stream_digit3(p.t()) + stream_digit3(p.z()) + stream_digit3(p.x()) + stream_digit3(p.y());
}
