// plane_rois.h - the ROIs of one plane as operations look at them: key, record and raster at hand.
#pragma once
#include "q_roiimg.h"
#include "roidb_plus.h"

#include <string>
#include <vector>

struct plane_roi {
    const std::string* key;    // of the database, like the record
    const roi* record;
    q_roiimg* raster = nullptr;                      // once q_roiimgdb::raster_of() was asked for it
    int left = 0, top = 0, right = 0, bottom = 0;    // its box, at hand without a look at the raster

    void set_raster(q_roiimg* r)
    {
        raster = r;
        left = r->top_left().x();
        top = r->top_left().y();
        right = r->bottom_right().x();
        bottom = r->bottom_right().y();
    }

    // REQUIRES: raster
    [[nodiscard]] bool box_contains(int x, int y) const noexcept
    {
        return left <= x && x <= right && top <= y && y <= bottom;
    }

    // False when no pixel can be shared.
    // REQUIRES: raster
    [[nodiscard]] bool box_meets(const q_roiimg& other) const noexcept
    {
        return left <= other.bottom_right().x() && other.top_left().x() <= right &&
               top <= other.bottom_right().y() && other.top_left().y() <= bottom;
    }
};

struct plane_rois {
    // In the order of the index, up to an entry whose ROI is gone.
    plane_rois(const roidb_plus& roidb, int t, int z);

    std::vector<plane_roi> rois;
    unsigned long revision;    // of the database: as long as it stays, key and record are there
};
