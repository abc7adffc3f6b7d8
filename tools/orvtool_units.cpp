// orvtool units - makes the units and links of a recording.
#include "error_line.h"
#include "roidb_plus.h"
#include "unit_rules.h"

#include <filesystem>

namespace {

constexpr const char* usage =
    R"(Usage: orvtool units FILE.roi [--out FILE.lineage] [--rule nearest|overlap] [--share X]
Makes the units and links of a recording anew and prints their numbers.

  --out FILE    write them to this lineage file; without it nothing is written
  --force       replace that file when it is there already
  --rule NAME   nearest: ROIs whose centres are each other's nearest, and units by their centres (default);
                overlap: ROIs that share pixels, and units that do
  --share X     nearest: part of the smaller ROI that two must share (0.3);
                overlap: part of the larger one, 0 is a pixel (0)
  --help        this text
)";

constexpr const char* valued[] = {"out", "rule", "share"};
constexpr const char* flags[] = {"force"};

int units(const tool_arguments& arguments)
{
    const auto choice = chosen_rule(arguments);
    if (!choice)
        return exit_refused;
    const std::string target = arguments.value("out", "");
    std::error_code error;
    if (arguments.has("out") && !arguments.has("force") && std::filesystem::exists(target, error)) {
        error_line("orvtool: ", target, " is there already; --force replaces it");
        return exit_refused;
    }
    roidb_plus rois("");
    if (!rois.read_plus(arguments.files.front()))
        return exit_refused;
    const auto made = make_lineage(arguments.files.front(), *choice);
    if (!made || (arguments.has("out") && !write_lineage(target, rois.name(), *made)))
        return exit_refused;
    print(count(*made));
    return exit_done;
}

}    // namespace

constexpr tool_command command_units{"units", "makes units and links", usage, valued, flags, 1, units};
