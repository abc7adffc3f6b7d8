#include "image_import.h"

#include "ORV_roidb.h"
#include "grey_jpeg.h"
#include "staged_output.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int quality = 95;
constexpr double darkest = 0.001;    // parts of all pixels
constexpr double brightest = 0.999;
constexpr std::size_t bins = 1 << 16;

// Reads all planes of all time points, in `total` steps from `done` on.
outcome for_all(image_stack& images, const run_callbacks& callbacks, int pass, int passes,
                const std::function<bool(int t, int z, const grey_page&)>& take)
{
    const int times = static_cast<int>(images.times().size());
    for (int i = 0; i < times; ++i) {
        if (!callbacks.step(pass * times + i, passes * times))
            return outcome::stopped;
        if (!images.read(i, [&](int z, grey_page& page) { return take(images.times()[i], z, page); }))
            return outcome::refused;
    }
    return outcome::done;
}

// How often values come up, from a lowest one on, in equal steps.
struct histogram {
    double low = 0;
    double step = 1;
    std::vector<std::size_t> counts = std::vector<std::size_t>(bins);

    void add(const grey_page& page)
    {
        for (const float v : page.pixels)
            ++counts[static_cast<std::size_t>(std::clamp((v - low) / step, 0.0, bins - 1.0))];
    }

    // The smallest value that so many pixels, as a part of all, do not exceed.
    [[nodiscard]] double percentile(double part) const
    {
        std::size_t all = 0;
        for (const std::size_t c : counts)
            all += c;
        std::size_t below = 0;
        for (std::size_t i = 0; i < bins; ++i)
            if (below += counts[i];
                static_cast<double>(below) >= part * static_cast<double>(all) && below > 0)
                return low + step * static_cast<double>(i);
        return low + step * static_cast<double>(bins - 1);
    }
};

// Values of 16 bits are counted as they are, others between their extremes.
outcome measure(image_stack& images, const run_callbacks& callbacks, grey_range& range)
{
    histogram found;
    double lowest = 0;
    double highest = bins - 1;
    bool is_wide = false;
    const outcome extremes = for_all(images, callbacks, 0, 3, [&](int, int, const grey_page& page) {
        const auto [low, high] = std::ranges::minmax(page.pixels);
        lowest = std::min(lowest, static_cast<double>(low));
        highest = std::max(highest, static_cast<double>(high));
        is_wide = is_wide || images.is_wide();
        if (!is_wide && lowest >= 0)
            found.add(page);
        return true;
    });
    if (extremes != outcome::done)
        return extremes;
    if (is_wide || lowest < 0) {
        found = {lowest, (highest - lowest) / (bins - 1)};
        const outcome counted = for_all(images, callbacks, 1, 3, [&](int, int, const grey_page& page) {
            found.add(page);
            return true;
        });
        if (counted != outcome::done)
            return counted;
    }
    range = {found.percentile(darkest), found.percentile(brightest)};
    return outcome::done;
}

std::vector<unsigned char> levels(const grey_page& page, const grey_range& range)
{
    const double scale = range.high > range.low ? 255 / (range.high - range.low) : 0;
    std::vector<unsigned char> grey;
    grey.reserve(page.pixels.size());
    for (const float v : page.pixels)
        grey.push_back(
            static_cast<unsigned char>(std::lround(std::clamp((v - range.low) * scale, 0.0, 255.0))));
    return grey;
}

}    // namespace

outcome import_images(image_stack& images, const std::filesystem::path& folder,
                      const std::optional<grey_range>& range, const run_callbacks& callbacks)
{
    grey_range used = range.value_or(grey_range());
    if (!range)
        if (const outcome measured = measure(images, callbacks, used); measured != outcome::done)
            return measured;
    return for_all(images, callbacks, 2, 3, [&](int t, int z, const grey_page& page) {
        const auto bytes = grey_jpeg(levels(page, used), page.width, page.height, quality);
        return write_whole_file(folder / (roidb::digit(t, 3) + '-' + roidb::digit(z, 3) + ".jpg"),
                                {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    });
}
