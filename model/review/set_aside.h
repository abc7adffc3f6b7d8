// set_aside.h - which units are set aside: they count as no nucleus, and nothing is looked for in them.
#pragma once
#include "curation.h"

#include <cstddef>

// What of a recording tells whether one ROI alone may be a nucleus.
struct recording_span {
    bool is_flat = true;    // all ROIs lie on one plane
    int first_t = 0;
    int last_t = 0;
};

[[nodiscard]] recording_span span_of(const curation& model);

// A unit of one ROI without a link, but only where a nucleus shows on several planes and at several time
// points.
[[nodiscard]] constexpr bool is_set_aside(const recording_span& span, std::size_t rois,
                                          bool is_linked) noexcept
{
    return rois <= 1 && !is_linked && !span.is_flat && span.first_t < span.last_t;
}
