// finding_rules.h - what may be wrong with one unit, from what it looks like and what lies near it.
#pragma once
#include "finding.h"
#include "unit_scene.h"

#include <vector>

// All findings of a unit, by ranks_before(), scores too low to be listed left out; of one kind, the best.
// REQUIRES: the scene is loaded
[[nodiscard]] std::vector<finding> findings_of(unit_scene& scene, scene_unit& u);

// That of an ROI in no unit, where its time point has units.
[[nodiscard]] std::vector<finding> findings_of_roi(const unit_scene& scene, const std::string& key);
