// plane_rois.h - the ROIs of one plane as operations look at them: key, record and raster at hand.
#pragma once
#include "q_roiimg.h"
#include "roidb_plus.h"

#include <string>
#include <utility>
#include <vector>

struct plane_roi {
    const std::string* key;    // of its plane_rois, like the record
    const roi* record;
    q_roiimg* raster = nullptr;    // once q_roiimgdb::raster_of() was asked for it
    pixel_box box = {};            // of the raster, at hand without a look at it

    static constexpr int not_painted = -1;
    int painted_as = not_painted;    // how the picture on view shows it, for the canvas
};

struct plane_rois {
    // In the order of the index, without entries whose ROI is gone. Keys and records are copies, which
    // can be read as long as this object lives, whatever becomes of the database.
    plane_rois(const roidb_plus& roidb, int t, int z);
    plane_rois(const plane_rois&) = delete;    // `rois` points into it
    plane_rois& operator=(const plane_rois&) = delete;

    // True iff the copies are those of the database. Does not notice as many ROIs put straight into the
    // database's maps as were taken out of them.
    [[nodiscard]] bool is_current(const roidb_plus& roidb) const noexcept
    {
        return _revision == roidb.revision() && _records == roidb.db.size() &&
               _entries == roidb.tz_xy_db.size();
    }

    std::vector<plane_roi> rois;

private:
    std::vector<std::pair<std::string, roi>> _copies;
    unsigned long _revision;
    std::size_t _records;
    std::size_t _entries;
};
