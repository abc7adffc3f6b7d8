#include "image_stack.h"

#include "error_line.h"

#include <algorithm>
#include <concepts>
#include <utility>

namespace {

constexpr int last_place = 999;    // in x, y, planes and time points: what keys have room for

bool refuse(const std::string& where, const std::string& why)
{
    error_line(where, ": ", why);
    return false;
}

bool say(const std::string& line)
{
    error_line(line);
    return false;
}

std::string size_text(int width, int height)
{
    return std::to_string(width) + " x " + std::to_string(height) + " pixels";
}

template <class Value>
void crop(image_page<Value>& page, const image_crop& to)
{
    std::vector<Value> pixels;
    pixels.reserve(static_cast<std::size_t>(to.width) * to.height);
    for (int y = to.y; y < to.y + to.height; ++y) {
        const auto row = page.pixels.begin() + static_cast<std::ptrdiff_t>(y) * page.width + to.x;
        pixels.insert(pixels.end(), row, row + to.width);
    }
    page = {to.width, to.height, std::move(pixels)};
}

float value_of(std::vector<float>& block)
{
    double sum = 0;
    for (const float v : block)
        sum += v;
    return static_cast<float>(sum / static_cast<double>(block.size()));
}

// Of labels as frequent, the smallest.
template <std::unsigned_integral Label>
Label value_of(std::vector<Label>& block)
{
    std::ranges::sort(block);
    Label best = block.front();
    std::size_t most = 0;
    for (auto first = block.begin(); first != block.end();) {
        const auto last = std::upper_bound(first, block.end(), *first);
        if (const auto count = static_cast<std::size_t>(last - first); count > most) {
            most = count;
            best = *first;
        }
        first = last;
    }
    return best;
}

// Blocks that the right or the lower border cuts are left out.
template <class Value>
void bin(image_page<Value>& page, int size)
{
    image_page<Value> binned{page.width / size, page.height / size};
    binned.pixels.reserve(static_cast<std::size_t>(binned.width) * binned.height);
    std::vector<Value> block;
    for (int y = 0; y < binned.height; ++y)
        for (int x = 0; x < binned.width; ++x) {
            block.clear();
            for (int row = 0; row < size; ++row) {
                const auto first = page.pixels.begin() +
                                   (static_cast<std::ptrdiff_t>(y) * size + row) * page.width +
                                   static_cast<std::ptrdiff_t>(x) * size;
                block.insert(block.end(), first, first + size);
            }
            binned.pixels.push_back(value_of(block));
        }
    page = std::move(binned);
}

}    // namespace

image_stack::image_stack(file_series series, reading_window window)
    : _series(std::move(series)), _window(window)
{
}

bool image_stack::open()
{
    const int origin = _window.times ? _window.times->first : 0;
    for (series_file& file : _series.files) {
        if (_window.times && !_window.times->contains(file.t))
            continue;
        const int t = file.t - origin;
        if (t > last_place)
            return refuse(file.path, "time points go to 999: use --times");
        if (_times.empty() || _times.back() != t) {
            _times.push_back(t);
            _files.emplace_back();
        }
        _files.back().push_back(std::move(file));
    }
    return !_times.empty() || refuse(_series.folder, "no file within --times");
}

bool image_stack::is_of_size(const std::string& path, int width, int height)
{
    if (_file_width > 0)
        return (width == _file_width && height == _file_height) ||
               refuse(path, "is " + size_text(width, height) + ", those before are " +
                                size_text(_file_width, _file_height));
    _file_width = width;
    _file_height = height;
    const image_crop part = _window.crop.value_or(image_crop{0, 0, width, height});
    if (part.x + part.width > width || part.y + part.height > height)
        return refuse(path, "is " + size_text(width, height) + ": --crop goes beyond");
    _width = part.width / _window.bin;
    _height = part.height / _window.bin;
    if (_width == 0 || _height == 0)
        return refuse(path, "nothing is left: --bin is larger than the image");
    if (_window.is_limited && std::max(_width, _height) - 1 > last_place)
        return refuse(path,
                      "is " + size_text(_width, _height) + ", positions go to 999: use --crop or --bin");
    return true;
}

bool image_stack::has_planes(const std::string& path, std::vector<int> planes)
{
    if (planes.empty())
        return refuse(path, "no plane within --planes");
    if (_planes.empty())
        _planes = std::move(planes);
    else if (planes != _planes)
        return refuse(path, "has other focal planes than the time points before");
    return true;
}

// Leaves of the page what is asked for.
template <class Value>
bool image_stack::cut_out(const std::string& path, image_page<Value>& page)
{
    if (!is_of_size(path, page.width, page.height))
        return false;
    if (_window.crop)
        crop(page, *_window.crop);
    if (_window.bin > 1)
        bin(page, _window.bin);
    return true;
}

template <class Page>
bool image_stack::give(const std::string& path, int z, Page& page, const plane_taker<Page>& take)
{
    bool is_sound = false;
    if constexpr (std::is_same_v<Page, label_page>)
        is_sound = std::visit([&](auto& labels) { return cut_out(path, labels); }, page);
    else
        is_sound = cut_out(path, page);
    return is_sound && take(z, page);
}

// The pages of a file are planes, from 0.
template <class Page>
bool image_stack::read_pages(const std::string& path, const plane_taker<Page>& take, std::vector<int>& planes)
{
    tiff_reader file(path);
    Page page;
    for (int z = 0; is_wanted_plane(z) ? file.next(page) : file.skip(); ++z) {
        if (!is_wanted_plane(z))
            continue;
        _is_wide = file.is_wide();
        planes.push_back(z - plane_origin());
        if (planes.back() > last_place)
            return refuse(path, "focal planes go to 999: use --planes");
        if (!give(path, planes.back(), page, take))
            return false;
    }
    return file.fault().empty() || say(file.fault());
}

template <class Page>
bool image_stack::read_single(const series_file& file, const plane_taker<Page>& take,
                              std::vector<int>& planes)
{
    if (!is_wanted_plane(file.z))
        return true;
    if (file.z - plane_origin() > last_place)
        return refuse(file.path, "focal planes go to 999: use --planes");
    tiff_reader reader(file.path);
    Page page;
    if (!reader.next(page))
        return say(reader.fault());
    _is_wide = reader.is_wide();
    planes.push_back(file.z - plane_origin());
    if (!give(file.path, planes.back(), page, take))
        return false;
    if (reader.skip())
        return refuse(file.path, "has more than one page, and its name the number of a plane");
    return reader.fault().empty() || say(reader.fault());
}

template <class Page>
bool image_stack::read_planes(std::size_t i, const plane_taker<Page>& take)
{
    std::vector<int> planes;
    for (const series_file& file : _files[i])
        if (_series.has_plane_numbers ? !read_single(file, take, planes)
                                      : !read_pages(file.path, take, planes))
            return false;
    return has_planes(_files[i].front().path, std::move(planes));
}

bool image_stack::read(std::size_t i, const plane_taker<label_page>& take) { return read_planes(i, take); }

bool image_stack::read(std::size_t i, const plane_taker<grey_page>& take) { return read_planes(i, take); }
