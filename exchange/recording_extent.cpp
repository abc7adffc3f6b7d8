#include "recording_extent.h"

#include "grey_jpeg.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <string_view>

namespace {

constexpr int largest_side = 1000;    // positions go to 999

std::optional<int> three_digits(std::string_view text)
{
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

// Images are named ttt-zzz.jpg, and are of one size.
void widen_to_images(const std::string& folder, recording_extent& extent)
{
    namespace fs = std::filesystem;
    std::error_code error;
    bool has_size = false;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        if (name.size() != 11 || name[3] != '-' || !name.ends_with(".jpg"))
            continue;
        const auto t = three_digits(std::string_view(name).substr(0, 3));
        const auto z = three_digits(std::string_view(name).substr(4, 3));
        if (!t || !z)
            continue;
        extent.times = std::max(extent.times, *t + 1);
        extent.planes = std::max(extent.planes, *z + 1);
        if (has_size)
            continue;
        const auto size = size_of_jpeg(entry->path().string());
        has_size = size.has_value();
        extent.width = std::max(extent.width, size.value_or(jpeg_size()).width);
        extent.height = std::max(extent.height, size.value_or(jpeg_size()).height);
    }
}

}    // namespace

recording_extent extent_of(const export_request& request, const export_graph& graph)
{
    recording_extent extent;
    const recording_info& info = request.info;
    if (info.image_size)
        extent = {info.image_size->width, info.image_size->height};
    if (info.focal_planes)
        extent.planes = info.focal_planes->last + 1;
    if (info.time_points)
        extent.times = info.time_points->last + 1;
    if (!request.image_folder.empty())
        widen_to_images(request.image_folder, extent);
    for (const export_unit& unit : graph.units) {
        extent.times = std::max(extent.times, unit.t + 1);
        for (const roi* r : unit.rois) {
            const q_roiimg image(*r);
            extent.planes = std::max(extent.planes, r->z() + 1);
            extent.width = std::max(extent.width, std::min(image.bottom_right().x() + 1, largest_side));
            extent.height = std::max(extent.height, std::min(image.bottom_right().y() + 1, largest_side));
        }
    }
    return extent;
}
