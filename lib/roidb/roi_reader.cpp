#include "roi_reader.h"

#include "error_line.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace {

constexpr bool is_digit(int c) noexcept { return c >= '0' && c <= '9'; }

}    // namespace

bool is_word(std::string_view text) noexcept
{
    return !text.empty() && std::none_of(text.begin(), text.end(), [](char c) { return is_space(c); });
}

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

roi_file::roi_file(const std::string& filename)
{
    roi_reader reader(filename);
    was_opened = reader.is_open();
    std::string word;
    if (!was_opened)
        fault = "roidb: Cannot open " + filename;
    else if (reader.read_word(word))
        name = std::move(word);
    for (roi r; reader.read_record(r);)
        rois.push_back(std::move(r));
    if (was_opened && reader.failed())
        fault = reader.failure();
}

bool read_roi_file(const std::string& filename, std::string& name, const std::function<void(roi)>& enter)
{
    roi_file file(filename);
    if (!file.fault.empty()) {
        error_line(file.fault);
        return false;
    }
    name = std::move(file.name).value_or(name);
    for (roi& r : file.rois)
        enter(std::move(r));
    return true;
}
