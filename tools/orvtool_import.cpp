// orvtool import - makes a recording of the label images of another program.
#include "import_options.h"
#include "orvtool.h"
#include "tool_progress.h"

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

// False after one line when the value of an option is none.
bool read_options(const tool_arguments& arguments, import_request& request)
{
    for (const import_option& option : import_options())
        if (const std::string value = arguments.value(option.name, "");
            arguments.has(option.name) && !option.read(value, request))
            return refuse_use("no value for --" + std::string(option.name) + ": " + value), false;
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
