// The rule "overlap": ROIs that share pixels flow together, and so do units of successive time points.
#include "curation.h"
#include "unit_rules.h"

std::optional<lineage> lineage_by_overlap(const std::string& roi_file, double share)
{
    auto rois = std::make_unique<roidb_plus>("");
    if (!rois->read_plus(roi_file))
        return std::nullopt;
    curation model;
    model.open_rois(std::move(rois));
    for (int t = model.min_time_point(); t <= model.max_time_point(); ++t)
        model.make_units(t, share);
    for (int t = model.min_time_point() + 1; t <= model.max_time_point(); ++t)
        model.makeLinkage(t);
    return model.current_lineage();
}
