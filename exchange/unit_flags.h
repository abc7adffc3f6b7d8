// unit_flags.h - what is noted of a unit as yes or no, in every format that can hold it.
#pragma once
#include "export_graph.h"

struct unit_flag {
    const char* name;    // lower case; in XML upper case
    const char* meaning;
    bool (*is_set)(const export_request& request, const export_unit& unit);
};

inline constexpr unit_flag unit_flags[] = {
    {"reviewed", "looked at and left as it is",
     [](const export_request& r, const export_unit& u) { return r.units.reviewed.contains(u.head); }},
    {"doubtful", "has more than one parent",
     [](const export_request& r, const export_unit& u) { return r.units.links.count(u.head) > 1; }},
    {"false_positive", "marked as no nucleus",
     [](const export_request&, const export_unit& u) { return u.is_false_positive; }},
    {"elite", "known to be right",
     [](const export_request& r, const export_unit& u) { return r.units.elite.contains(u.head); }},
    {"edited", "changed by hand",
     [](const export_request& r, const export_unit& u) { return r.units.edited.contains(u.head); }},
};
