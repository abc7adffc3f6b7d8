// orvtool export - writes a recording as other programs read it.
#include "error_line.h"
#include "export.h"
#include "mark_files.h"
#include "orvtool.h"
#include "tool_progress.h"

#include <algorithm>
#include <filesystem>
#include <iostream>

namespace {

constexpr const char* usage =
    R"(Usage: orvtool export ctc|geff|trackmate|csv FILE.roi --out TARGET [OPTION]...
Writes the units and links of a recording as other programs read them, and prints what is lost: the numbers here,
nucleus by nucleus in TARGET.losses.txt.

  ctc              masks and a table of tracks. TARGET is a folder named like 02_RES, or the folder of a data set,
                   in which the next free one is made
  geff             TARGET is a zarr folder with a graph
  trackmate        TARGET is an XML file
  csv              TARGET is a folder of tables

  --out TARGET     where it is written
  --force          replace an export that is there already, or add to a data set
  --lineage FILE   units and links (the .lineage file beside the ROI file)
  --fp FILE        false positives (the .fp file beside the ROI file, where there is one)
  --image-root DIR the folder that holds one folder of images for each recording, which tell its size (the variable
                   ORVBROWSER_IMAGE_ROOT, else /image/)
  --help           this text
)";

constexpr const char* valued[] = {"out", "lineage", "fp", "image-root"};
constexpr const char* flags[] = {"force"};
constexpr const char* formats[] = {"ctc", "geff", "trackmate", "csv"};    // in the order of export_format

// False after one line when the file cannot be used.
bool read_false_positives(const tool_arguments& arguments, const std::string& dataset,
                          std::set<std::string>& marks)
{
    const std::string file = arguments.value("fp", beside(arguments.files[1], ".fp"));
    std::error_code error;
    if (!arguments.has("fp") && !std::filesystem::exists(file, error))
        return true;
    bool is_read = true;
    const error_listener listener([&](const std::string&) { is_read = false; });
    read_mark_file(file, dataset, "FP", marks);
    return is_read;
}

void print(const loss_report& report)
{
    std::cout << "units " << report.units << "\nlinks " << report.links << '\n';
    for (const auto& [kind, count] : report.counts())
        std::cout << "lost: " << kind << ' ' << count << '\n';
    std::cout << "written " << report.written << '\n';
}

int run_export(const tool_arguments& arguments)
{
    const auto format = std::ranges::find(formats, arguments.files[0]);
    if (format == std::end(formats))
        return refuse_use("export takes ctc, geff, trackmate or csv, not " + arguments.files[0]);
    if (arguments.value("out", "").empty())
        return refuse_use("export needs --out");
    const std::string& roi_file = arguments.files[1];
    roidb rois("");
    if (!rois.read(roi_file))
        return exit_refused;
    const auto units =
        read_lineage(arguments.value("lineage", beside(roi_file, ".lineage")), rois.name(), rois);
    std::set<std::string> false_positives;
    if (!units || !read_false_positives(arguments, rois.name(), false_positives))
        return exit_refused;
    const export_request request{.rois = rois,
                                 .units = *units,
                                 .info = read_recording_file(recording_file_of(roi_file)),
                                 .false_positives = std::move(false_positives),
                                 .image_folder = image_folder(arguments, rois.name()),
                                 .target = arguments.value("out", ""),
                                 .replaces = arguments.has("force")};
    loss_report report;
    tool_progress progress;
    const auto chosen = static_cast<export_format>(format - std::begin(formats));
    if (export_recording(chosen, request, report, progress.callbacks()) != outcome::done)
        return exit_refused;
    print(report);
    return exit_done;
}

}    // namespace

constexpr tool_command command_export{
    "export", "writes a recording as other programs read it", usage, valued, flags, 2, run_export};
