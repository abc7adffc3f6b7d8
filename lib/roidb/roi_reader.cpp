#include "roi_reader.h"

#include "error_line.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace {

constexpr bool is_space(int c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool is_digit(int c) noexcept { return c >= '0' && c <= '9'; }

}    // namespace

bool roi_reader::skip_space()
{
    int c = _file.peek();
    for (; is_space(c); c = _file.peek())
        _file.take();
    return c >= 0;
}

bool roi_reader::read_word(std::string& word)
{
    if (!skip_space())
        return false;
    word.clear();
    while (true) {
        const std::string_view rest = _file.at_hand();
        const auto end = std::find_if(rest.begin(), rest.end(), [](unsigned char c) { return is_space(c); });
        const auto length = static_cast<std::size_t>(end - rest.begin());
        word.append(rest.substr(0, length));
        _file.take(length);
        if (length < rest.size() || rest.empty())
            return true;
    }
}

bool roi_reader::read_int(int& value)
{
    using limits = std::numeric_limits<int>;
    if (!skip_space())
        return false;
    const int sign = _file.peek();
    if (sign == '+' || sign == '-')
        _file.take();
    const long long limit = sign == '-' ? -static_cast<long long>(limits::min()) : limits::max();
    long long magnitude = 0;
    bool any = false;
    for (int c = _file.peek(); is_digit(c); c = _file.peek()) {
        magnitude = std::min(magnitude * 10 + (c - '0'), limit + 1);
        any = true;
        _file.take();
    }
    if (!any || magnitude > limit)
        return false;
    value = static_cast<int>(sign == '-' ? -magnitude : magnitude);
    return true;
}

bool roi_reader::read_record(roi& r)
{
    int x = 0;
    int y = 0;
    int z = 0;
    int t = 0;
    std::string outline;
    if (!read_int(x) || !read_int(y) || !read_int(z) || !read_int(t) || !read_word(outline))
        return false;
    r = roi(x, y, z, t, std::move(outline));
    return true;
}

bool read_roi_file(const std::string& filename, std::string& name, const std::function<void(roi)>& enter)
{
    roi_reader reader(filename);
    if (!reader.is_open()) {
        error_line("roidb: Cannot open ", filename);
        return false;
    }
    if (!reader.read_word(name))
        return true;
    for (roi r; reader.read_record(r);)
        enter(std::move(r));
    return true;
}
