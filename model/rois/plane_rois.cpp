#include "plane_rois.h"

#include "keygen.h"

plane_rois::plane_rois(const roidb_plus& roidb, int t, int z)
    : _revision(roidb.revision()), _records(roidb.db.size()), _entries(roidb.tz_xy_db.size())
{
    const auto [first, last] = roidb.tz_xy_db.equal_range(keygen(pos4i(0, 0, z, t)));
    for (auto entry = first; entry != last; ++entry) {
        const auto found = roidb.db.find(keygen(pos4i(entry->second.x(), entry->second.y(), z, t)));
        if (found != roidb.db.end())
            _copies.emplace_back(*found);
    }
    rois.reserve(_copies.size());
    for (const auto& [key, record] : _copies)
        rois.push_back({&key, &record});
}
