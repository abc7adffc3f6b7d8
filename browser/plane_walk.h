// plane_walk.h - a walk over the ROIs of one plane that stands changes of the database.
#pragma once
#include "roidb_plus.h"

// When ROIs came or went since the last step, the walk starts over: it then yields ROIs a second
// time, but never one that is gone, and misses none.
class PlaneWalk {
public:
    PlaneWalk(roidb_plus& roidb, int t, int z) : _roidb(&roidb), _t(t), _z(z) { start(); }

    // The next ROI of the plane, with its outline; false at its end.
    [[nodiscard]] bool next(roi& r)
    {
        if (is_stale())
            start();
        return _roidb->find_plus_iter(_t, _z, r, _cursor);
    }

    // True iff ROIs came or went since the walk started: what next() yielded may be gone.
    [[nodiscard]] bool is_stale() const noexcept { return _revision != _roidb->revision(); }

private:
    void start()
    {
        _revision = _roidb->revision();
        _roidb->seek_iter(_t, _z, 0, _cursor);
    }

    roidb_plus* _roidb;
    int _t;
    int _z;
    unsigned long _revision = 0;
    roidb_plus::cursor _cursor;
};
