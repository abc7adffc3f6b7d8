#include "visible_image.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

namespace {

QImage as_rgb(const QPixmap& image) { return image.toImage().convertToFormat(QImage::Format_RGB32); }

QSize size_of(const QPixmap& image, double scale)
{
    const auto length = [scale](int pixels) {
        return std::max(1, static_cast<int>(std::lround(pixels * scale)));
    };
    return {length(image.width()), length(image.height())};
}

// The screen pixels of one axis that show the image: the first of them, and for each its picture pixel.
struct shown_axis {
    int first = 0;
    std::vector<int> owners;
};

// From picture pixel `from` on, each of which begins at first_of() it.
shown_axis shown_of(int screen_pixels, int image_pixels, int from, const auto& first_of)
{
    int p = std::max(0, from);
    int s = std::max(0, first_of(p));
    shown_axis axis{s, {}};
    for (; p < image_pixels && s < screen_pixels; ++p)
        for (const int beyond = std::min(screen_pixels, first_of(p + 1)); s < beyond; ++s)
            axis.owners.push_back(p);
    return axis;
}

const QRgb* row_of(const QImage& image, int y)
{
    return reinterpret_cast<const QRgb*>(image.constScanLine(y));
}

QRgb* row_of(QImage& image, int y) { return reinterpret_cast<QRgb*>(image.scanLine(y)); }

// What an image does not cover.
void fill_around(QImage& onto, const QRect& covered, QRgb blank)
{
    if (covered.isEmpty()) {
        onto.fill(blank);
        return;
    }
    for (int y = 0; y < onto.height(); ++y) {
        QRgb* const row = row_of(onto, y);
        const bool is_beside = covered.top() <= y && y <= covered.bottom();
        std::fill(row, row + (is_beside ? covered.left() : onto.width()), blank);
        if (is_beside)
            std::fill(row + covered.right() + 1, row + onto.width(), blank);
    }
}

// The mean of four pixels, colour by colour.
QRgb mean(QRgb a, QRgb b, QRgb c, QRgb d)
{
    const auto sum = [=](int shift) {
        return ((a >> shift & 0xff00ff) + (b >> shift & 0xff00ff) + (c >> shift & 0xff00ff) +
                (d >> shift & 0xff00ff) + 0x20002) >>
                   2 &
               0xff00ff;
    };
    return sum(0) | sum(8) << 8;
}

// Half as large; a last odd row or column counts twice.
QImage halved(const QImage& image)
{
    const int pairs = image.width() / 2;
    QImage half((image.width() + 1) / 2, (image.height() + 1) / 2, QImage::Format_RGB32);
    for (int y = 0; y < half.height(); ++y) {
        const QRgb* const upper = row_of(image, 2 * y);
        const QRgb* const lower = row_of(image, std::min(2 * y + 1, image.height() - 1));
        QRgb* const to = row_of(half, y);
        for (int x = 0; x < pairs; ++x)
            to[x] = mean(upper[2 * x], upper[2 * x + 1], lower[2 * x], lower[2 * x + 1]);
        if (pairs < half.width())
            to[pairs] = mean(upper[2 * pairs], upper[2 * pairs], lower[2 * pairs], lower[2 * pairs]);
    }
    return half;
}

// Each row of the image is put into its range once; rows that show the same one are copies of the first.
// The screen pixels that show the image.
QRect show_pixels(const QImage& image, const view_transform& view, const range_painter& range, QImage& onto)
{
    const QPoint from = view.picture_pixel({0, 0});
    const shown_axis columns = shown_of(onto.width(), image.width(), from.x(), [&view](int p) {
        return view.screen_pixel({p, 0}).x();
    });
    const shown_axis rows = shown_of(onto.height(), image.height(), from.y(), [&view](int p) {
        return view.screen_pixel({0, p}).y();
    });
    const std::size_t width = columns.owners.size();
    if (width == 0 || rows.owners.empty())
        return {};
    const int first = columns.owners.front();
    std::vector<QRgb> shown(static_cast<std::size_t>(columns.owners.back() - first + 1));
    std::vector<int> places(width);    // in these
    std::ranges::transform(columns.owners, places.begin(), [first](int owner) { return owner - first; });
    for (std::size_t s = 0; s < rows.owners.size(); ++s) {
        const int line = rows.first + static_cast<int>(s);
        QRgb* const to = row_of(onto, line) + columns.first;
        if (s > 0 && rows.owners[s] == rows.owners[s - 1]) {
            std::memcpy(to, row_of(std::as_const(onto), line - 1) + columns.first, width * sizeof(QRgb));
            continue;
        }
        const QRgb* const pixels = shown.data();
        range.copy(row_of(image, rows.owners[s]) + first, static_cast<int>(shown.size()), shown.data());
        for (std::size_t x = 0; x < width; ++x)
            to[x] = pixels[places[x]];
    }
    return {columns.first, rows.first, static_cast<int>(width), static_cast<int>(rows.owners.size())};
}

// Two pixels, one above the other: what is done to both in one go costs half as much.
using pixel_pair = quint64;

// The mean of two pixels, or of two pairs, colour by colour.
template <class Pixels>
Pixels mean(Pixels a, Pixels b)
{
    return (a & b) + ((a ^ b) >> 1 & static_cast<Pixels>(0x7f7f7f7f7f7f7f7f));
}

// Between two pixels: so many quarters of the second. Finer than the eye, and quick.
template <int quarters, class Pixels>
Pixels between(Pixels a, Pixels b)
{
    return quarters == 0   ? a
           : quarters == 1 ? mean(a, mean(a, b))
           : quarters == 2 ? mean(a, b)
                           : mean(mean(a, b), b);
}

template <int quarters>
void blend_rows(const QRgb* a, const QRgb* b, std::size_t count, QRgb* to)
{
    for (std::size_t x = 0; x < count; ++x)
        to[x] = between<quarters>(a[x], b[x]);
}

// Pixels of a row that lie equally far on between two of another.
struct blended_columns {
    std::vector<int> from;
    std::vector<int> to;
};

template <int quarters>
void blend_columns(const blended_columns& columns, const pixel_pair* from, QRgb* upper, QRgb* lower)
{
    for (std::size_t i = 0; i < columns.to.size(); ++i) {
        const pixel_pair both = between<quarters>(from[columns.from[i]], from[columns.from[i] + 1]);
        upper[columns.to[i]] = static_cast<QRgb>(both);
        lower[columns.to[i]] = static_cast<QRgb>(both >> 32);
    }
}

// Where the centre of pixel i of `to` lies between pixels of `from`: the one before, and how far on.
struct sample {
    int before;
    int quarters;
};

sample sample_of(int i, int to, int from)
{
    const double place = std::clamp((i + 0.5) * from / to - 0.5, 0.0, from - 1.0);
    const int quarters = static_cast<int>(std::lround(place * 4));
    return {quarters / 4, quarters % 4};
}

// The pixels of an image of size `from` that these of the same one of size `to` lie between.
QRect sampled_area(const QRect& area, QSize to, QSize from)
{
    const QPoint first(sample_of(area.left(), to.width(), from.width()).before,
                       sample_of(area.top(), to.height(), from.height()).before);
    const QPoint last(sample_of(area.right(), to.width(), from.width()).before + 1,
                      sample_of(area.bottom(), to.height(), from.height()).before + 1);
    return QRect(first, last) & QRect({0, 0}, from);
}

// An area of an image of size `whole` made smaller by less than half, to `size`: between neighbours, which
// leaves no pixel out. `image` begins at `corner` of the whole one and holds what is needed.
void interpolate(const QImage& image, QPoint corner, QSize whole, QSize size, const QRect& area,
                 QImage& smaller)
{
    constexpr void (*row_blends[])(const QRgb*, const QRgb*, std::size_t,
                                   QRgb*) = {blend_rows<0>, blend_rows<1>, blend_rows<2>, blend_rows<3>};
    std::array<blended_columns, 4> columns;
    for (int x = 0; x < area.width(); ++x) {
        const sample at = sample_of(area.left() + x, size.width(), whole.width());
        columns[static_cast<std::size_t>(at.quarters)].from.push_back(at.before - corner.x());
        columns[static_cast<std::size_t>(at.quarters)].to.push_back(x);
    }
    const auto width = static_cast<std::size_t>(image.width());
    const auto blend_row = [&](int y, std::vector<QRgb>& row) {
        const sample at = sample_of(area.top() + y, size.height(), whole.height());
        const int above = at.before - corner.y();
        row_blends[at.quarters](row_of(image, above), row_of(image, std::min(above + 1, image.height() - 1)),
                                width, row.data());
    };
    std::vector<QRgb> upper(width);
    std::vector<QRgb> lower(width);
    std::vector<pixel_pair> both(width + 1);    // the last one has a neighbour, which counts for nothing
    for (int y = 0; y < area.height(); y += 2) {
        const int below = std::min(y + 1, area.height() - 1);
        blend_row(y, upper);
        blend_row(below, lower);
        for (std::size_t x = 0; x < width; ++x)
            both[x] = upper[x] | static_cast<pixel_pair>(lower[x]) << 32;
        QRgb* const to = row_of(smaller, y);
        QRgb* const to_below = row_of(smaller, below);
        blend_columns<0>(columns[0], both.data(), to, to_below);
        blend_columns<1>(columns[1], both.data(), to, to_below);
        blend_columns<2>(columns[2], both.data(), to, to_below);
        blend_columns<3>(columns[3], both.data(), to, to_below);
    }
}

// The same of one that is written to. REQUIRES: nobody else holds the image
QImage part_of(QImage& image, const QRect& area)
{
    return {image.scanLine(area.top()) + static_cast<qsizetype>(area.left()) * 4, area.width(), area.height(),
            image.bytesPerLine(), image.format()};
}

// An area of an image without a copy of it.
QImage part_of(const QImage& image, const QRect& area)
{
    return {image.constScanLine(area.top()) + static_cast<qsizetype>(area.left()) * 4, area.width(),
            area.height(), image.bytesPerLine(), image.format()};
}

// Whole halves by means of four, the rest between neighbours. REQUIRES: `smaller` has the size of the area
void shrink(const QImage& image, double scale, QSize size, const QRect& area, QImage& smaller)
{
    int unit = 1;    // pixels of the image that are halved into one
    QSize whole = image.size();
    for (; scale * unit <= 0.5; unit *= 2)
        whole = {(whole.width() + 1) / 2, (whole.height() + 1) / 2};
    const QRect needed = scale * unit < 1 ? sampled_area(area, size, whole) : area & QRect({0, 0}, whole);
    const QRect source = QRect(needed.topLeft() * unit, needed.size() * unit) & image.rect();
    QImage part = part_of(image, source);
    for (int done = 1; done < unit; done *= 2)
        part = halved(part);
    if (scale * unit < 1)
        interpolate(part, needed.topLeft(), whole, size, area, smaller);
    else
        for (int y = 0; y < smaller.height(); ++y)
            std::copy_n(row_of(std::as_const(part), y), smaller.width(), row_of(smaller, y));
}

// As much of it as the canvas shows; its top-left corner lies at `corner` of the canvas. The screen pixels
// that show it.
QRect copy_part(const QImage& image, QPoint corner, const range_painter& range, QImage& onto)
{
    const QRect part = image.rect().translated(corner) & onto.rect();
    for (int y = part.top(); y <= part.bottom(); ++y)
        range.copy(row_of(image, y - corner.y()) + part.left() - corner.x(), part.width(),
                   row_of(onto, y) + part.left());
    return part;
}

}    // namespace

QImage& visible_image::of(const QPixmap& image, const view_transform& view, QSize canvas,
                          const display_range& range, QRgb blank)
{
    const request wanted{image.isNull() ? 0 : image.cacheKey(), view, canvas, range, blank};
    if (wanted == _made_for && _shown.size() == canvas)
        return _shown;
    _made_for = wanted;
    if (std::exchange(_range_shown, range) != range)
        _in_range = range_painter(range);
    if (_shown.size() != canvas)
        _shown = QImage(canvas, QImage::Format_RGB32);
    fill_around(_shown, image.isNull() ? QRect() : show(image, view), blank);
    return _shown;
}

// The screen pixels that show it.
QRect visible_image::show(const QPixmap& image, const view_transform& view)
{
    const QPoint corner = view.screen_pixel({0, 0});
    if (view.scale() > 1)
        return show_pixels(as_rgb(image), view, _in_range, _shown);
    if (view.scale() == 1)
        return copy_part(as_rgb(image), corner, _in_range, _shown);
    const QSize size = size_of(image, view.scale());
    const QRect area = _shown.rect().translated(-corner) & QRect({0, 0}, size);
    if (area.isEmpty())
        return {};
    // Who steps needs what is seen; who pans over an image will need all of it.
    if (std::exchange(_smaller_of, {image.cacheKey(), view.scale()}) !=
        std::pair(image.cacheKey(), view.scale())) {
        _smaller = {};
        return show_smaller(image, view.scale(), size, area, corner);
    }
    if (_smaller.isNull()) {
        _smaller = QImage(size, QImage::Format_RGB32);
        shrink(as_rgb(image), view.scale(), size, _smaller.rect(), _smaller);
    }
    return copy_part(_smaller, corner, _in_range, _shown);
}

// Straight onto the canvas.
QRect visible_image::show_smaller(const QPixmap& image, double scale, QSize size, const QRect& area,
                                  QPoint corner)
{
    const QRect covered = area.translated(corner);
    QImage part = part_of(_shown, covered);
    shrink(as_rgb(image), scale, size, area, part);
    for (int y = 0; y < part.height(); ++y)
        _in_range.copy(row_of(part, y), part.width(), row_of(part, y));
    return covered;
}
