// ORV_roiimg.h - the raster of an ROI, without the toolkit.
#pragma once
#include "roi_mask.h"

#include <list>

class roiimg : public roi_mask {
public:
    explicit roiimg(roi r);    // the polygon and the box; the mask is made by map()

    // The outline in image pixels, no two equal positions in a row.
    [[nodiscard]] const std::list<pos2i>& points() const noexcept { return _points; }

private:
    std::list<pos2i> _points;
};
