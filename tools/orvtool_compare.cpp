// orvtool compare - how two corrections of one recording differ.
#include "lineage_comparison.h"
#include "number_texts.h"
#include "orvtool.h"

#include <iostream>

namespace {

constexpr const char* usage = R"(Usage: orvtool compare FILE.roi A.lineage B.lineage [--format text|json]
Tells how two corrections of one recording differ, by time point, and how far they agree: twice what both have by
what they have together. Exit state 1 when they differ.

  --format NAME   text (default) or json
  --help          this text
)";

constexpr const char* valued[] = {"format"};

void print_json(const lineage_comparison& found)
{
    std::cout << "{\"only_a\": " << found.only_a << ", \"only_b\": " << found.only_b
              << ", \"units_f\": " << number_text(found.units_f)
              << ", \"links_f\": " << number_text(found.links_f) << ", \"differences\": [";
    const char* separator = "";
    for (const lineage_difference& d : found.differences) {
        std::cout << separator << "{\"kind\": \"" << d.kind << "\", \"t\": " << d.t << ", \"unit\": \""
                  << d.unit << "\", \"in\": \"" << d.in << "\"}";
        separator = ", ";
    }
    std::cout << "]}\n";
}

void print_text(const lineage_comparison& found)
{
    std::cout << "only in a " << found.only_a << "\nonly in b " << found.only_b << "\nunits F "
              << number_text(found.units_f) << "\nlinks F " << number_text(found.links_f) << '\n';
    for (const lineage_difference& d : found.differences)
        std::cout << "t " << d.t << "  " << d.kind << ' ' << d.unit << " only in " << d.in << '\n';
}

int compare(const tool_arguments& arguments)
{
    constexpr const char* formats[] = {"text", "json"};
    const auto format = one_of(arguments, "format", formats);
    if (!format)
        return exit_refused;
    roidb rois("");
    if (!rois.read(arguments.files[0]))
        return exit_refused;
    const auto a = read_lineage(arguments.files[1], rois.name(), rois);
    const auto b = a ? read_lineage(arguments.files[2], rois.name(), rois) : std::nullopt;
    if (!b)
        return exit_refused;
    const lineage_comparison found = compare_lineages(*a, *b);
    if (*format == "json")
        print_json(found);
    else
        print_text(found);
    return found.differences.empty() ? exit_done : exit_different;
}

}    // namespace

constexpr tool_command command_compare{"compare", "how two corrections differ", usage, valued, {}, 3,
                                       compare};
