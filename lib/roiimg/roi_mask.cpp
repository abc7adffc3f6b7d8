#include "roi_mask.h"

#include "error_line.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <optional>
#include <utility>

namespace {

constexpr unsigned char outline_mark = 2;

int width_of(const pixel_box& box) { return box.right - box.left + 1; }

int height_of(const pixel_box& box) { return box.bottom - box.top + 1; }

bool is_step(char c) { return c >= '0' && c <= '3'; }

// The vertices of one step, which starts at (x, y) and goes on from there. At a change of direction an
// extra vertex makes a corner, so that the polygon follows the pixel boundary.
template <class AddPoint>
void walk_step(int& x, int& y, char previous, char step, const AddPoint& add_point)
{
    switch (step) {
    case '0':
        if (previous == '1')
            add_point(x - 1, y);
        --y;
        add_point(x - 1, y);
        break;
    case '1':
        if (previous == '2')
            add_point(x, y);
        --x;
        add_point(x, y);
        break;
    case '2':
        if (previous == '3')
            add_point(x, y - 1);
        add_point(x, y);
        ++y;
        break;
    default:
        if (previous == '0')
            add_point(x - 1, y - 1);
        add_point(x, y - 1);
        ++x;
    }
}

// Calls add_point(x, y) for the vertices of an outline, counted from its start pixel, as long as they
// may fit into a mask.
template <class AddPoint>
void walk_outline(const std::string& outline, const AddPoint& add_point)
{
    constexpr int most = roi_mask::max_side;
    int x = 0;
    int y = 0;
    char previous = '2';
    for (const char step : outline) {
        if (!is_step(step))
            continue;
        walk_step(x, y, previous, step, add_point);
        previous = step;
        if (x < -most || x > most || y < -most || y > most)
            return;
    }
}

// The start pixel and all vertices, counted from it.
pixel_box box_of(const std::string& outline)
{
    pixel_box box;
    walk_outline(outline, [&box](int x, int y) {
        box.left = std::min(box.left, x);
        box.right = std::max(box.right, x);
        box.top = std::min(box.top, y);
        box.bottom = std::max(box.bottom, y);
    });
    return box;
}

// False when a mask of this box would be too large, or leaves the range of int around `start`.
bool fits(const pixel_box& box, pos2i start)
{
    using limits = std::numeric_limits<int>;
    return width_of(box) <= roi_mask::max_side && height_of(box) <= roi_mask::max_side &&
           start.x() >= limits::min() - box.left && start.y() >= limits::min() - box.top &&
           start.x() <= limits::max() - box.right && start.y() <= limits::max() - box.bottom;
}

}    // namespace

roi_mask::roi_mask(roi r) : roi(std::move(r)), _top_left(_x, _y), _bottom_right(_x, _y)
{
    const pos2i start(_x, _y);
    const pixel_box box = box_of(_outline);
    _too_large = !fits(box, start);
    if (_too_large)
        return;
    _top_left = start + pos2i(box.left, box.top);
    _bottom_right = start + pos2i(box.right, box.bottom);
    _width = width_of(box);
    _height = height_of(box);
}

std::vector<pos2i> roi_mask::_make_polygon() const
{
    const pos2i start(_x, _y);
    if (_too_large)
        return {start};
    std::vector<pos2i> points;
    points.reserve(_outline.size() + _outline.size() / 2);
    walk_outline(_outline, [&](int x, int y) {
        const pos2i point = start + pos2i(x, y);
        if (points.empty() || !(points.back() == point))
            points.push_back(point);
    });
    return points;
}

void roi_mask::map()
{
    if (_image)
        return;
    _image = std::make_unique<unsigned char[]>(static_cast<std::size_t>(_width) *
                                               static_cast<std::size_t>(_height));
    if (_too_large)
        error_line("Outline larger than ", max_side, " x ", max_side, " pixels: ROI at x ", _x, ", y ", _y,
                   ", focal plane ", _z, ", time point ", _t);
    else
        trace_outline();
    count_size();
}

// Marks the outline with 2. Runs fill each row from its left boundary to the next mark; where the
// outline is concave, runs from its right boundary clear what was filled too far.
void roi_mask::trace_outline()
{
    int cx = _x - _top_left.x();
    int cy = _y - _top_left.y();
    char previous = '2';
    for (const char step : _outline) {
        switch (step) {
        case '0':
            --cy;
            mark(cx - 1, cy);
            erase({cx, cy});
            break;
        case '1':
            --cx;
            mark(cx, cy);
            if (previous == '2')
                draw({cx + 1, cy});
            break;
        case '2':
            mark(cx, cy);
            ++cy;
            if (!is_marked(cx, cy) && !is_marked(cx + 1, cy))
                draw({cx + 1, cy - 1});
            break;
        case '3':
            mark(cx, cy - 1);
            ++cx;
            if (previous == '0')
                draw({cx, cy - 1});
            break;
        default:
            continue;
        }
        previous = step;
    }
}

void roi_mask::count_size()
{
    static_assert(max_side <= std::numeric_limits<unsigned short>::max());    // what a row or column may hold
    const int width = _width;    // which a pixel might be, for all a compiler can tell of bytes
    std::array<unsigned short, max_side> in_column;
    std::fill_n(in_column.begin(), width, static_cast<unsigned short>(0));
    long long sum_y = 0;
    _size = 0;
    unsigned char* row = _image.get();
    for (int y = 0; row && y < _height; ++y, row += width) {
        unsigned short in_row = 0;
        for (int x = 0; x < width; ++x) {
            const unsigned char in = row[x] != 0;
            row[x] = in;
            in_row = static_cast<unsigned short>(in_row + in);
            in_column[x] = static_cast<unsigned short>(in_column[x] + in);
        }
        _size += in_row;
        sum_y += static_cast<long long>(in_row) * y;
    }
    long long sum_x = 0;
    for (int x = 0; x < width; ++x)
        sum_x += static_cast<long long>(in_column[x]) * x;
    _cx = _top_left.x() + static_cast<double>(sum_x) / _size;
    _cy = static_cast<double>(sum_y) / _size + _top_left.y();
}

void roi_mask::draw(pos2i p) { fill_run(p, 1); }

void roi_mask::erase(pos2i p) { fill_run(p, 0); }

void roi_mask::fill_run(pos2i p, unsigned char pixel)
{
    if (!_image || !inside(p.x(), p.y()))
        return;
    unsigned char* const row = _image.get() + static_cast<std::ptrdiff_t>(p.y()) * _width;
    unsigned char* const run = row + p.x();
    const auto to_edge = static_cast<std::size_t>(_width - p.x());
    const void* const stop = std::memchr(run, outline_mark, to_edge);
    std::memset(run, pixel,
                stop ? static_cast<std::size_t>(static_cast<const unsigned char*>(stop) - run) : to_edge);
}

int roi_mask::value(int x, int y) const noexcept
{
    if (!_image)
        return -1;
    return inside(x, y) ? _image[static_cast<std::size_t>(y) * static_cast<std::size_t>(_width) +
                                 static_cast<std::size_t>(x)]
                        : 0;
}

bool roi_mask::inside(int x, int y) const noexcept { return x >= 0 && y >= 0 && x < _width && y < _height; }

bool roi_mask::is_marked(int x, int y) const noexcept { return value(x, y) == outline_mark; }

void roi_mask::mark(int x, int y) noexcept
{
    if (inside(x, y))
        _image[static_cast<std::size_t>(y) * static_cast<std::size_t>(_width) + static_cast<std::size_t>(x)] =
            outline_mark;
}

namespace {

// The image pixels that two masks have in common, if any.
std::optional<pixel_box> common(const roi_mask& a, const roi_mask& b)
{
    const pixel_box box_a = a.box();
    const pixel_box box_b = b.box();
    if (!box_a.meets(box_b))
        return std::nullopt;
    return pixel_box{std::max(box_a.left, box_b.left), std::max(box_a.top, box_b.top),
                     std::min(box_a.right, box_b.right), std::min(box_a.bottom, box_b.bottom)};
}

// The rows of a mask within a box, counted from the top of the box. A raster without a mask covers
// its whole box: it lends a row of ones.
class mask_rows {
public:
    mask_rows(const roi_mask& mask, const pixel_box& box)
    {
        if (!mask.image()) {
            _covered.assign(static_cast<std::size_t>(width_of(box)), 1);
            _first = _covered.data();
            return;
        }
        _stride = mask.width();
        _first = mask.image() + (box.top - mask.top_left().y()) * _stride + (box.left - mask.top_left().x());
    }

    [[nodiscard]] const unsigned char* row(int i) const { return _first + i * _stride; }

private:
    const unsigned char* _first = nullptr;
    std::ptrdiff_t _stride = 0;
    std::vector<unsigned char> _covered;
};

int shared_in_row(const unsigned char* a, const unsigned char* b, int length)
{
    int shared = 0;
    for (int i = 0; i < length; ++i)
        shared += (a[i] != 0) & (b[i] != 0);
    return shared;
}

}    // namespace

int shared_pixels(const roi_mask& a, const roi_mask& b)
{
    const auto box = common(a, b);
    if (!box)
        return 0;
    const mask_rows rows_a(a, *box);
    const mask_rows rows_b(b, *box);
    int shared = 0;
    for (int i = 0; i < height_of(*box); ++i)
        shared += shared_in_row(rows_a.row(i), rows_b.row(i), width_of(*box));
    return shared;
}

bool share_a_pixel(const roi_mask& a, const roi_mask& b)
{
    const auto box = common(a, b);
    if (!box)
        return false;
    const mask_rows rows_a(a, *box);
    const mask_rows rows_b(b, *box);
    for (int i = 0; i < height_of(*box); ++i)
        if (shared_in_row(rows_a.row(i), rows_b.row(i), width_of(*box)) != 0)
            return true;
    return false;
}
