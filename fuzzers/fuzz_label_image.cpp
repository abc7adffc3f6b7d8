// A TIFF file as label image and as grey image: a whole recording that reads back, or nothing at all.
#include "harness.h"
#include "import.h"
#include "lineage_file.h"

#include <filesystem>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string source = input_file(data, size, "input.tif");
    const std::string folder = scratch().path("made");
    const import_request request{.source = source,
                                 .folder = folder,
                                 .name = "emb",
                                 .images = source,
                                 .window = {.bin = size % 2 == 0 ? 1 : 2}};
    import_report report;
    if (import_recording(request, report) != outcome::done) {
        require(!std::filesystem::exists(folder), "nothing is left of what failed");
        return 0;
    }
    roidb rois("");
    require(rois.read(folder + "/emb.roi") && rois.db.size() == report.rois, "all ROIs are written");
    const auto units = read_lineage(folder + "/emb.lineage", "emb", rois);
    require(units && units->head_members.size() == report.rois, "every ROI is in a unit");
    for (const auto& [key, r] : rois.db)
        require(r.x() >= 0 && r.x() < 1000 && r.y() >= 0 && r.y() < 1000 && r.z() >= 0 && r.z() < 1000,
                "positions go to 999");
    std::filesystem::remove_all(folder);
    return 0;
}
