#include "visible_image.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace {

QImage as_rgb(const QPixmap& image) { return image.toImage().convertToFormat(QImage::Format_RGB32); }

// For each screen pixel of one axis the picture pixel it shows; -1 beyond the image.
std::vector<int> owners(int screen_pixels, int image_pixels, const auto& owner_of)
{
    std::vector<int> found(static_cast<std::size_t>(screen_pixels));
    for (int s = 0; s < screen_pixels; ++s) {
        const int p = owner_of(s);
        found[static_cast<std::size_t>(s)] = p < image_pixels ? std::max(p, -1) : -1;
    }
    return found;
}

// Owners rise: those within the image stand together.
void copy_row(const QRgb* from, const std::vector<int>& columns, QRgb* to, const range_painter& range)
{
    const auto first = std::ranges::find_if(columns, [](int p) { return p >= 0; });
    QRgb* const start = to + (first - columns.begin());
    QRgb* next = start;
    for (auto p = first; p != columns.end() && *p >= 0; ++p)
        *next++ = from[*p];
    range.copy(start, static_cast<int>(next - start), start);
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
        const auto* const upper = reinterpret_cast<const QRgb*>(image.constScanLine(2 * y));
        const auto* const lower =
            reinterpret_cast<const QRgb*>(image.constScanLine(std::min(2 * y + 1, image.height() - 1)));
        auto* const to = reinterpret_cast<QRgb*>(half.scanLine(y));
        for (int x = 0; x < pairs; ++x)
            to[x] = mean(upper[2 * x], upper[2 * x + 1], lower[2 * x], lower[2 * x + 1]);
        if (pairs < half.width())
            to[pairs] = mean(upper[2 * pairs], upper[2 * pairs], lower[2 * pairs], lower[2 * pairs]);
    }
    return half;
}

// Rows that show the same row of the image are copies of the first.
void show_pixels(const QImage& image, const view_transform& view, const range_painter& range, QImage& onto)
{
    const auto columns = owners(onto.width(), image.width(), [&view](int s) {
        return view.picture_pixel({s, 0}).x();
    });
    const auto rows = owners(onto.height(), image.height(), [&view](int s) {
        return view.picture_pixel({0, s}).y();
    });
    for (std::size_t s = 0; s < rows.size(); ++s) {
        const int line = static_cast<int>(s);
        if (rows[s] < 0)
            continue;
        if (s > 0 && rows[s] == rows[s - 1])
            std::memcpy(onto.scanLine(line), onto.constScanLine(line - 1),
                        static_cast<std::size_t>(onto.width()) * sizeof(QRgb));
        else
            copy_row(reinterpret_cast<const QRgb*>(image.constScanLine(rows[s])), columns,
                     reinterpret_cast<QRgb*>(onto.scanLine(line)), range);
    }
}

// The mean of two pixels, colour by colour.
QRgb mean(QRgb a, QRgb b) { return (a & b) + ((a ^ b) >> 1 & 0x7f7f7f7f); }

// Between two pixels: so many quarters of the second. Finer than the eye, and quick.
template <int quarters>
QRgb between(QRgb a, QRgb b)
{
    return quarters == 0   ? a
           : quarters == 1 ? mean(a, mean(a, b))
           : quarters == 2 ? mean(a, b)
                           : mean(mean(a, b), b);
}

template <int quarters>
void blend_rows(const QRgb* a, const QRgb* b, std::vector<QRgb>& to)
{
    const std::size_t count = to.size();
    QRgb* const out = to.data();
    for (std::size_t x = 0; x < count; ++x)
        out[x] = between<quarters>(a[x], b[x]);
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

QRgb blended(QRgb a, QRgb b, int quarters)
{
    const QRgb middle = mean(a, b);
    const QRgb near[] = {a, mean(a, middle), middle, mean(middle, b)};
    return near[quarters];
}

// Made smaller by less than half: between neighbours, which leaves no pixel out.
QImage interpolated(const QImage& image, QSize size)
{
    constexpr void (*blends[])(const QRgb*, const QRgb*, std::vector<QRgb>&) = {blend_rows<0>, blend_rows<1>,
                                                                                blend_rows<2>, blend_rows<3>};
    QImage smaller(size, QImage::Format_RGB32);
    std::vector<sample> columns;
    for (int x = 0; x < size.width(); ++x)
        columns.push_back(sample_of(x, size.width(), image.width()));
    std::vector<QRgb> row(static_cast<std::size_t>(image.width()));
    for (int y = 0; y < size.height(); ++y) {
        const sample rows = sample_of(y, size.height(), image.height());
        const int below = std::min(rows.before + 1, image.height() - 1);
        blends[rows.quarters](reinterpret_cast<const QRgb*>(image.constScanLine(rows.before)),
                              reinterpret_cast<const QRgb*>(image.constScanLine(below)), row);
        auto* to = reinterpret_cast<QRgb*>(smaller.scanLine(y));
        const QRgb* const last = &row.back();
        for (const sample& column : columns) {
            const QRgb* const at = row.data() + column.before;
            *to++ = blended(*at, at == last ? *at : at[1], column.quarters);
        }
    }
    return smaller;
}

// The part of a whole image whose top-left corner lies at `corner` of the canvas.
void copy_part(const QImage& image, QPoint corner, const range_painter& range, QImage& onto)
{
    const QRect part = image.rect().translated(corner) & onto.rect();
    for (int y = part.top(); y <= part.bottom(); ++y) {
        const auto* const from = reinterpret_cast<const QRgb*>(image.constScanLine(y - corner.y()));
        auto* const to = reinterpret_cast<QRgb*>(onto.scanLine(y));
        range.copy(from + part.left() - corner.x(), part.width(), to + part.left());
    }
}

}    // namespace

QImage& visible_image::of(const QPixmap& image, const view_transform& view, QSize canvas,
                          const display_range& range, QRgb blank)
{
    const request wanted{image.isNull() ? 0 : image.cacheKey(), view, canvas, range, blank};
    if (wanted == _made_for && _shown.size() == canvas)
        return _shown;
    _made_for = wanted;
    if (_shown.size() != canvas)
        _shown = QImage(canvas, QImage::Format_RGB32);
    _shown.fill(blank);
    if (image.isNull())
        return _shown;
    const range_painter shown_range(range);
    if (view.scale() > 1)
        show_pixels(as_rgb(image), view, shown_range, _shown);
    else
        copy_part(view.scale() < 1 ? made_smaller(image, view.scale()) : as_rgb(image),
                  view.screen_pixel({0, 0}), shown_range, _shown);
    return _shown;
}

QImage visible_image::made_smaller(const QPixmap& image, double scale)
{
    const std::pair wanted(image.cacheKey(), scale);
    if (wanted != _smaller_of) {
        const auto length = [scale](int pixels) {
            return std::max(1, static_cast<int>(std::lround(pixels * scale)));
        };
        const QSize size(length(image.width()), length(image.height()));
        _smaller = as_rgb(image);
        double left_to_do = scale;
        for (; left_to_do <= 0.5; left_to_do *= 2)
            _smaller = halved(_smaller);
        if (left_to_do < 1)
            _smaller = interpolated(_smaller, size);
        _smaller_of = wanted;
    }
    return _smaller;
}
