#include "q_roiimg.h"

#include <algorithm>
#include <utility>

q_roiimg::q_roiimg(roi r) : roi_mask(std::move(r)) {}

const QPolygon& q_roiimg::qpointarray() const
{
    if (!_qpointarray.isEmpty())
        return _qpointarray;
    const std::vector<pos2i> polygon = _make_polygon();
    _qpointarray.resize(static_cast<qsizetype>(polygon.size()));
    std::ranges::transform(polygon, _qpointarray.begin(), [](pos2i p) { return QPoint(p.x(), p.y()); });
    return _qpointarray;
}

int q_shared_pixels(q_roiimg* img1, q_roiimg* img2) { return shared_pixels(*img1, *img2); }

bool is_overlap(q_roiimg* img1, q_roiimg* img2) { return share_a_pixel(*img1, *img2); }
