#include "q_roiimg.h"

#include <utility>

q_roiimg::q_roiimg(roi r) : roi_mask(std::move(r))
{
    const std::vector<pos2i> polygon = _make_polygon();
    _qpointarray.reserve(static_cast<qsizetype>(polygon.size()));
    for (const pos2i point : polygon)
        _qpointarray.append(QPoint(point.x(), point.y()));
}

int q_shared_pixels(q_roiimg* img1, q_roiimg* img2) { return shared_pixels(*img1, *img2); }

bool is_overlap(q_roiimg* img1, q_roiimg* img2) { return share_a_pixel(*img1, *img2); }
