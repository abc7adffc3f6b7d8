#include "cutting_plane.h"

void unit_pixels::add(const q_roiimg& raster)
{
    for (int j = 0; j < raster.height(); ++j) {
        const std::size_t first = _x.size();
        for (int i = 0; i < raster.width(); ++i)
            if (raster.value(i, j) != 0)
                _x.push_back(raster.top_left().x() + i);
        if (_x.size() > first)
            _rows.push_back({first, _x.size(), static_cast<double>(raster.top_left().y() + j),
                             raster.z() * _plane_step, (raster.z() + 1) * _plane_step});
    }
}

// For every pixel the dot products of its two ends with the normal, summed from x to z. Counters as
// wide as the doubles let the compiler handle several pixels at a time.
plane_section unit_pixels::section(pos3d nom, pos3d point) const
{
    std::int64_t crossing = 0;
    std::int64_t below = 0;
    for (const row& r : _rows) {
        const double from_y = (r.y - point.y()) * nom.y();
        const double from_z = (r.z - point.z()) * nom.z();
        const double from_next_z = (r.next_z - point.z()) * nom.z();
        for (std::size_t i = r.first; i < r.last; ++i) {
            const double in_plane = (_x[i] - point.x()) * nom.x() + from_y;
            const double cos1 = in_plane + from_z;
            const double cos2 = in_plane + from_next_z;
            crossing += cos1 * cos2 < 0;
            below += cos1 < 0;
        }
    }
    return {static_cast<unsigned int>(crossing), below<static_cast<std::int64_t>(_x.size()), below> 0};
}
