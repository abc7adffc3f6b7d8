// orvtool info - what a recording holds.
#include "roidb_plus.h"
#include "unit_rules.h"

#include <filesystem>
#include <iostream>

namespace {

constexpr const char* usage = R"(Usage: orvtool info FILE.roi [--lineage FILE]
Prints the numbers of ROIs, time points, focal planes, units, links and divisions of a recording, and the
folder of its images, a line each.

  --lineage FILE   units and links (the file beside the ROI file; without one there are none)
  --help           this text
)";

constexpr const char* valued[] = {"lineage"};

void print_extent(const roidb& rois)
{
    std::set<int> times;
    std::set<int> planes;
    for (const auto& [key, r] : rois.db) {
        times.insert(r.t());
        planes.insert(r.z());
    }
    std::cout << "ROIs " << rois.db.size() << "\ntime points " << times.size() << "\nplanes " << planes.size()
              << '\n';
}

int info(const tool_arguments& arguments)
{
    roidb_plus rois("");
    if (!rois.read_plus(arguments.files.front()))
        return exit_refused;
    const std::string filename = arguments.value("lineage", beside(arguments.files.front(), ".lineage"));
    lineage made;
    std::error_code error;
    if (arguments.has("lineage") || std::filesystem::exists(filename, error)) {
        auto read = read_lineage(filename, rois.name(), rois);
        if (!read)
            return exit_refused;
        made = std::move(*read);
    }
    std::cout << "dataset " << rois.name() << '\n';
    print_extent(rois);
    print(count(made));
    std::cout << "images " << image_folder(arguments, rois.name()) << '\n';
    return exit_done;
}

}    // namespace

constexpr tool_command command_info{"info", "what a recording holds", usage, valued, {}, 1, info};
