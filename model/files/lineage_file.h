// lineage_file.h - units, links and elite marks, and the file that keeps them.
//
// A lineage file is text, a keyword and its values a line: "NAME dataset" first, then "UNIT head
// member" for each member, "LINK child parent", "ELITE head", each group in ascending order.
#pragma once
#include "ORV_roidb.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

struct lineage {
    std::multimap<std::string, std::string> head_members;    // unit head to each of its members
    std::multimap<std::string, std::string> links;           // child head to parent head
    std::set<std::string> elite;                             // unit heads

    bool operator==(const lineage&) const = default;
};

// Member to the head of its unit.
[[nodiscard]] std::map<std::string, std::string> heads_of_members(const lineage& units);

// All pairs in ascending order; a multimap keeps those of one key as they came.
[[nodiscard]] std::vector<std::pair<std::string, std::string>>
in_order(const std::multimap<std::string, std::string>& pairs);

// Reads a whole file and checks it: its name is `dataset`, every member names an ROI and is in one
// unit, every unit holds the ROI that names it, every link joins two units one time point apart, every elite
// mark is on a unit. Otherwise nothing, and one line on standard error: the file, the number of the line, and
// what is wrong; or that it cannot be opened, or not be read to its end.
[[nodiscard]] std::optional<lineage> read_lineage(const std::string& filename, const std::string& dataset,
                                                  const roidb& rois);

// Replaces the file at once. When that fails: false, "Cannot open " and its name on standard error, and a
// second line that tells why it could not be written once it was open.
bool write_lineage(const std::string& filename, const std::string& dataset, const lineage& units);
