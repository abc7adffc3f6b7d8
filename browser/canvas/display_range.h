// display_range.h - which grey values of an image are shown as black, as white, and how those between.
#pragma once
#include <QImage>

#include <array>

struct display_range {
    int low = 0;    // shown as black, as is what is darker; less than high
    int high = 255;
    double gamma = 1;    // above 1: what is dark is shown brighter

    bool operator==(const display_range&) const noexcept = default;
    [[nodiscard]] bool is_plain() const noexcept { return *this == display_range{}; }
};

using grey_table = std::array<unsigned char, 256>;    // by the grey value of the image, what is shown

[[nodiscard]] grey_table table_of(const display_range& range);

// From percentiles 0.1 and 99.9 of the image's pixels; its gamma is 1. The plain range for no image.
[[nodiscard]] display_range range_of(const QImage& image);

// Shows 32-bit pixels in a range, colour by colour.
class range_painter {
public:
    explicit range_painter(const display_range& range);
    void copy(const QRgb* from, int count, QRgb* to) const noexcept;    // `to` may be `from`

private:
    bool _is_plain;
    std::array<QRgb, 256> _red{}, _green{}, _blue{}, _grey{};    // by the value before
};
