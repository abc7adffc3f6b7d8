#include "export.h"

#include "ctc_check.h"
#include "ctc_export.h"
#include "error_line.h"
#include "staged_output.h"
#include "text_exports.h"

#include <QRegularExpression>

#include <filesystem>

namespace {

namespace fs = std::filesystem;

const std::string report_ending = ".losses.txt";
constexpr double share_of_writing = 0.6;    // of the time that masks take; the rest is checking them

// What is written, and what may be replaced by it.
struct target_place {
    fs::path parent;
    std::string name;
    QRegularExpression own_names;    // of what an export of this format holds
};

outcome refuse(const fs::path& where, const char* why)
{
    error_line(where.string(), ": ", why);
    return outcome::refused;
}

bool is_there(const fs::path& path)
{
    std::error_code error;
    return fs::exists(fs::symlink_status(path, error));
}

bool is_empty_folder(const fs::path& path)
{
    std::error_code error;
    return fs::is_directory(path, error) && fs::is_empty(path, error);
}

bool matches(const std::string& name, const QRegularExpression& pattern)
{
    return pattern.match(QString::fromStdString(name)).hasMatch();
}

// In a data set, the first number that nothing has yet.
std::string free_result(const fs::path& data_set)
{
    std::error_code error;
    std::set<int> taken;
    for (fs::directory_iterator entry(data_set, error), end; !error && entry != end; entry.increment(error))
        if (const std::string name = entry->path().filename().string();
            std::isdigit(static_cast<unsigned char>(name[0])))
            taken.insert(std::atoi(name.substr(0, 6).c_str()));
    int number = 1;
    while (taken.contains(number))
        ++number;
    return roidb::digit(number, 2) + "_RES";
}

target_place place_of(export_format format, const fs::path& target)
{
    const fs::path folder = target.has_filename() ? target : target.parent_path();
    const std::string name = folder.filename().string();
    switch (format) {
    case export_format::ctc: {
        const QRegularExpression own(R"(^((mask|man_track)\d+\.tif|(res|man)_track\.txt|TRA)$)");
        if (matches(name, QRegularExpression(R"(^\d+_(RES|GT|ST)$)")))
            return {folder.parent_path(), name, own};
        return {folder, free_result(folder), own};
    }
    case export_format::geff:
        return {folder.parent_path(), name, QRegularExpression(R"(^(\.zgroup|\.zattrs|nodes|edges)$)")};
    case export_format::csv:
        return {folder.parent_path(), name, QRegularExpression(R"(^(units\.csv|links\.csv|columns\.txt)$)")};
    case export_format::trackmate:
        break;
    }
    return {folder.parent_path(), name, {}};
}

bool holds_only(const fs::path& folder, const QRegularExpression& names)
{
    std::error_code error;
    for (fs::recursive_directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        if (!matches(entry->path().filename().string(), names))
            return false;
        if (entry->path().filename() != "TRA")
            entry.disable_recursion_pending();
    }
    return !error;
}

// Refused, after one line, when something is there that must not be replaced.
outcome check_place(const export_request& request, const target_place& place, bool is_file)
{
    const fs::path whole = place.parent / place.name;
    if (place.name.empty() || place.name == "." || place.name == "..")
        return refuse(request.target, "is no name for an export");
    const bool is_in_data_set =
        is_there(request.target) && !is_there(whole) && !is_empty_folder(request.target);
    if (!request.replaces && is_in_data_set)
        return refuse(request.target, "is there already; --force adds to it");
    if (!is_there(whole))
        return outcome::done;
    std::error_code error;
    if (!is_empty_folder(whole) && !request.replaces)
        return refuse(whole, "is there already; --force replaces it");
    if (is_file != !fs::is_directory(whole, error) || (!is_file && !holds_only(whole, place.own_names)))
        return refuse(whole, "holds something else than an export of this kind and is not replaced");
    return outcome::done;
}

outcome write_ctc_folder(const export_request& request, const fs::path& folder, loss_report& report,
                         const run_callbacks& callbacks)
{
    const bool is_result = folder.filename().string().ends_with("_RES");
    const fs::path inner = is_result ? folder : folder / "TRA";
    const std::string prefix = is_result ? "mask" : "man_track";
    const std::string table = is_result ? "res_track.txt" : "man_track.txt";
    std::error_code error;
    fs::create_directories(inner, error);
    const outcome written =
        write_ctc(request, inner, prefix, table, report, part_of(callbacks, 0, share_of_writing));
    return written == outcome::done ? check_ctc(inner.string(), prefix, (inner / table).string(),
                                                part_of(callbacks, share_of_writing, 1))
                                    : written;
}

outcome write_format(export_format format, const export_request& request, const fs::path& to,
                     loss_report& report, const run_callbacks& callbacks)
{
    if (format == export_format::ctc)
        return write_ctc_folder(request, to, report, callbacks);
    if (format == export_format::trackmate)
        return write_trackmate(request, to, report, callbacks);
    std::error_code error;
    fs::create_directories(to, error);
    return format == export_format::geff ? write_geff(request, to, report, callbacks)
                                         : write_csv(request, to, report, callbacks);
}

}    // namespace

outcome export_recording(export_format format, const export_request& request, loss_report& report,
                         const run_callbacks& callbacks)
{
    report = {};
    const target_place place = place_of(format, request.target);
    if (const outcome free = check_place(request, place, format == export_format::trackmate);
        free != outcome::done)
        return free;
    staged_output output(place.parent);
    if (!output.open())
        return outcome::refused;
    if (!callbacks.step(0, 1))
        return outcome::stopped;
    if (const outcome written = write_format(format, request, output.place(place.name), report, callbacks);
        written != outcome::done)
        return written;
    report.written = (place.parent / place.name).string();
    if (!write_whole_file(output.place(place.name + report_ending), report.text()) ||
        !output.commit({place.name, place.name + report_ending}))
        return outcome::refused;
    return outcome::done;
}
