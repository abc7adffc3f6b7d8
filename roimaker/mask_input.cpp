#include "mask_input.h"

namespace {

// A line of one number from 1 to max_side.
std::optional<int> read_side(std::FILE* in)
{
    int side = 0;
    int digits = 0;
    int c = std::fgetc(in);
    for (; c >= '0' && c <= '9' && side <= max_side; c = std::fgetc(in), ++digits)
        side = side * 10 + (c - '0');
    if (c != '\n' || digits == 0 || side < 1 || side > max_side)
        return std::nullopt;
    return side;
}

// A line of `width` digits. By hand the last line may lack its line end.
bool read_row(std::FILE* in, mask& m, bool is_last)
{
    for (int x = 0; x < m.width; ++x) {
        const int c = std::fgetc(in);
        if (c < '0' || c > '9')
            return false;
        m.pixels.push_back(c != '0');
    }
    const int end = std::fgetc(in);
    return end == '\n' || (is_last && end == EOF);
}

}    // namespace

std::optional<mask> read_mask(std::FILE* in)
{
    const std::optional<int> width = read_side(in);
    const std::optional<int> height = width ? read_side(in) : std::nullopt;
    if (!height)
        return std::nullopt;
    mask m{*width, *height, {}};
    m.pixels.reserve(static_cast<std::size_t>(m.width) * static_cast<std::size_t>(m.height));
    for (int y = 0; y < m.height; ++y)
        if (!read_row(in, m, y == m.height - 1))
            return std::nullopt;
    return m;
}
