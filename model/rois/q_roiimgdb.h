// q_roiimgdb.h - the cache of ROI rasters around the time point in use.
//
// Owns every raster that it hands out. One that leaves the map stays readable
// until release_dropped(): an operation may still compare it with another.
#pragma once
#include "plane_rois.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

class q_roiimgdb {
public:
    q_roiimgdb() = default;
    ~q_roiimgdb();
    q_roiimgdb(const q_roiimgdb&) = delete;
    q_roiimgdb& operator=(const q_roiimgdb&) = delete;

    // The mapped raster of r, made on first use. Making one drops those more than three time points away.
    q_roiimg* qrimg(const roi& r);

    // The mapped rasters of ROIs of one time point, in their order; makes those that are missing in as many
    // threads as the machine runs at once.
    std::vector<q_roiimg*> qrimgs(const std::vector<const roi*>& rois);

    // The ROIs of plane (t, z), for a walk; shared by all walks over this plane until ROIs come or go.
    [[nodiscard]] std::shared_ptr<plane_rois> plane(const roidb_plus& roidb, int t, int z);

    // The raster of an ROI of such a plane, looked up once.
    q_roiimg* raster_of(plane_roi& r)
    {
        if (!r.raster) {
            r.raster = qrimg(*r.record);
            r.box = r.raster->box();
        }
        return r.raster;
    }

    // Drops the raster at this position, also for walks that begin later.
    void remove(pos4i pos);

    // Drops every raster after time point t.
    void remove_after(int t);

    // Frees the dropped rasters.
    // REQUIRES: nobody holds a pointer to one of them, or walks over a plane
    void release_dropped();

    // Changes whenever rasters of time point t are freed.
    [[nodiscard]] unsigned long releases(int t) const;

    std::map<std::string, q_roiimg*> db;    // ROI key to raster

private:
    using position = std::map<std::string, q_roiimg*>::iterator;

    q_roiimg* enter(std::string key, std::unique_ptr<q_roiimg> raster);
    void drop(position first, position last);
    void drop_far_from(int t);

    // The time point of the raster made last, and how many there were then: none of them lies far from it.
    std::optional<int> _kept_around;
    std::size_t _kept = 0;
    std::map<int, unsigned long> _releases;    // of rasters, by time point
    std::vector<std::unique_ptr<q_roiimg>> _dropped;
    std::map<std::pair<int, int>, std::shared_ptr<plane_rois>> _planes;    // by time point and focal plane
};
