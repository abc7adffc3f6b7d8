#include "label_units.h"

#include "ORV_outline.h"

#include <set>
#include <utility>

void label_units::take_plane(int t, int z, const label_page& page)
{
    std::set<std::uint32_t> seen;
    std::set<std::uint32_t> split;
    for (labelled_region& region : outline_labels(page.pixels, page.width, page.height)) {
        _hole_pixels += static_cast<std::size_t>(enclosed_pixels(region.chain) - region.pixels);
        if (!seen.insert(region.label).second)
            split.insert(region.label);
        roi r(region.start.x(), region.start.y(), z, t, std::move(region.chain));
        _members[region.label].insert(roidb::keygen(r));
        _rois->entry(std::move(r));
    }
    _split_labels += split.size();
}

labelled_units label_units::finish_time_point(lineage& units)
{
    labelled_units heads;
    for (const auto& [label, members] : std::exchange(_members, {})) {
        const std::string& head = *members.begin();
        heads.emplace(label, head);
        for (const std::string& member : members)
            units.head_members.emplace(head, member);
    }
    return heads;
}
