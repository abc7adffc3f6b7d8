#include "set_aside.h"

#include <algorithm>

recording_span span_of(const curation& model)
{
    if (!model.has_rois())
        return {};
    const auto& rois = model.rois().db;
    const bool is_flat = std::ranges::all_of(
        rois, [&](const auto& entry) { return entry.second.z() == rois.begin()->second.z(); });
    return {is_flat, model.min_time_point(), model.max_time_point()};
}
