// Import of label images against reading them with the TIFF library alone, export of masks against writing
// the same TIFF files without a label, and the other formats against the rasters that sizes and places are
// measured on.
#include "topics.h"

#include "export.h"
#include "import.h"
#include "label_tiff.h"
#include "q_roiimg.h"

#include <filesystem>
#include <fstream>
#include <memory>
#include <tiffio.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr int stacks = 20;
constexpr int side = 512;
constexpr int planes = 30;

// 128 ellipsoids side by side, with ten outlines each.
void write_stack(const fs::path& file)
{
    constexpr int cell = 64;
    constexpr int cell_planes = 15;
    constexpr int radius = 20;
    label_tiff stack(side, side, planes);
    for (int z = 0; z < planes; ++z)
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x) {
                const int dx = x % cell - cell / 2, dy = y % cell - cell / 2;
                const int dz = 4 * (z % cell_planes - cell_planes / 2);
                if (dx * dx + dy * dy + dz * dz < radius * radius)
                    stack.set_label(x, y, z,
                                    static_cast<std::uint16_t>(1 + x / cell + y / cell * cell +
                                                               z / cell_planes * cell * cell));
            }
    std::ofstream(file, std::ios::binary) << stack.bytes();
}

// A folder in memory where there is one, so that no disk is measured.
struct scratch_folder {
    scratch_folder() { fs::create_directories(path); }
    ~scratch_folder() { fs::remove_all(path); }
    scratch_folder(const scratch_folder&) = delete;
    scratch_folder& operator=(const scratch_folder&) = delete;

    const fs::path path = (fs::exists("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path()) /
                          ("orvbrowser-bench-" + std::to_string(::getpid()));
};
using scratch = std::shared_ptr<const scratch_folder>;

// Not mapped into memory, as files that others may shorten must not be.
void read_with_library_alone(const fs::path& folder)
{
    std::vector<unsigned char> pixels;
    for (const auto& entry : fs::directory_iterator(folder)) {
        TIFF* const file = TIFFOpen(entry.path().c_str(), "rm");
        do {
            pixels.resize(static_cast<std::size_t>(TIFFStripSize(file)));
            for (std::uint32_t strip = 0; strip < TIFFNumberOfStrips(file); ++strip)
                TIFFReadEncodedStrip(file, strip, pixels.data(), -1);
        } while (TIFFReadDirectory(file));
        TIFFClose(file);
    }
}

// The first time points of the large recording, each ROI a unit.
struct exported_recording {
    static constexpr int time_points = 5;

    explicit exported_recording(const std::string& filename)
    {
        (void)rois.read(filename);
        std::erase_if(rois.db, [](const auto& entry) { return entry.second.t() >= time_points; });
        for (const auto& [key, r] : rois.db)
            units.head_members.emplace(key, key);
    }

    [[nodiscard]] export_request request(const std::string& target) const
    {
        return {.rois = rois, .units = units, .target = target, .replaces = true};
    }

    roidb rois{""};
    lineage units;
};

void write_empty_masks(const fs::path& folder, const fs::path& masks)
{
    for (const auto& entry : fs::directory_iterator(masks))
        if (entry.path().extension() == ".tif") {
            const std::string bytes(fs::file_size(entry.path()), '\0');
            std::ofstream(folder / entry.path().filename(), std::ios::binary) << bytes;
        }
}

comparison of_import(const scratch& folder)
{
    const fs::path labels = folder->path / "labels";
    fs::create_directory(labels);
    for (int t = 0; t < stacks; ++t)
        write_stack(labels / ("t" + std::to_string(t) + ".tif"));
    const auto run = [folder, labels] {
        const import_request request{
            .source = labels, .folder = folder->path / "imported", .name = "labels", .replaces = true};
        import_report report;
        return seconds_of([&] { (void)import_recording(request, report); });
    };
    const auto floor = [folder, labels] { return seconds_of([&] { read_with_library_alone(labels); }); };
    return {"import label images of 512 x 512 x 30 pixels",
            "the TIFF library alone",
            3,
            "stack",
            stacks,
            run,
            floor};
}

}    // namespace

std::vector<comparison> exchange_comparisons(const bench_data& data)
{
    const auto folder = std::make_shared<const scratch_folder>();
    const auto recording = std::make_shared<const exported_recording>(data.large());
    const auto exporting = [recording, folder](export_format format, const char* name) {
        return [=] {
            loss_report report;
            return seconds_of(
                [&] { (void)export_recording(format, recording->request(folder->path / name), report); });
        };
    };
    const timed_run masks = exporting(export_format::ctc, "01_RES");
    (void)masks();
    const auto empty = [folder] {
        fs::create_directory(folder->path / "empty");
        return seconds_of([&] { write_empty_masks(folder->path / "empty", folder->path / "01_RES"); });
    };
    const auto rasters = [recording] {
        return seconds_of([&] {
            for (const auto& [key, r] : recording->rois.db)
                q_roiimg(r).map();
        });
    };
    const auto rois = static_cast<double>(recording->rois.db.size());
    const auto of_text = [&](const char* work, export_format format, const char* name) {
        return comparison{work, "the rasters", 4, "ROI", rois, exporting(format, name), rasters};
    };
    return {of_import(folder),
            {"export as masks, and check them", "the same files without a label", 3, "time point",
             exported_recording::time_points, masks, empty},
            of_text("export as GEFF", export_format::geff, "out.geff"),
            of_text("export as TrackMate XML", export_format::trackmate, "out.xml"),
            of_text("export as CSV", export_format::csv, "out.csv")};
}
