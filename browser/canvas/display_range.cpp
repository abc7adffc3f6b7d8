#include "display_range.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double dark_share = 0.001;    // of the pixels, at either end

// The grey value that `count` pixels do not exceed.
int value_after(const std::array<long, 256>& histogram, double count)
{
    long seen = 0;
    for (int value = 0; value < 256; ++value)
        if (static_cast<double>(seen += histogram[static_cast<std::size_t>(value)]) > count)
            return value;
    return 255;
}

}    // namespace

grey_table table_of(const display_range& range)
{
    grey_table table{};
    const double width = std::max(1, range.high - range.low);
    for (int value = 0; value < 256; ++value) {
        const double share = std::clamp((value - range.low) / width, 0.0, 1.0);
        table[static_cast<std::size_t>(value)] =
            static_cast<unsigned char>(std::lround(255 * std::pow(share, 1 / range.gamma)));
    }
    return table;
}

display_range range_of(const QImage& image)
{
    if (image.isNull())
        return {};
    const QImage grey = image.convertToFormat(QImage::Format_Grayscale8);
    std::array<long, 256> histogram{};
    for (int y = 0; y < grey.height(); ++y)
        for (int x = 0; x < grey.width(); ++x)
            ++histogram[grey.constScanLine(y)[x]];
    const double pixels = static_cast<double>(grey.width()) * grey.height();
    const int low = std::min(254, value_after(histogram, pixels * dark_share));
    return {low, std::max(low + 1, value_after(histogram, pixels * (1 - dark_share) - 1)), 1};
}

range_painter::range_painter(const display_range& range) : _is_plain(range.is_plain())
{
    if (_is_plain)
        return;
    const grey_table table = table_of(range);
    for (std::size_t value = 0; value < table.size(); ++value) {
        _red[value] = qRgb(table[value], 0, 0);
        _green[value] = qRgb(0, table[value], 0);
        _blue[value] = qRgb(0, 0, table[value]);
        _grey[value] = qRgb(table[value], table[value], table[value]);
    }
}

void range_painter::copy(const QRgb* from, int count, QRgb* to) const noexcept
{
    if (_is_plain) {
        std::copy_n(from, from == to ? 0 : count, to);
        return;
    }
    QRgb colors = 0;
    for (int i = 0; i < count; ++i)
        colors |= (from[i] ^ from[i] >> 8) & 0xffff;
    if (colors == 0) {    // as nearly every row is
        for (int i = 0; i < count; ++i)
            to[i] = _grey[from[i] & 255];
        return;
    }
    for (int i = 0; i < count; ++i) {
        const QRgb p = from[i];
        to[i] = _red[p >> 16 & 255] | _green[p >> 8 & 255] | _blue[p & 255];
    }
}
