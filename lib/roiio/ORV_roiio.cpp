#include "ORV_roiio.h"

#include <algorithm>
#include <sstream>
#include <string_view>
#include <utility>

namespace {

constexpr std::size_t field_width = 3;

bool is_digit(char c) { return c >= '0' && c <= '9'; }

bool are_digits(std::string_view text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), is_digit);
}

bool is_blank(const std::string& line) { return line.find_first_not_of(" \t\v\f\r") == std::string::npos; }

}    // namespace

void iroifstream::open(const std::string& name)
{
    filename = name;
    std::ifstream::open(name);
    if (!name2tz(name, _t, _z))
        setstate(failbit);
}

void iroifstream::seek_roi()
{
    while (good()) {
        const pos_type line_start = tellg();
        std::string line;
        std::getline(*this, line);
        if (fail() || line.starts_with('#') || is_blank(line))
            continue;
        seekg(line_start);    // also clears the end that a last line without line end has met
        return;
    }
}

iroifstream& iroifstream::operator>>(roi& r)
{
    std::string line;
    while (std::getline(*this, line) && is_blank(line)) {
    }
    std::istringstream words(line);
    words.imbue(std::locale::classic());    // 1.234 is no number, wherever it is read
    int x = 0;
    int y = 0;
    std::string outline;
    if (fail() || !(words >> x >> y >> outline)) {
        setstate(failbit);
        return *this;
    }
    r = roi(x, y, _z, _t, std::move(outline));
    return *this;
}

bool iroifstream::name2tz(const std::string& name, int& t, int& z)
{
    const std::string_view base = std::string_view(name).substr(name.rfind('/') + 1);
    // The extension may hold a '-' of its own: the last one between two numbers counts.
    for (std::size_t end = base.size(); end > field_width;) {
        const std::size_t dash = base.rfind('-', end - 1);
        if (dash == std::string_view::npos || dash < field_width)
            return false;
        const std::string_view time = base.substr(dash - field_width, field_width);
        const std::string_view plane = base.substr(dash + 1, base.find('.', dash) - dash - 1);
        if (are_digits(time) && are_digits(plane) && plane.size() <= 2 * field_width) {
            t = std::stoi(std::string(time));
            z = std::stoi(std::string(plane));
            return true;
        }
        end = dash;
    }
    return false;
}
