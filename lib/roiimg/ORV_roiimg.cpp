#include "ORV_roiimg.h"

#include <utility>

roiimg::roiimg(roi r) : roi_mask(std::move(r))
{
    const std::vector<pos2i> polygon = _make_polygon();
    _points.assign(polygon.begin(), polygon.end());
}
