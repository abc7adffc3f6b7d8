// unit_rules.h - units and links of a whole recording by one of the rules that make them.
#pragma once
#include "lineage_file.h"
#include "making.h"
#include "orvtool.h"

// What --rule and --share ask for; nothing, after one line on standard error, when they are wrong.
[[nodiscard]] std::optional<making> chosen_rule(const tool_arguments& arguments);

// The units and links of all ROIs, as the window makes them. Nothing, after one line on standard error, when
// the file cannot be read.
[[nodiscard]] std::optional<lineage> make_lineage(const std::string& roi_file, const making& choice);

struct lineage_counts {
    std::size_t units = 0;
    std::size_t links = 0;
    std::size_t divisions = 0;    // units with two or more children
};

[[nodiscard]] lineage_counts count(const lineage& made);

// "units 12" and so on, a line each, to standard output.
void print(const lineage_counts& counts);
