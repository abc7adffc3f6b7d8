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

void copy_row(const QRgb* from, const std::vector<int>& columns, QRgb* to)
{
    for (std::size_t s = 0; s < columns.size(); ++s)
        if (columns[s] >= 0)
            to[s] = from[columns[s]];
}

// Rows that show the same row of the image are copies of the first.
void show_pixels(const QImage& image, const view_transform& view, QImage& onto)
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
                     reinterpret_cast<QRgb*>(onto.scanLine(line)));
    }
}

// The part of a whole image whose top-left corner lies at `corner` of the canvas.
void copy_part(const QImage& image, QPoint corner, QImage& onto)
{
    const QRect part = image.rect().translated(corner) & onto.rect();
    for (int y = part.top(); y <= part.bottom(); ++y) {
        const auto* const from = reinterpret_cast<const QRgb*>(image.constScanLine(y - corner.y()));
        auto* const to = reinterpret_cast<QRgb*>(onto.scanLine(y));
        std::copy_n(from + part.left() - corner.x(), part.width(), to + part.left());
    }
}

}    // namespace

const QImage& visible_image::of(const QPixmap& image, const view_transform& view, QSize canvas,
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
    QImage shown = view.scale() < 1 ? made_smaller(image, view.scale()) : as_rgb(image);
    show_in_range(shown, range);
    if (view.scale() < 1)
        copy_part(shown, view.screen_pixel({0, 0}), _shown);
    else
        show_pixels(shown, view, _shown);
    return _shown;
}

QImage visible_image::made_smaller(const QPixmap& image, double scale)
{
    const std::pair wanted(image.cacheKey(), scale);
    if (wanted != _smaller_of) {
        const auto length = [scale](int pixels) {
            return std::max(1, static_cast<int>(std::lround(pixels * scale)));
        };
        _smaller = as_rgb(image)
                       .scaled(length(image.width()), length(image.height()), Qt::IgnoreAspectRatio,
                               Qt::SmoothTransformation)
                       .convertToFormat(QImage::Format_RGB32);
        _smaller_of = wanted;
    }
    return _smaller;
}
