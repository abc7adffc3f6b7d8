#include "ORV_roiio.h"

#include "error_line.h"

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

// What a "-" in a file name may stand between. Base and extension may hold such pairs of their own: the
// one with three digits each, right before a '.', is meant; of equals the last.
struct place {
    enum { none, two_numbers, before_extension, as_written } rank = none;
    int t = 0;
    int z = 0;
};

place place_at(std::string_view base, std::size_t dash)
{
    if (dash < field_width)
        return {};
    const std::string_view time = base.substr(dash - field_width, field_width);
    const std::string_view after = base.substr(dash + 1);
    const std::string_view plane = after.substr(0, std::min(after.find('.'), after.size()));
    if (!are_digits(time) || !are_digits(plane) || plane.size() > 2 * field_width)
        return {};
    place found{place::two_numbers, std::stoi(std::string(time)), std::stoi(std::string(plane))};
    if (plane.size() == after.size())
        return found;
    const bool has_longer_time = dash > field_width && is_digit(base[dash - field_width - 1]);
    found.rank = has_longer_time || plane.size() != field_width ? place::before_extension : place::as_written;
    return found;
}

bool is_blank(const std::string& line) { return line.find_first_not_of(" \t\v\f\r") == std::string::npos; }

}    // namespace

void iroifstream::open(const std::string& name)
{
    filename = name;
    std::ifstream::open(name);
    const bool is_named = name2tz(name, _t, _z);
    if (peek(); bad() || !is_named)    // a folder opens, but does not read
        setstate(failbit);
    else if (is_open())
        clear();    // the end that an empty file has met
}

bool iroifstream::next_line(std::string& line)
{
    const bool was_good = good();
    if (std::getline(*this, line))
        return true;
    if (was_good && bad())    // to the caller this looks like the end of the file
        error_line(filename, ": cannot be read to its end");
    return false;
}

void iroifstream::seek_roi()
{
    while (good()) {
        const pos_type line_start = tellg();
        std::string line;
        if (!next_line(line) || line.starts_with('#') || is_blank(line))
            continue;
        seekg(line_start);    // also clears the end that a last line without line end has met
        return;
    }
}

iroifstream& iroifstream::operator>>(roi& r)
{
    std::string line;
    while (next_line(line) && is_blank(line)) {
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
    place found;
    for (std::size_t dash = base.rfind('-'); dash != std::string_view::npos && dash > 0;
         dash = base.rfind('-', dash - 1))
        if (const place candidate = place_at(base, dash); candidate.rank > found.rank)
            found = candidate;
    if (found.rank == place::none)
        return false;
    t = found.t;
    z = found.z;
    return true;
}
