#include "unit_shape.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace {

constexpr double gap_step_in_radii = 0.7;
constexpr double waist_step_in_radii = 0.5;
constexpr double widest_waist = 0.95;

double step_above(const unit_shape& unit, std::size_t i)
{
    return (unit.rois[i + 1].centre - unit.rois[i].centre).size();
}

void widen(pixel_box& box, const pixel_box& own)
{
    box = {std::min(box.left, own.left), std::min(box.top, own.top), std::max(box.right, own.right),
           std::max(box.bottom, own.bottom)};
}

}    // namespace

unit_shape shape_of(const std::vector<keyed_raster>& rasters, const physical_scale& scale)
{
    unit_shape unit;
    pos3d sum;
    const roi_mask* below = nullptr;
    for (const auto& [key, raster] : rasters) {
        const int area = raster->size();
        if (below)
            unit.rois.back().shared_above = shared_pixels(*below, *raster);
        else
            unit.box = raster->box();
        widen(unit.box, raster->box());
        const pos2d centre = area > 0 ? raster->centre() : pos2d(raster->x(), raster->y());
        unit.rois.push_back({raster->z(), area, centre, 0});
        sum = sum +
              pos3d(centre.x() * scale.pixel_um, centre.y() * scale.pixel_um, raster->z() * scale.plane_um) *
                  area;
        unit.pixels += area;
        below = raster;
    }
    if (unit.pixels == 0)
        return unit;
    const auto pixels = static_cast<double>(unit.pixels);
    unit.centre = sum / pixels;
    unit.volume = pixels * scale.pixel_um * scale.pixel_um * scale.plane_um;
    unit.radius = std::cbrt(unit.volume * 3 / (4 * std::numbers::pi));
    unit.radius_in_pixels = unit.radius / scale.pixel_um;
    return unit;
}

double distance(const unit_shape& a, const unit_shape& b)
{
    return (a.centre - b.centre).size() / (a.radius + b.radius);
}

std::optional<int> doubled_plane(const unit_shape& unit)
{
    const auto same = std::ranges::adjacent_find(unit.rois, {}, &roi_shape::plane);
    return same == unit.rois.end() ? std::nullopt : std::optional(same->plane);
}

std::optional<int> step_at_gap(const unit_shape& unit)
{
    std::optional<int> at;
    double longest = gap_step_in_radii * unit.radius_in_pixels;
    for (std::size_t i = 0; i + 1 < unit.rois.size(); ++i)
        if (unit.rois[i + 1].plane > unit.rois[i].plane + 1 && step_above(unit, i) >= longest) {
            longest = step_above(unit, i);
            at = unit.rois[i].plane;
        }
    return at;
}

std::optional<int> step_at_waist(const unit_shape& unit)
{
    if (unit.rois.size() < 4)
        return std::nullopt;
    const std::size_t edges = unit.rois.size() - 1;
    const auto shared = [&](std::size_t edge) { return unit.rois[edge].shared_above; };
    std::vector<int> widest_above(edges, shared(edges - 1));    // of an edge and all those above it
    for (std::size_t e = edges - 1; e-- > 0;)
        widest_above[e] = std::max(shared(e), widest_above[e + 1]);
    std::optional<int> at;
    double narrowest = widest_waist;
    int widest_below = shared(0);
    for (std::size_t e = 1; e + 1 < edges; ++e) {
        const int widest = std::min(widest_below, widest_above[e + 1]);
        const double ratio = widest > 0 ? static_cast<double>(shared(e)) / widest : 1;
        if (ratio < narrowest && step_above(unit, e) >= waist_step_in_radii * unit.radius_in_pixels) {
            narrowest = ratio;
            at = unit.rois[e].plane;
        }
        widest_below = std::max(widest_below, shared(e));
    }
    return at;
}
