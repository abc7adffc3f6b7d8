// orvtool score - how good units and links are, where the truth is known.
#include "error_line.h"
#include "number_texts.h"
#include "roidb_plus.h"
#include "scoring.h"
#include "unit_rules.h"

#include <charconv>
#include <iostream>

namespace {

constexpr const char* usage =
    R"(Usage: orvtool score FILE.roi [--lineage FILE | --rule nearest|overlap [--share X]]
                     [--truth FILE] [--format text|json]
Compares units, links and divisions with the truth: precision, recall and F, their harmonic mean; and DET
and TRA, the accuracy of detection and of tracking. All are shares of 1.

  --lineage FILE   those to compare (the file beside the ROI file)
  --rule NAME      compare those that this rule makes, see orvtool units --help
  --share X        for the rule
  --truth FILE     the truth (the .truth file beside the ROI file)
  --format NAME    text (default) or json
  --help           this text
)";

constexpr const char* valued[] = {"lineage", "rule", "share", "truth", "format"};

std::string json(const share_score& s)
{
    return "{\"precision\": " + number_text(s.precision()) + ", \"recall\": " + number_text(s.recall()) +
           ", \"f\": " + number_text(s.f()) + "}";
}

void print_json(const lineage_score& s)
{
    std::cout << "{\"units\": " << json(s.units) << ", \"links\": " << json(s.links)
              << ", \"divisions\": " << json(s.divisions) << ", \"det\": " << number_text(s.det)
              << ", \"tra\": " << number_text(s.tra) << "}\n";
}

std::string rounded(double value)
{
    char digits[32];
    return {digits, std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, 3).ptr};
}

void print_row(const char* name, const share_score& s)
{
    std::cout << name << "  precision " << rounded(s.precision()) << "  recall " << rounded(s.recall())
              << "  F " << rounded(s.f()) << "  (" << s.right << " of " << s.made << " right, " << s.found
              << " of " << s.real << " found)\n";
}

void print_text(const lineage_score& s)
{
    print_row("units    ", s.units);
    print_row("links    ", s.links);
    print_row("divisions", s.divisions);
    std::cout << "DET " << rounded(s.det) << "\nTRA " << rounded(s.tra) << '\n';
}

std::optional<truth> read_truth_of(const tool_arguments& arguments, const std::string& dataset)
{
    const std::string filename = arguments.value("truth", beside(arguments.files.front(), ".truth"));
    auto known = read_truth(filename);
    if (!known || known->dataset == dataset)
        return known;
    error_line(filename, ": different dataset");
    return std::nullopt;
}

int score(const tool_arguments& arguments)
{
    constexpr const char* formats[] = {"text", "json"};
    const auto format = one_of(arguments, "format", formats);
    const bool is_made = arguments.has("rule") || arguments.has("share");
    if (format && is_made && arguments.has("lineage"))
        return refuse_use("either --lineage or --rule");
    const auto choice = format ? chosen_rule(arguments) : std::nullopt;
    if (!choice)
        return exit_refused;
    const std::string& roi_file = arguments.files.front();
    roidb_plus rois("");
    if (!rois.read_plus(roi_file))
        return exit_refused;
    const auto known = read_truth_of(arguments, rois.name());
    if (!known)
        return exit_refused;
    const auto made =
        is_made ? make_lineage(roi_file, *choice)
                : read_lineage(arguments.value("lineage", beside(roi_file, ".lineage")), rois.name(), rois);
    if (!made)
        return exit_refused;
    const lineage_score result = score_lineage(*made, *known, rois);
    if (*format == "json")
        print_json(result);
    else
        print_text(result);
    return exit_done;
}

}    // namespace

constexpr tool_command command_score{"score", "compares units and links with the truth", usage, valued, {}, 1,
                                     score};
