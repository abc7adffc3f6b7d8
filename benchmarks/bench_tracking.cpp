// Tracking, units and links through the large recording against the same overlap tests on rasters that
// are made already; and the making of rasters.
#include "bench_window.h"
#include "topics.h"

#include "keygen.h"

#include <benchmark/benchmark.h>

#include <array>
#include <map>
#include <memory>

namespace {

// Every raster of a recording, by time point and focal plane.
class AllRasters {
public:
    using plane = std::vector<std::unique_ptr<q_roiimg>>;

    explicit AllRasters(const roidb_plus& db) : first_time_point(db.t_min()), last_time_point(db.t_max())
    {
        for (const auto& [key, r] : db.db) {
            auto& raster = _planes[{r.t(), r.z()}].emplace_back(std::make_unique<q_roiimg>(r));
            raster->map();
            pixels += raster->width() * raster->height();
        }
    }

    [[nodiscard]] const plane& at(int t, int z) const
    {
        static const plane none;
        const auto found = _planes.find({t, z});
        return found == _planes.end() ? none : found->second;
    }

    [[nodiscard]] const std::map<std::array<int, 2>, plane>& planes() const { return _planes; }

    int first_time_point;
    int last_time_point;
    double pixels = 0;    // of all masks

private:
    std::map<std::array<int, 2>, plane> _planes;
};

std::size_t overlaps(q_roiimg* raster, const AllRasters::plane& others)
{
    std::size_t count = 0;
    for (const auto& other : others)
        count += is_overlap(raster, other.get());
    return count;
}

// What the search looks at: each ROI that was reached against the planes beside it, and against its own
// plane one time point later; at the first time point also against its own.
std::size_t test_as_tracking_does(const AllRasters& rasters, const std::set<std::string>& reached)
{
    std::size_t count = 0;
    for (const auto& [position, plane] : rasters.planes()) {
        const auto [t, z] = position;
        for (const auto& raster : plane) {
            if (!reached.contains(keygen(*raster)))
                continue;
            for (const int next : {z - 1, z + 1})
                count += overlaps(raster.get(), rasters.at(t, next));
            count += overlaps(raster.get(), rasters.at(t + 1, z));
            if (t == rasters.first_time_point)
                count += overlaps(raster.get(), plane);
        }
    }
    return count;
}

// Each ROI against the planes beside it; the first one of a unit also against its own.
std::size_t test_as_units_do(const AllRasters& rasters, const std::multimap<std::string, std::string>& units)
{
    std::size_t count = 0;
    for (const auto& [position, plane] : rasters.planes()) {
        const auto [t, z] = position;
        for (const auto& raster : plane) {
            for (const int next : {z - 1, z + 1})
                count += overlaps(raster.get(), rasters.at(t, next));
            if (units.contains(keygen(*raster)))
                count += overlaps(raster.get(), plane);
        }
    }
    return count;
}

std::size_t test_as_links_do(const AllRasters& rasters)
{
    std::size_t count = 0;
    for (const auto& [position, plane] : rasters.planes())
        for (const auto& raster : plane)
            count += overlaps(raster.get(), rasters.at(position[0] - 1, position[1]));
    return count;
}

}    // namespace

std::vector<comparison> tracking_comparisons(const bench_data& data)
{
    const auto window = std::make_shared<BenchWindow>(data.large());
    const auto rasters = std::make_shared<AllRasters>(*window->m_roidb);
    const auto rois = static_cast<double>(window->m_roidb->db.size());
    const auto reached = std::make_shared<std::set<std::string>>();
    const auto units = std::make_shared<std::multimap<std::string, std::string>>();

    const auto track = [window, reached] {
        window->m_selected_roi_set.clear();
        window->m_fwd_roi_set.clear();
        window->setCurrentTimePoint(window->m_min_time_point);
        window->pushButton_select_all_clicked();
        const double seconds = seconds_of([&] { window->track_forward(); });
        *reached = window->m_fwd_roi_set;
        return seconds;
    };
    const auto forget_units = [window] {
        window->m_head_members.clear();
        window->m_members_head.clear();
    };
    const auto make_units = [window, units, forget_units] {
        forget_units();
        const double seconds = seconds_of([&] { window->make_units(); });
        *units = window->m_head_members;
        return seconds;
    };
    const auto make_links = [window, units, make_units] {
        if (window->m_head_members.empty())
            (void)make_units();
        window->m_linkage_multimap.clear();
        return seconds_of([&] { window->make_links(); });
    };
    // By the other rule: whoever comes next finds no units.
    const auto make_units_by_nearest = [window, forget_units] {
        forget_units();
        const double seconds = seconds_of([&] { window->make_units_by_nearest(); });
        forget_units();
        return seconds;
    };
    const auto make_links_by_nearest = [window, forget_units] {
        forget_units();
        window->make_units_by_nearest();
        window->m_linkage_multimap.clear();
        const double seconds = seconds_of([&] { window->make_links_by_nearest(); });
        forget_units();
        return seconds;
    };
    const auto track_floor = [rasters, reached, track] {
        if (reached->empty())
            (void)track();
        return seconds_of([&] { benchmark::DoNotOptimize(test_as_tracking_does(*rasters, *reached)); });
    };
    const auto units_floor = [rasters, units, make_units] {
        if (units->empty())
            (void)make_units();
        return seconds_of([&] { benchmark::DoNotOptimize(test_as_units_do(*rasters, *units)); });
    };
    const auto links_floor = [rasters] {
        return seconds_of([&] { benchmark::DoNotOptimize(test_as_links_do(*rasters)); });
    };
    const auto map_all = [rasters] {
        return seconds_of([&] {
            for (const auto& [position, plane] : rasters->planes())
                for (const auto& raster : plane) {
                    q_roiimg made(static_cast<const roi&>(*raster));
                    made.map();
                }
        });
    };
    const auto map_floor = [rasters] {
        return seconds_of([&] {
            for (const auto& [position, plane] : rasters->planes())
                for (const auto& raster : plane) {
                    const auto size = static_cast<std::size_t>(raster->width() * raster->height());
                    const auto mask = std::make_unique<unsigned char[]>(size);
                    benchmark::DoNotOptimize(mask.get());
                }
        });
    };
    return {
        {"forward tracking, large recording", "the same overlap tests", 2, "ROI", rois, track, track_floor},
        {"make units, large recording", "the same overlap tests", 2, "ROI", rois, make_units, units_floor},
        {"make links, large recording", "the same overlap tests", 2, "ROI", rois, make_links, links_floor},
        {"make units by the nearest", "the rasters", 2, "ROI", rois, make_units_by_nearest, map_all},
        {"make links by the nearest", "the rasters", 2, "ROI", rois, make_links_by_nearest, map_all},
        {"make rasters", "writing the bytes of the masks", 2, "pixel", rasters->pixels, map_all, map_floor}};
}
