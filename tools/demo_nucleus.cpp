// One nucleus, and the space that all of them have.
#include "demo_embryo.h"

#include <algorithm>
#include <cmath>

pos3d demo_nucleus::in_own_axes(pos3d offset) const noexcept
{
    const double u = offset.x() * cos_angle + offset.y() * sin_angle;
    return {(u * cos_tilt + offset.z() * sin_tilt) / rx,
            (offset.y() * cos_angle - offset.x() * sin_angle) / ry,
            (offset.z() * cos_tilt - u * sin_tilt) / rz};
}

double demo_nucleus::half_height() const noexcept
{
    return std::sqrt(rz * rz * cos_tilt * cos_tilt + rx * rx * sin_tilt * sin_tilt);
}

demo_space space_of(const demo_options& options) noexcept
{
    const pos3d size(options.width, options.height, options.planes * focal_plane_step);
    const pos3d centre = (size - pos3d(1, 1, focal_plane_step)) / 2;
    // A stack of a few planes shows a slice of an embryo, not a flat one.
    return {centre, {0.45 * size.x(), 0.45 * size.y(), 0.45 * std::max(size.z(), 0.25 * size.x())}};
}
