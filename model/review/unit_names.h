// unit_names.h - what nuclei are called, and finding them by it.
//
// A unit that a person named has that name. Any other has the name of its parent, of several the one with the
// smallest key; where that has several children, each adds a letter, "a", "b" and so on in the order of their
// keys. A nucleus that is not shown for some time points (a gap) has its name on both sides.
#pragma once
#include "curation.h"

#include <optional>
#include <string>
#include <unordered_map>

// The name a person gave to this very unit, or "".
[[nodiscard]] std::string own_name(const curation& model, const std::string& unit);

// What a unit is called, or "". Costs one walk over the units of each time point back to where it was named.
[[nodiscard]] std::string name_of(const curation& model, const std::string& unit);

using unit_name_table = std::unordered_map<std::string, std::string>;    // by unit

// The same for one unit after the other while nothing changes: `known` keeps what was found on the way.
[[nodiscard]] std::string name_of(const curation& model, const std::string& unit, unit_name_table& known);

// The same of all units that are called anything.
[[nodiscard]] unit_name_table names_of_all(const curation& model);
[[nodiscard]] unit_name_table names_of_all(const lineage& units);

// The unit with this number, as ID() gives them.
[[nodiscard]] std::optional<std::string> unit_of_number(curation& model, unsigned number);

// The unit that a person means by a ROI key, a unit's number or a name; the earliest of several.
[[nodiscard]] std::optional<std::string> find_unit(curation& model, const std::string& text);
