// lineage_file.h - units, links and what a person noted of them, and the file that keeps them.
//
// A lineage file is text, a keyword and its values a line: "NAME dataset" first, then "UNIT head
// member" for each member, "LINK child parent", "ELITE head", "EDITED head", "REVIEWED head", "DISMISSED kind
// head [other]", "GAP earlier later" and "CALLED head name", each group in ascending order.
#pragma once
#include "ORV_roidb.h"

#include <compare>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

// A finding that a person looked at and found to be none.
struct dismissal {
    std::string kind;     // one word
    std::string head;     // the key of a unit, or of an ROI in none
    std::string other;    // of the second one, where the finding is about two; else empty

    auto operator<=>(const dismissal&) const = default;
};

struct lineage {
    std::multimap<std::string, std::string> head_members;    // unit head to each of its members
    std::multimap<std::string, std::string> links;           // child head to parent head
    std::set<std::string> elite;                             // unit heads, like the two below
    std::set<std::string> edited = {};
    std::set<std::string> reviewed = {};
    std::set<dismissal> dismissed = {};
    std::set<std::pair<std::string, std::string>> gaps =
        {};                                            // earlier to later head, 2 or more time points apart
    std::map<std::string, std::string> called = {};    // head to a name, which may hold blanks

    bool operator==(const lineage&) const = default;
};

// Member to the head of its unit.
[[nodiscard]] std::map<std::string, std::string> heads_of_members(const lineage& units);

// All pairs in ascending order; a multimap keeps those of one key as they came.
[[nodiscard]] std::vector<std::pair<std::string, std::string>>
in_order(const std::multimap<std::string, std::string>& pairs);

// Reads a whole file and checks it: its name is `dataset`, every member names an ROI and is in one
// unit, every unit holds the ROI that names it, every link joins two units one time point apart, every gap
// two that lie further apart, every mark and name is of a unit, every dismissal of ROIs. Otherwise nothing,
// and one line on standard error: the file, the number of the line, and what is wrong; or that it cannot be
// opened, or not be read to its end.
[[nodiscard]] std::optional<lineage> read_lineage(const std::string& filename, const std::string& dataset,
                                                  const roidb& rois);

// The same, but for the ROIs: what was saved beside ROIs that are not there yet, or not any more.
[[nodiscard]] std::optional<lineage> read_lineage(const std::string& filename, const std::string& dataset);

// True iff CALLED can keep the name: not empty, no blank at its ends, no control characters.
[[nodiscard]] bool is_unit_name(const std::string& name) noexcept;

// Replaces the file at once. A name that cannot be kept is left out, with one line. When writing fails:
// false, "Cannot open " and its name on standard error, and a second line that tells why it could not be
// written once it was open.
bool write_lineage(const std::string& filename, const std::string& dataset, const lineage& units);
