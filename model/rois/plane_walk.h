// plane_walk.h - a walk over the ROIs of one plane that stands changes of the database.
#pragma once
#include "q_roiimgdb.h"

// When ROIs came or went since the last step, the walk starts over: it then yields ROIs a second
// time, but never one that is gone, and misses none.
class PlaneWalk {
public:
    PlaneWalk(const roidb_plus& roidb, q_roiimgdb& rasters, int t, int z)
        : _roidb(&roidb), _rasters(&rasters), _t(t), _z(z)
    {
        start();
    }

    // The next ROI of the plane; null at its end. It can be read until ROIs come or go.
    [[nodiscard]] plane_roi* next()
    {
        if (is_stale())
            start();
        return _next < _plane->rois.size() ? &_plane->rois[_next++] : nullptr;
    }

    // True iff ROIs came or went since the walk started: what next() yielded may be gone.
    [[nodiscard]] bool is_stale() const noexcept { return !_plane->is_current(*_roidb); }

private:
    void start()
    {
        _plane = _rasters->plane(*_roidb, _t, _z);
        _next = 0;
    }

    const roidb_plus* _roidb;
    q_roiimgdb* _rasters;
    int _t;
    int _z;
    std::shared_ptr<plane_rois> _plane;
    std::size_t _next = 0;
};
