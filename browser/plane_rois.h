// plane_rois.h - the ROIs of one plane as operations look at them: key, record and raster at hand.
#pragma once
#include "q_roiimg.h"
#include "roidb_plus.h"

#include <string>
#include <vector>

struct plane_roi {
    const std::string* key;    // of the database, like the record
    const roi* record;
    q_roiimg* raster = nullptr;    // once q_roiimgdb::raster_of() was asked for it
    pixel_box box = {};            // of the raster, at hand without a look at it

    static constexpr int not_painted = -1;
    int painted_as = not_painted;    // how the picture on view shows it, for the canvas
};

struct plane_rois {
    // In the order of the index, up to an entry whose ROI is gone.
    plane_rois(const roidb_plus& roidb, int t, int z);

    // As long as it is, keys and records are there. Does not notice as many ROIs put straight into the
    // database's maps as were taken out of them.
    [[nodiscard]] bool is_current(const roidb_plus& roidb) const noexcept
    {
        return _revision == roidb.revision() && _records == roidb.db.size() &&
               _entries == roidb.tz_xy_db.size();
    }

    std::vector<plane_roi> rois;

private:
    unsigned long _revision;
    std::size_t _records;
    std::size_t _entries;
};
