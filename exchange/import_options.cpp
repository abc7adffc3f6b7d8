#include "import_options.h"

#include "number_texts.h"

#include <algorithm>
#include <cmath>

namespace {

bool read_range(const std::string& text, std::optional<index_range>& range)
{
    const auto ends = numbers_in<int>(text, ':');
    if (ends.size() != 2 || ends[0] < 0 || ends[1] < ends[0])
        return false;
    range = index_range{ends[0], ends[1]};
    return true;
}

bool read_crop(const std::string& text, std::optional<image_crop>& crop)
{
    const auto n = numbers_in<int>(text, ',');
    constexpr int most = 65535;
    if (n.size() != 4 || n[0] < 0 || n[1] < 0 || n[2] < 1 || n[3] < 1 || *std::ranges::max_element(n) > most)
        return false;
    crop = image_crop{n[0], n[1], n[2], n[3]};
    return true;
}

bool read_grey(const std::string& text, std::optional<grey_range>& range)
{
    if (text == "auto")
        return true;
    const auto ends = numbers_in<double>(text, ':');
    if (ends.size() != 2 || !(ends[0] < ends[1]))
        return false;
    range = grey_range{ends[0], ends[1]};
    return true;
}

bool read_bin(const std::string& text, int& bin)
{
    const auto n = numbers_in<int>(text, ',');
    if (n.size() != 1 || n[0] < 1 || n[0] > 1000)
        return false;
    bin = n[0];
    return true;
}

bool read_positive(const std::string& text, double& value)
{
    const auto n = numbers_in<double>(text, ',');
    if (n.size() != 1 || !(n[0] > 0) || !std::isfinite(n[0]))
        return false;
    value = n[0];
    return true;
}

constexpr import_option options[] = {
    {"range", [](const std::string& text, import_request& r) { return read_grey(text, r.range); }},
    {"bin", [](const std::string& text, import_request& r) { return read_bin(text, r.window.bin); }},
    {"crop", [](const std::string& text, import_request& r) { return read_crop(text, r.window.crop); }},
    {"times", [](const std::string& text, import_request& r) { return read_range(text, r.window.times); }},
    {"planes", [](const std::string& text, import_request& r) { return read_range(text, r.window.planes); }},
    {"pixel",
     [](const std::string& text, import_request& r) { return read_positive(text, r.info.scale.pixel_um); }},
    {"plane",
     [](const std::string& text, import_request& r) { return read_positive(text, r.info.scale.plane_um); }},
    {"interval",
     [](const std::string& text, import_request& r) {
         double interval = 0;
         const bool is_read = read_positive(text, interval);
         if (is_read)
             r.info.interval_s = interval;
         return is_read;
     }},
};

}    // namespace

std::span<const import_option> import_options() { return options; }
