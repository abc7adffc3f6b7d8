#include "ORV_outline.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstddef>
#include <utility>

namespace {

// The steps '0' to '3' turn left one after the other: up, left, down, right.
constexpr int down_step = 2;
constexpr std::size_t usual_steps = 128;    // around a nucleus
constexpr pos2i steps[] = {{0, -1}, {-1, 0}, {0, 1}, {1, 0}};

// The four pixels around a vertex as bits. A vertex has the coordinates of the pixel that it is the top-left
// corner of.
enum around : unsigned { upper_left = 1, upper_right = 2, lower_left = 4, lower_right = 8 };

// Seen from a vertex in the direction of each step: the pixel ahead to the left and the one ahead to the
// right.
constexpr around ahead_left[] = {upper_left, lower_left, lower_right, upper_right};
constexpr around ahead_right[] = {upper_right, upper_left, lower_left, lower_right};

// The next step after each step, by the pixels around the vertex that are of the region. The left turn comes
// first: where two pixels touch only at this corner, the walk stays with the one it came along.
using step_table = std::array<std::array<int, 16>, 4>;
constexpr step_table make_step_table()
{
    step_table next{};
    for (int step = 0; step < 4; ++step)
        for (unsigned inside = 0; inside < 16; ++inside)
            next[step][inside] = !(inside & ahead_left[step])    ? (step + 1) % 4
                                 : !(inside & ahead_right[step]) ? step
                                                                 : (step + 3) % 4;
    return next;
}
constexpr step_table next_step = make_step_table();

// Which pixels are of the region that is walked: of a mask all but 0, of labels those of its start.
bool is_same(unsigned char pixel, unsigned char) { return pixel != 0; }
bool is_same(std::uint32_t pixel, std::uint32_t label) { return pixel == label; }
bool is_same(std::uint16_t pixel, std::uint16_t label) { return pixel == label; }

template <class Pixel>
class region_walker {
public:
    // The pixels are those that are left: of a region that was walked they become 0.
    region_walker(std::span<Pixel> pixels, int width, int height)
        : _left(pixels), _width(width), _height(height)
    {
    }

    // REQUIRES: start is the topmost, then leftmost pixel of its region, not visited yet
    [[nodiscard]] outlined_region region_at(pos2i start)
    {
        _own = _left[index(start.x(), start.y())];
        std::string chain = walk(start);    // while its pixels are there
        const int pixels = visit_region(start);
        return {start, std::move(chain), pixels};
    }

    // From x on, the first column of row y that is neither background nor visited, or the width.
    [[nodiscard]] int next_unvisited(int x, int y) const noexcept
    {
        const Pixel* const row = &_left[index(0, y)];
        for (; x + empty_block <= _width; x += empty_block) {
            Pixel any = 0;
            for (int i = 0; i < empty_block; ++i)
                any = static_cast<Pixel>(any | row[x + i]);
            if (any)
                break;
        }
        while (x < _width && !row[x])
            ++x;
        return x;
    }

private:
    static constexpr int block = 16;          // pixels that are looked at together
    static constexpr int empty_block = 64;    // the same where most are background

    // How many pixels of a block are of the region and not visited. (All of one type, for the vector
    // registers.)
    [[nodiscard]] int fresh_pixels(const Pixel* pixels) const noexcept
    {
        Pixel count = 0;
        for (int i = 0; i < block; ++i)
            count = static_cast<Pixel>(count + static_cast<Pixel>(is_same(pixels[i], _own)));
        return static_cast<int>(count);
    }

    [[nodiscard]] bool is_fresh(int x, int y) const noexcept { return is_same(_left[index(x, y)], _own); }

    [[nodiscard]] std::size_t index(int x, int y) const noexcept
    {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(_width) + static_cast<std::size_t>(x);
    }

    [[nodiscard]] bool contains(int x, int y) const noexcept
    {
        return x >= 0 && y >= 0 && x < _width && y < _height && is_fresh(x, y);
    }

    // The pixels around a vertex that are of the region, as bits.
    [[nodiscard]] unsigned inside_around(int x, int y) const noexcept
    {
        if (x <= 0 || y <= 0 || x >= _width || y >= _height)
            return upper_left * contains(x - 1, y - 1) + upper_right * contains(x, y - 1) +
                   lower_left * contains(x - 1, y) + lower_right * contains(x, y);
        const Pixel* const upper = &_left[index(x - 1, y - 1)];
        const Pixel* const lower = upper + _width;
        return upper_left * is_same(upper[0], _own) + upper_right * is_same(upper[1], _own) +
               lower_left * is_same(lower[0], _own) + lower_right * is_same(lower[1], _own);
    }

    // Marks the whole region, run by run; its number of pixels.
    int visit_region(pos2i start)
    {
        int pixels = 0;
        _seeds.assign(1, start);
        while (!_seeds.empty()) {
            const pos2i seed = _seeds.back();
            _seeds.pop_back();
            if (!is_fresh(seed.x(), seed.y()))
                continue;
            pixels += visit_run(seed);
        }
        return pixels;
    }

    int visit_run(pos2i seed)
    {
        const int y = seed.y();
        int left = seed.x();
        while (left > 0 && is_fresh(left - 1, y))
            --left;
        int right = left;    // one past the run
        while (right + block <= _width && fresh_pixels(&_left[index(right, y)]) == block)
            right += block;
        while (right < _width && is_fresh(right, y))
            ++right;
        std::fill_n(&_left[index(left, y)], right - left, Pixel{0});
        if (y > 0)
            seed_runs(left, right, y - 1);
        if (y + 1 < _height)
            seed_runs(left, right, y + 1);
        return right - left;
    }

    // Remembers the first pixel of every unvisited run of row y between left and right.
    void seed_runs(int left, int right, int y)
    {
        const Pixel* const row = &_left[index(0, y)];
        bool in_run = false;
        for (int x = left; x < right; ++x) {
            if (x + block <= right) {
                const int fresh = fresh_pixels(row + x);
                if (fresh == 0 || (fresh == block && in_run)) {    // nothing begins in it
                    in_run = fresh == block;
                    x += block - 1;
                    continue;
                }
            }
            const bool fresh = is_same(row[x], _own);
            if (fresh && !in_run)
                _seeds.emplace_back(x, y);
            in_run = fresh;
        }
    }

    // Around the region of the pixel start, from that pixel's top-left corner. No
    // other pixel of the region has that corner, so the walk meets it only at its end.
    [[nodiscard]] std::string walk(pos2i start) const
    {
        std::string chain;
        chain.reserve(usual_steps);
        int x = start.x();
        int y = start.y();
        int step = down_step;
        do {
            chain += static_cast<char>('0' + step);
            x += steps[step].x();
            y += steps[step].y();
            step = next_step[step][inside_around(x, y)];
        } while (x != start.x() || y != start.y());
        return chain;
    }

    Pixel _own = 0;    // of the region that is walked
    std::span<Pixel> _left;
    std::vector<pos2i> _seeds;
    int _width;
    int _height;
};

// Gives each region to `take`, with its label.
template <class Pixel, class Take>
void walk_regions(std::span<Pixel> pixels, int width, int height, Take take)
{
    assert(width >= 0 && height >= 0);
    assert(pixels.size() == static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    region_walker<Pixel> walker(pixels, width, height);
    for (int y = 0; y < height && width > 0; ++y)
        for (int x = walker.next_unvisited(0, y); x < width; x = walker.next_unvisited(x, y)) {
            const Pixel label = pixels[static_cast<std::size_t>(y) * width + x];
            take(walker.region_at({x, y}), label);
        }
}

template <class Label>
std::vector<labelled_region> regions_of(std::span<Label> labels, int width, int height)
{
    std::vector<labelled_region> regions;
    walk_regions(labels, width, height, [&](outlined_region region, Label label) {
        regions.push_back({std::move(region), label});
    });
    return regions;
}

}    // namespace

std::vector<outlined_region> outline_regions(std::span<const unsigned char> mask, int width, int height)
{
    std::vector<outlined_region> regions;
    std::vector<unsigned char> left(mask.begin(), mask.end());
    walk_regions<unsigned char>(left, width, height, [&](outlined_region region, unsigned char) {
        regions.push_back(std::move(region));
    });
    return regions;
}

std::vector<labelled_region> outline_labels(std::span<std::uint32_t> labels, int width, int height)
{
    return regions_of(labels, width, height);
}

std::vector<labelled_region> outline_labels(std::span<std::uint16_t> labels, int width, int height)
{
    return regions_of(labels, width, height);
}

long long enclosed_pixels(const std::string& chain) noexcept
{
    long long x = 0;
    long long area = 0;
    for (const char c : chain) {
        switch (c) {
        case '0':
            area += x;
            break;
        case '1':
            --x;
            break;
        case '2':
            area -= x;
            break;
        case '3':
            ++x;
            break;
        default:
            break;
        }
    }
    return area;
}

bool is_closed(const std::string& chain) noexcept
{
    const auto count = [&chain](char step) { return std::count(chain.begin(), chain.end(), step); };
    return count('0') == count('2') && count('1') == count('3');
}

// Every step down has the pixels to its right inside, every step up has them outside: summed from the
// left, the steps of a row tell how often each of its pixels is enclosed.
bool fill_outline(pos2i start, const std::string& chain, std::span<unsigned char> mask, int width, int height)
{
    if (!is_closed(chain))
        return false;
    const auto columns = static_cast<std::size_t>(width) + 1;
    std::vector<int> crossings(columns * static_cast<std::size_t>(height));
    const auto crossings_at = [&](int x, int y) -> int& {
        return crossings[static_cast<std::size_t>(y) * columns + static_cast<std::size_t>(x)];
    };
    int x = start.x();
    int y = start.y();
    const auto in_mask = [&] { return x >= 0 && y >= 0 && x <= width && y <= height; };
    if (!in_mask())
        return false;
    for (const char c : chain) {
        const int from_y = y;
        x += (c == '3') - (c == '1');
        y += (c == '2') - (c == '0');
        if (!in_mask())
            return false;
        if (y != from_y)
            crossings_at(x, std::min(y, from_y)) += y - from_y;
    }
    for (int row = 0; row < height; ++row) {
        int times = 0;
        for (int column = 0; column < width; ++column) {
            times += crossings_at(column, row);
            crossings_at(column, row) = times;
            if (times < 0 || times > 1)
                return false;
        }
    }
    for (std::size_t i = 0; i < mask.size(); ++i)
        if (crossings[i / static_cast<std::size_t>(width) * columns + i % static_cast<std::size_t>(width)] ==
            1)
            mask[i] = 1;
    return true;
}
