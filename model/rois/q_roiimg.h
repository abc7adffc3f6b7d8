// q_roiimg.h - the raster of an ROI: its polygon for drawing and its filled mask.
#pragma once
#include "roi_mask.h"

#include <QPolygon>

class q_roiimg : public roi_mask {
public:
    explicit q_roiimg(roi r);    // the polygon and the box; the mask is made by map()

    // The outline in image pixels, no two equal points in a row.
    [[nodiscard]] const QPolygon& qpointarray() const;

    // The centre of the mask in image pixels, with the focal plane for z; not finite for an empty mask.
    [[nodiscard]] pos3d centroid() const noexcept { return {_cx, _cy, static_cast<double>(_z)}; }

private:
    mutable QPolygon _qpointarray;    // made when first asked for: what is only compared is never drawn
};

// The number of image pixels that both rasters cover; without a mask a raster covers its whole box.
int q_shared_pixels(q_roiimg* img1, q_roiimg* img2);

// True iff the rasters share a pixel; ends at the first one.
bool is_overlap(q_roiimg* img1, q_roiimg* img2);
