#include "import_files.h"

#include "error_line.h"
#include "image_import.h"
#include "staged_output.h"

#include <filesystem>

namespace {

namespace fs = std::filesystem;

// In the order in which they appear: the ROI file last, as it is what is opened.
std::vector<std::string> names_of(const import_request& request)
{
    std::vector<std::string> names = {request.name + ".recording.json", request.name + ".lineage",
                                      request.name + ".roi"};
    if (!request.images.empty())
        names.insert(names.begin(), request.name);
    return names;
}

bool refuse(const std::string& where, const char* why)
{
    error_line(where, ": ", why);
    return false;
}

bool fits(const image_stack& images, const image_stack& labels, const std::string& folder)
{
    if (images.width() != labels.width() || images.height() != labels.height())
        return refuse(folder, "the images are of another size than the labels");
    if (images.planes() != labels.planes())
        return refuse(folder, "the images have other focal planes than the labels");
    return true;
}

outcome write_images(const import_request& request, const image_stack& labels, const fs::path& folder,
                     const run_callbacks& callbacks)
{
    auto series = find_series(request.images);
    if (!series)
        return outcome::refused;
    image_stack images(std::move(*series), request.window);
    if (!images.open())
        return outcome::refused;
    if (images.times() != labels.times()) {
        refuse(request.images, "the images have other time points than the labels");
        return outcome::refused;
    }
    std::error_code error;
    fs::create_directory(folder, error);
    const outcome written = import_images(images, folder, request.range, callbacks);
    if (written == outcome::done && !fits(images, labels, request.images))
        return outcome::refused;
    return written;
}

}    // namespace

bool is_free(const import_request& request)
{
    std::error_code error;
    for (const std::string& name : names_of(request))
        if (const fs::path path = fs::path(request.folder) / name;
            !request.replaces && fs::exists(fs::symlink_status(path, error)))
            return refuse(path.string(), "is there already; --force replaces it");
    return true;
}

outcome write_imported(const import_request& request, const imported_recording& made,
                       const image_stack& labels, const run_callbacks& callbacks)
{
    staged_output output(request.folder);
    if (!output.open())
        return outcome::refused;
    const auto place = [&](const char* ending) { return output.place(request.name + ending).string(); };
    if (!write_recording_file(place(".recording.json"), made.info) ||
        !write_lineage(place(".lineage"), request.name, made.units) || !made.rois.write(place(".roi")))
        return outcome::refused;
    if (!request.images.empty())
        if (const outcome images = write_images(request, labels, place(""), callbacks);
            images != outcome::done)
            return images;
    return output.commit(names_of(request)) ? outcome::done : outcome::refused;
}
