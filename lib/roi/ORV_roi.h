// ORV_roi.h - one region of interest: the outline of a nucleus in one image.
//
// The position is the start pixel of the outline in pixels, with its focal plane
// and its time point. The outline is a chain code, one character per step of one
// pixel: '0' up, '1' left, '2' down, '3' right; any other character is no step.
#pragma once
#include "ORV_pos.h"

#include <string>
#include <utility>

class roi : public pos4i {
public:
    roi() = default;
    roi(pos4i position, std::string outline);
    roi(int x, int y, int z, int t, std::string outline);

    [[nodiscard]] const std::string& outline() const& noexcept { return _outline; }
    [[nodiscard]] std::string outline() && noexcept { return std::move(_outline); }

    // True iff position and outline are equal.
    [[nodiscard]] bool operator==(const roi& o) const noexcept;

protected:
    std::string _outline;
};
