// roimaker - the regions of a pixel mask as ROI outlines, from standard input to standard output.
//
// Input: the width, the height, then one line of `width` digits for each row, '0' outside. Output: the
// number of regions; for each a line "region n pixels p" and a line "n x y outline". Both may be the
// two ends of one pipe: nothing is written before the whole mask is read, nothing is read beyond
// its last line, and the answer is kept small enough to fit into the pipe.
#include "ORV_outline.h"

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

namespace {

constexpr int max_side = 4096;               // pixels
constexpr std::size_t max_answer = 60000;    // bytes

struct mask {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> pixels;
};

// A line of one number from 1 to max_side.
std::optional<int> read_side()
{
    int side = 0;
    int digits = 0;
    int c = std::getchar();
    for (; c >= '0' && c <= '9' && side <= max_side; c = std::getchar(), ++digits)
        side = side * 10 + (c - '0');
    if (c != '\n' || digits == 0 || side < 1 || side > max_side)
        return std::nullopt;
    return side;
}

// A line of `width` digits. By hand the last line may lack its line end.
bool read_row(mask& m, bool is_last)
{
    for (int x = 0; x < m.width; ++x) {
        const int c = std::getchar();
        if (c < '0' || c > '9')
            return false;
        m.pixels.push_back(c != '0');
    }
    const int end = std::getchar();
    return end == '\n' || (is_last && end == EOF);
}

std::optional<mask> read_mask()
{
    const std::optional<int> width = read_side();
    const std::optional<int> height = width ? read_side() : std::nullopt;
    if (!height)
        return std::nullopt;
    mask m{*width, *height, {}};
    m.pixels.reserve(static_cast<std::size_t>(m.width) * static_cast<std::size_t>(m.height));
    for (int y = 0; y < m.height; ++y)
        if (!read_row(m, y == m.height - 1))
            return std::nullopt;
    return m;
}

std::string lines_of(const outlined_region& region, std::size_t number)
{
    const std::string n = std::to_string(number);
    return "region " + n + " pixels " + std::to_string(region.pixels) + '\n' + n + ' ' +
           std::to_string(region.start.x()) + ' ' + std::to_string(region.start.y()) + ' ' + region.chain +
           '\n';
}

// Leaves out the smallest regions until the answer fits; later ones first among those of equal size.
// Returns how many.
std::size_t keep_what_fits(std::vector<outlined_region>& regions)
{
    std::vector<std::size_t> by_size(regions.size());
    std::iota(by_size.begin(), by_size.end(), 0);
    std::stable_sort(by_size.begin(), by_size.end(),
                     [&](std::size_t a, std::size_t b) { return regions[a].pixels > regions[b].pixels; });
    // How long the answer is depends only on which regions are kept, not on their order.
    std::size_t length = 0;
    std::size_t kept = 0;
    for (; kept < by_size.size(); ++kept) {
        length += lines_of(regions[by_size[kept]], kept + 1).size();
        if (length + std::to_string(kept + 1).size() + 1 > max_answer)
            break;
    }
    std::vector<bool> is_kept(regions.size());
    for (std::size_t i = 0; i < kept; ++i)
        is_kept[by_size[i]] = true;
    const std::size_t left_out = regions.size() - kept;
    std::size_t index = 0;
    std::erase_if(regions, [&](const outlined_region&) { return !is_kept[index++]; });
    return left_out;
}

int answer(const mask& m)
{
    std::vector<outlined_region> regions = outline_regions(m.pixels, m.width, m.height);
    if (const std::size_t left_out = keep_what_fits(regions); left_out > 0)
        std::fprintf(stderr, "roimaker: the answer would not fit: %zu of the smallest regions left out\n",
                     left_out);
    std::string text = std::to_string(regions.size()) + '\n';
    for (std::size_t i = 0; i < regions.size(); ++i)
        text += lines_of(regions[i], i + 1);
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0)
        return 0;
    std::perror("roimaker");
    return 1;
}

}    // namespace

int main(int argc, char**)
{
    if (argc > 1) {
        std::fputs("usage: roimaker < mask.txt\n", stderr);
        return 2;
    }
    const std::optional<mask> m = read_mask();
    if (m)
        return answer(*m);
    std::fprintf(stderr, "roimaker: the input is no mask of up to %d x %d pixels\n", max_side, max_side);
    std::puts("0");
    return 1;
}
