// q_roiimgdb.h - the cache of ROI rasters around the time point in use.
//
// Owns every raster that it hands out. One that leaves the map stays readable
// until release_dropped(): an operation may still compare it with another.
#pragma once
#include "q_roiimg.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

class q_roiimgdb {
public:
    q_roiimgdb() = default;
    ~q_roiimgdb();
    q_roiimgdb(const q_roiimgdb&) = delete;
    q_roiimgdb& operator=(const q_roiimgdb&) = delete;

    // The mapped raster of r, made on first use. Making one drops those more than three time points away.
    q_roiimg* qrimg(const roi& r);

    // Drops the raster at this position.
    void remove(pos4i pos);

    // Drops every raster after time point t.
    void remove_after(int t);

    // Frees the dropped rasters.
    // REQUIRES: nobody holds a pointer to one of them
    void release_dropped() noexcept { _dropped.clear(); }

    std::map<std::string, q_roiimg*> db;    // ROI key to raster

private:
    using position = std::map<std::string, q_roiimg*>::iterator;

    void drop(position first, position last);
    void drop_far_from(int t);

    std::vector<std::unique_ptr<q_roiimg>> _dropped;
};
