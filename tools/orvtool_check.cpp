// orvtool check - what may be wrong in the units and links of a recording.
#include "mark_files.h"
#include "orvtool.h"
#include "review.h"

#include <charconv>
#include <filesystem>
#include <iostream>

namespace {

constexpr const char* usage = R"(Usage: orvtool check FILE.roi [--lineage FILE] [--format text|json|csv]
Lists what may be wrong in the units and links of a recording, the likeliest errors first: one finding for each unit,
with what is proposed. What was dismissed is left out, and so are the units marked as false positives in the file
beside the ROI file. Exit state 1 when there are any.

  --lineage FILE   units and links (the file beside the ROI file)
  --format NAME    text (default), json or csv
  --help           this text
)";

constexpr const char* valued[] = {"lineage", "format"};

std::string score_text(double score)
{
    char digits[32];
    return {digits, std::to_chars(digits, digits + sizeof digits, score, std::chars_format::fixed, 3).ptr};
}

std::string joined(const std::vector<std::string>& words, const std::string& quote, const char* separator)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : separator) + quote + word + quote;
    return text;
}

std::map<finding_kind, std::size_t> count_kinds(const std::vector<const finding*>& findings)
{
    std::map<finding_kind, std::size_t> counts;
    for (std::size_t kind = 0; kind < finding_kind_count; ++kind)
        counts[static_cast<finding_kind>(kind)] = 0;
    for (const finding* const f : findings)
        ++counts[f->kind];
    return counts;
}

void print_json(const std::vector<const finding*>& findings)
{
    std::cout << "{\"findings\": [";
    const char* separator = "";
    for (const finding* const f : findings) {
        std::cout << separator << "{\"kind\": \"" << word_of(f->kind) << "\", \"t\": " << f->t
                  << ", \"unit\": \"" << f->unit << "\", \"with\": [" << joined(f->with, "\"", ", ")
                  << "], \"score\": " << score_text(f->score) << ", \"proposal\": \"" << word_of(f->proposal)
                  << "\"}";
        separator = ", ";
    }
    std::cout << "], \"counts\": {";
    separator = "";
    for (const auto& [kind, number] : count_kinds(findings)) {
        std::cout << separator << '"' << word_of(kind) << "\": " << number;
        separator = ", ";
    }
    std::cout << "}}\n";
}

void print_csv(const std::vector<const finding*>& findings)
{
    std::cout << "kind,t,unit,with,score,proposal\n";
    for (const finding* const f : findings)
        std::cout << word_of(f->kind) << ',' << f->t << ',' << f->unit << ',' << joined(f->with, "", " ")
                  << ',' << score_text(f->score) << ',' << word_of(f->proposal) << '\n';
}

void print_text(const std::vector<const finding*>& findings)
{
    for (const finding* const f : findings)
        std::cout << score_text(f->score) << "  t " << f->t << "  " << f->unit << "  " << name_of(f->kind)
                  << ": " << reason_of(*f) << ". " << proposal_of(*f) << (f->with.empty() ? "" : " (")
                  << joined(f->with, "", ", ") << (f->with.empty() ? "\n" : ")\n");
    for (const auto& [kind, number] : count_kinds(findings))
        if (number > 0)
            std::cout << word_of(kind) << ' ' << number << '\n';
    if (findings.empty())
        std::cout << "nothing left\n";
}

// False, after one line on standard error, when a file cannot be read.
bool open_curated(const tool_arguments& arguments, curation& model)
{
    const std::string& roi_file = arguments.files.front();
    auto rois = std::make_unique<roidb_plus>("");
    if (!rois->read_plus(roi_file))
        return false;
    model.open_rois(std::move(rois));
    model.take_info(read_recording_file(recording_file_of(roi_file)));
    auto units =
        read_lineage(arguments.value("lineage", beside(roi_file, ".lineage")), model.dataset(), model.rois());
    if (!units)
        return false;
    model.replace_lineage(std::move(*units));
    std::error_code error;
    const std::string marks = beside(roi_file, ".fp");
    std::set<std::string> false_positives;
    if (std::filesystem::exists(marks, error) &&
        !read_mark_file(marks, model.dataset(), "FP", false_positives))
        return false;
    model.add_false_positives(false_positives);
    return true;
}

int check(const tool_arguments& arguments)
{
    constexpr const char* formats[] = {"text", "json", "csv"};
    const auto format = one_of(arguments, "format", formats);
    curation model;
    if (!format || !open_curated(arguments, model))
        return exit_refused;
    review all(model);
    all.finish();
    const auto& findings = all.ranked();
    if (*format == "json")
        print_json(findings);
    else if (*format == "csv")
        print_csv(findings);
    else
        print_text(findings);
    return findings.empty() ? exit_done : exit_different;
}

}    // namespace

constexpr tool_command command_check{"check", "lists what may be wrong", usage, valued, {}, 1, check};
