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
};

struct plane_rois {
    // In the order of the index, up to an entry whose ROI is gone.
    plane_rois(const roidb_plus& roidb, int t, int z);

    std::vector<plane_roi> rois;
    unsigned long revision;    // of the database: as long as it stays, key and record are there
};
