// ROI files: read as a stream would, index and records agree, what is written reads back, every outline has a
// raster.
#include "harness.h"
#include "keygen.h"
#include "q_roiimg.h"
#include "roidb_plus.h"

#include <algorithm>
#include <sstream>

namespace {

constexpr bool is_in_range(int field) { return field >= 0 && field <= 999; }

bool has_plain_keys(const roidb_plus& rois)
{
    return std::all_of(rois.db.begin(), rois.db.end(), [](const auto& entry) {
        const roi& r = entry.second;
        return is_in_range(r.x()) && is_in_range(r.y()) && is_in_range(r.z()) && is_in_range(r.t());
    });
}

std::size_t walked_rois(roidb_plus& rois)
{
    std::size_t walked = 0;
    std::string plane;
    for (const auto& [key, at] : rois.tz_xy_db) {
        if (key == plane)
            continue;
        plane = key;
        const pos4i p = decode(key);
        rois.seek(p.t(), p.z(), 0);
        for (roi r; rois.find_plus(p.t(), p.z(), r);)
            ++walked;
    }
    return walked;
}

void check_index(roidb_plus& rois, const std::string& filename)
{
    for (const auto& [key, r] : rois.db) {
        require(key == keygen(r), "an ROI stands under its key");
        require(is_word(r.outline()), "an outline is a word");
        const auto [first, last] = rois.tz_xy_db.equal_range(keygen(pos4i(0, 0, r.z(), r.t())));
        const pos2i start = r;
        require(std::any_of(first, last, [&](const auto& entry) { return entry.second == start; }),
                "an ROI is in the index");
    }
    if (rois.tz_xy_db.size() != rois.db.size() || !has_plain_keys(rois))
        return;
    require(walked_rois(rois) == rois.db.size(), "the planes hold every ROI once");
    const auto before = rois.db;
    require(rois.replace_plus(filename, rois.t_min(), rois.t_max()), "a file that was read is read again");
    require(rois.db == before && rois.tz_xy_db.size() == before.size(), "replaced by itself nothing changes");
}

// The readers accept what extraction from a stream accepts.
void check_against_stream(const roidb_plus& rois, const std::string& text)
{
    std::istringstream words(text);
    std::string name = "fuzz";
    words >> name;
    roidb expected(name);
    int x = 0;
    int y = 0;
    int z = 0;
    int t = 0;
    for (std::string outline; words >> x >> y >> z >> t >> outline;)
        expected.entry(roi(x, y, z, t, outline));
    require(rois.name() == expected.name() && rois.db == expected.db, "a stream reads the same");
}

void check_round_trip(const roidb_plus& rois)
{
    const std::string copy = scratch().path("copy");
    require(rois.write(copy), "a file is written");
    roidb_plus again("fuzz");
    require(again.read_plus(copy), "what is written opens");
    require(again.db == rois.db && again.name() == rois.name(), "what is written reads back");
}

void check_raster(q_roiimg& raster)
{
    raster.map();
    require(raster.width() >= 1 && raster.width() <= roi_mask::max_side && raster.height() >= 1 &&
                raster.height() <= roi_mask::max_side,
            "a box is within its limit");
    const unsigned char* const end =
        raster.image() + static_cast<std::ptrdiff_t>(raster.width()) * raster.height();
    require(std::all_of(raster.image(), end, [](unsigned char pixel) { return pixel <= 1; }),
            "a pixel is 0 or 1");
    require(std::count(raster.image(), end, 1) == raster.size(), "the size is the number of pixels");
    require(q_shared_pixels(&raster, &raster) == raster.size(),
            "a raster shares all of its pixels with itself");
    const pos3d centre = raster.centroid();
    require(raster.size() == 0 ||
                (centre.x() >= raster.top_left().x() && centre.x() <= raster.bottom_right().x() &&
                 centre.y() >= raster.top_left().y() && centre.y() <= raster.bottom_right().y()),
            "the centroid is in the box");
    for (const QPoint& p : raster.qpointarray())
        require(p.x() >= raster.top_left().x() && p.x() <= raster.bottom_right().x() &&
                    p.y() >= raster.top_left().y() && p.y() <= raster.bottom_right().y(),
                "the polygon is in the box");
}

void check_rasters(const roidb_plus& rois)
{
    std::unique_ptr<q_roiimg> previous;
    for (const auto& [key, r] : rois.db) {
        auto raster = std::make_unique<q_roiimg>(r);
        check_raster(*raster);
        if (previous) {
            const int shared = q_shared_pixels(raster.get(), previous.get());
            require(shared == q_shared_pixels(previous.get(), raster.get()), "sharing has no order");
            require(shared <= std::min(raster->size(), previous->size()), "no more is shared than is there");
            require(is_overlap(raster.get(), previous.get()) == (shared > 0), "an overlap is a shared pixel");
        }
        previous = std::move(raster);
    }
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string filename = input_file(data, size);
    roidb_plus rois("fuzz");
    require(rois.read_plus(filename), "a file that is there opens");
    check_against_stream(rois, {reinterpret_cast<const char*>(data), size});
    check_round_trip(rois);
    check_rasters(rois);
    check_index(rois, filename);
    return 0;
}
