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

void show_in_range(QImage& image, const display_range& range)
{
    if (range.is_plain())
        return;
    const grey_table table = table_of(range);
    for (int y = 0; y < image.height(); ++y) {
        auto* const line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x)
            line[x] = qRgb(table[static_cast<std::size_t>(qRed(line[x]))],
                           table[static_cast<std::size_t>(qGreen(line[x]))],
                           table[static_cast<std::size_t>(qBlue(line[x]))]);
    }
}
