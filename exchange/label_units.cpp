#include "label_units.h"

#include <utility>

void label_units::take_plane(int t, int z, label_page& page)
{
    finish_plane();
    std::swap(_page, page);
    _t = t;
    _z = z;
    _regions = std::async(std::launch::async,
                          [this] { return outline_labels(_page.pixels, _page.width, _page.height); });
}

void label_units::finish_plane()
{
    if (!_regions.valid())
        return;
    std::set<std::uint32_t> seen;
    std::set<std::uint32_t> split;
    for (std::vector<labelled_region> regions = _regions.get(); labelled_region & region : regions) {
        _hole_pixels += static_cast<std::size_t>(enclosed_pixels(region.chain) - region.pixels);
        if (!seen.insert(region.label).second)
            split.insert(region.label);
        roi r(region.start.x(), region.start.y(), _z, _t, std::move(region.chain));
        _members[region.label].insert(roidb::keygen(r));
        _rois->entry(std::move(r));
    }
    _split_labels += split.size();
}

labelled_units label_units::finish_time_point(lineage& units)
{
    finish_plane();
    labelled_units heads;
    for (const auto& [label, members] : std::exchange(_members, {})) {
        const std::string& head = *members.begin();
        heads.emplace(label, head);
        for (const std::string& member : members)
            units.head_members.emplace(head, member);
    }
    return heads;
}
