#include "label_units.h"

#include "ORV_outline.h"

#include <algorithm>
#include <set>
#include <utility>

namespace {

constexpr std::size_t pixels_in_one_go = 1 << 20;

}    // namespace

void label_units::take_plane(int t, int z, label_page& page)
{
    if (_taken.count == _taken.planes.size())
        _taken.planes.emplace_back();
    labelled_plane& plane = _taken.planes[_taken.count++];
    plane.t = t;
    plane.z = z;
    std::swap(plane.page, page);
    _taken.pixels += std::visit([](const auto& labels) { return labels.pixels.size(); }, plane.page);
    if (_taken.pixels >= pixels_in_one_go)
        hand_over();
}

std::map<int, labelled_units> label_units::finish()
{
    hand_over();
    collect();
    return std::move(_units);
}

void label_units::hand_over()
{
    collect();
    std::swap(_taken, _at_work);
    _taken.count = _taken.pixels = 0;
    _found = std::async(std::launch::async, outline_planes, std::span(_at_work.planes).first(_at_work.count));
}

label_units::found_rois label_units::outline_planes(std::span<labelled_plane> planes)
{
    found_rois found;
    for (labelled_plane& plane : planes)
        outline_plane(plane, found);
    return found;
}

void label_units::outline_plane(labelled_plane& plane, found_rois& found)
{
    auto regions = std::visit(
        [](auto& labels) { return outline_labels(labels.pixels, labels.width, labels.height); }, plane.page);
    const auto first = static_cast<std::ptrdiff_t>(found.size());
    std::set<std::uint32_t> seen;
    for (labelled_region& region : regions) {
        const long long holes = enclosed_pixels(region.chain) - region.pixels;
        const bool is_piece = !seen.insert(region.label).second;
        roi r(region.start.x(), region.start.y(), plane.z, plane.t, std::move(region.chain));
        std::string key = roidb::keygen(r);
        found.push_back({region.label, std::move(key), std::move(r), is_piece, holes});
    }
    std::ranges::sort(found.begin() + first, found.end(), {}, &found_roi::key);
}

// In the order of keys the first ROI of a unit is its head.
void label_units::collect()
{
    if (!_found.valid())
        return;
    for (found_rois found = _found.get(); found_roi & one : found) {
        const std::string& head = _units[one.r.t()].try_emplace(one.label, one.key).first->second;
        if (one.is_piece)
            _losses.push_back({"piece", one.key, "label " + std::to_string(one.label)});
        if (one.hole_pixels > 0)
            _losses.push_back({"hole", one.key, std::to_string(one.hole_pixels) + " pixels"});
        _hole_pixels += one.hole_pixels;
        _lineage.head_members.emplace(head, std::move(one.key));
        _rois.entry(std::move(one.r));
    }
}
