#include "unit_parting.h"

#include <algorithm>

namespace {

using side = roi_parting::side;

template <class Visit>
void for_each_pixel(const roi_mask& raster, double plane_step, const Visit& visit)
{
    for (int j = 0; j < raster.height(); ++j)
        for (int i = 0; i < raster.width(); ++i)
            if (raster.value(i, j) != 0)
                visit(static_cast<std::size_t>(j) * static_cast<std::size_t>(raster.width()) +
                          static_cast<std::size_t>(i),
                      pos3d(raster.top_left().x() + i, raster.top_left().y() + j, raster.z() * plane_step));
}

void append_pixels(const roi_mask& raster, double plane_step, std::vector<pos3d>& pixels)
{
    for_each_pixel(raster, plane_step, [&](std::size_t, pos3d p) { pixels.push_back(p); });
}

std::optional<two_sides> find_sides(const std::vector<keyed_raster>& rasters, double plane_step,
                                    const parting_request& how)
{
    if (how.above_plane)
        return cut_between_planes((*how.above_plane + 0.5) * plane_step);
    std::vector<pos3d> pixels;
    for (const auto& [key, raster] : rasters)
        if (!how.outline_plane || raster->z() == *how.outline_plane)
            append_pixels(*raster, plane_step, pixels);
    return find_two_ellipsoids(pixels, how.centres);
}

roi_parting part_raster(const keyed_raster& keyed, double plane_step, const two_sides& where)
{
    const roi_mask& raster = *keyed.second;
    roi_parting parted;
    parted.key = keyed.first;
    parted.z = raster.z();
    parted.box = raster.box();
    parted.sides.resize(static_cast<std::size_t>(raster.width()) * static_cast<std::size_t>(raster.height()));
    int plus = 0;
    for_each_pixel(raster, plane_step, [&](std::size_t i, pos3d p) {
        const bool is_plus = where.is_plus(p);
        parted.sides[i] = is_plus ? side::plus : side::minus;
        plus += is_plus;
    });
    const double share = raster.size() > 0 ? static_cast<double>(plus) / raster.size() : 0;
    parted.is_plus = share >= 0.5;
    parted.is_divided = std::max(share, 1 - share) < side_of_whole_roi;
    return parted;
}

void make_whole(roi_parting& parted, bool is_plus)
{
    parted.is_divided = false;
    parted.is_plus = is_plus;
    for (side& s : parted.sides)
        s = s == side::outside ? s : is_plus ? side::plus : side::minus;
}

}    // namespace

bool unit_parting::has_both_sides() const
{
    const auto reaches = [](bool plus) {
        return [plus](const roi_parting& r) { return r.is_divided || r.is_plus == plus; };
    };
    return std::ranges::any_of(rois, reaches(true)) && std::ranges::any_of(rois, reaches(false));
}

std::vector<pos3d> pixels_of(const std::vector<keyed_raster>& rasters, double plane_step)
{
    std::vector<pos3d> pixels;
    for (const auto& [key, raster] : rasters)
        append_pixels(*raster, plane_step, pixels);
    return pixels;
}

// Of a cut outline, the other ROIs stay on the plus side.
std::optional<unit_parting> part_rasters(const std::vector<keyed_raster>& rasters, double plane_step,
                                         const parting_request& how)
{
    std::optional<two_sides> where = find_sides(rasters, plane_step, how);
    if (!where)
        return std::nullopt;
    where->offset = how.offset;
    unit_parting parting{*where, {}};
    for (const keyed_raster& keyed : rasters) {
        roi_parting& parted = parting.rois.emplace_back(part_raster(keyed, plane_step, *where));
        if (how.outline_plane && keyed.second->z() != *how.outline_plane)
            make_whole(parted, true);
        else if (how.outline_plane)    // also of a small part
            parted.is_divided = std::ranges::count(parted.sides, side::plus) > 0 &&
                                std::ranges::count(parted.sides, side::minus) > 0;
        if (!parted.is_divided)
            make_whole(parted, parted.is_plus);
    }
    if (!parting.has_both_sides())
        return std::nullopt;
    return parting;
}
