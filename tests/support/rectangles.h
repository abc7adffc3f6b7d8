// rectangles.h - rasters of rectangular ROIs.
#pragma once
#include "ORV_roiimg.h"

#include <memory>
#include <string>
#include <vector>

struct rectangle {
    int x, y, z;
    int width, height;
};

inline roi rectangle_roi(const rectangle& r, int t = 0)
{
    const auto steps = [](int n, char step) { return std::string(static_cast<std::size_t>(n), step); };
    return {r.x, r.y, r.z, t,
            steps(r.height, '2') + steps(r.width, '3') + steps(r.height, '0') + steps(r.width, '1')};
}

// Mapped rasters, and what they are seen through.
class raster_list {
public:
    explicit raster_list(const std::vector<rectangle>& rectangles)
    {
        for (const rectangle& r : rectangles) {
            _owned.push_back(std::make_unique<roiimg>(rectangle_roi(r)));
            _owned.back()->map();
            _all.push_back(_owned.back().get());
        }
    }

    [[nodiscard]] const std::vector<const roi_mask*>& all() const noexcept { return _all; }

private:
    std::vector<std::unique_ptr<roiimg>> _owned;
    std::vector<const roi_mask*> _all;
};
