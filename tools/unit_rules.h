// unit_rules.h - units and links of a whole recording by one of the rules that make them.
#pragma once
#include "grouping.h"
#include "lineage_file.h"
#include "linking.h"
#include "orvtool.h"

enum class unit_rule { nearest, overlap };

struct rule_choice {
    unit_rule rule = unit_rule::nearest;
    double share = nearest_rule().share;    // overlap: of the larger outline, 0 one pixel
};

// What --rule and --share ask for; nothing, after one line on standard error, when they are wrong.
[[nodiscard]] std::optional<rule_choice> chosen_rule(const tool_arguments& arguments);

// The units and links of all ROIs. `roi_file` is the file that they were read from. Nothing, after one line
// on standard error, when it cannot be read again.
[[nodiscard]] std::optional<lineage> make_lineage(const std::string& roi_file, const roidb& rois,
                                                  const rule_choice& choice);

[[nodiscard]] lineage lineage_by_nearest(const roidb& rois, const nearest_rule& grouping = {},
                                         const linking_rule& linking = {});

// In overlap_rule.cpp.
[[nodiscard]] std::optional<lineage> lineage_by_overlap(const std::string& roi_file, double share);

struct lineage_counts {
    std::size_t units = 0;
    std::size_t links = 0;
    std::size_t divisions = 0;    // units with two or more children
};

[[nodiscard]] lineage_counts count(const lineage& made);

// "units 12" and so on, a line each, to standard output.
void print(const lineage_counts& counts);
