// orvtool import - makes a recording of the label images of another program.
#include "import.h"
#include "orvtool.h"
#include "tool_numbers.h"
#include "tool_progress.h"

#include <algorithm>
#include <cmath>
#include <iostream>

namespace {

constexpr const char* usage = R"(Usage: orvtool import labels|ctc SOURCE --out FOLDER --name NAME [OPTION]...
Makes a recording of label images: FOLDER/NAME.roi, NAME.lineage, NAME.recording.json and, with --images, the
folder NAME of images. Each piece of a label in a focal plane becomes an ROI, each label a unit.

  labels          SOURCE is a folder of TIFF files, one for each time point, whose pages are focal planes, or one
                  for each time point and focal plane, with numbers in their names
  ctc             SOURCE is a folder of masks with a table of tracks (*_track.txt), or has one in it: tracks
                  become links, and gaps where a nucleus is not shown

  --out FOLDER    where the recording is written; made when it is missing
  --name NAME     its name
  --force         replace what has one of these names there already
  --images DIR    grey images of the same size and numbers, written as 8-bit JPEG
  --range L:H     what becomes black and what white; auto (default): 0.1 % of all pixels are darker or as dark,
                  0.1 % brighter
  --bin N         N x N pixels become one: the mean, or the label that most of them have
  --crop X,Y,W,H  only this part of the images, in pixels before --bin
  --times A:B     only these time points; A becomes 0
  --planes A:B    only these focal planes; A becomes 0
  --pixel UM      width of a pixel in micrometres (0.105), before --bin
  --plane UM      from one focal plane to the next, in micrometres (0.5)
  --interval S    from one time point to the next, in seconds
  --help          this text
)";

constexpr const char* valued[] = {"out",   "name",   "images", "range", "bin",     "crop",
                                  "times", "planes", "pixel",  "plane", "interval"};
constexpr const char* flags[] = {"force"};

bool read_range(const std::string& text, std::optional<index_range>& range)
{
    const auto ends = numbers_in<int>(text, ':');
    if (ends.size() != 2 || ends[0] < 0 || ends[1] < ends[0])
        return false;
    range = index_range{ends[0], ends[1]};
    return true;
}

bool read_crop(const std::string& text, std::optional<image_crop>& crop)
{
    const auto n = numbers_in<int>(text, ',');
    constexpr int most = 65535;
    if (n.size() != 4 || n[0] < 0 || n[1] < 0 || n[2] < 1 || n[3] < 1 || *std::ranges::max_element(n) > most)
        return false;
    crop = image_crop{n[0], n[1], n[2], n[3]};
    return true;
}

bool read_grey(const std::string& text, std::optional<grey_range>& range)
{
    if (text == "auto")
        return true;
    const auto ends = numbers_in<double>(text, ':');
    if (ends.size() != 2 || !(ends[0] < ends[1]))
        return false;
    range = grey_range{ends[0], ends[1]};
    return true;
}

bool read_bin(const std::string& text, int& bin)
{
    const auto n = numbers_in<int>(text, ',');
    if (n.size() != 1 || n[0] < 1 || n[0] > 1000)
        return false;
    bin = n[0];
    return true;
}

bool read_positive(const std::string& text, double& value)
{
    const auto n = numbers_in<double>(text, ',');
    if (n.size() != 1 || !(n[0] > 0) || !std::isfinite(n[0]))
        return false;
    value = n[0];
    return true;
}

// False after one line when the value of an option is none.
bool read_options(const tool_arguments& arguments, import_request& request)
{
    double interval = 0;
    const struct {
        const char* name;
        std::function<bool(const std::string&)> read;
    } options[] = {
        {"range", [&](const std::string& v) { return read_grey(v, request.range); }},
        {"bin", [&](const std::string& v) { return read_bin(v, request.window.bin); }},
        {"crop", [&](const std::string& v) { return read_crop(v, request.window.crop); }},
        {"times", [&](const std::string& v) { return read_range(v, request.window.times); }},
        {"planes", [&](const std::string& v) { return read_range(v, request.window.planes); }},
        {"pixel", [&](const std::string& v) { return read_positive(v, request.info.scale.pixel_um); }},
        {"plane", [&](const std::string& v) { return read_positive(v, request.info.scale.plane_um); }},
        {"interval", [&](const std::string& v) { return read_positive(v, interval); }},
    };
    for (const auto& option : options)
        if (arguments.has(option.name) && !option.read(arguments.value(option.name, "")))
            return refuse_use("no value for --" + std::string(option.name) + ": " +
                              arguments.value(option.name, "")),
                   false;
    if (interval > 0)
        request.info.interval_s = interval;
    return true;
}

void print(const import_report& report)
{
    std::cout << "ROIs " << report.rois << "\nunits " << report.units << "\nlinks " << report.links
              << "\ngaps " << report.gaps << '\n';
    for (const std::string& note : report.notes)
        std::cout << "note: " << note << '\n';
}

int import(const tool_arguments& arguments)
{
    const std::string& kind = arguments.files[0];
    if (kind != "labels" && kind != "ctc")
        return refuse_use("import takes labels or ctc, not " + kind);
    for (const char* const needed : {"out", "name"})
        if (arguments.value(needed, "").empty())
            return refuse_use("import needs --" + std::string(needed));
    import_request request{.kind = kind == "ctc" ? import_kind::ctc : import_kind::labels,
                           .source = arguments.files[1],
                           .folder = arguments.value("out", ""),
                           .name = arguments.value("name", ""),
                           .images = arguments.value("images", ""),
                           .replaces = arguments.has("force")};
    if (!read_options(arguments, request))
        return exit_refused;
    import_report report;
    tool_progress progress;
    if (import_recording(request, report, progress.callbacks()) != outcome::done)
        return exit_refused;
    print(report);
    return exit_done;
}

}    // namespace

constexpr tool_command command_import{"import", "makes a recording of label images", usage, valued, flags, 2,
                                      import};
