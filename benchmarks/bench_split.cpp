// Splitting a unit of 30 planes x 60 x 60 pixels: the search for the plane, and the cut into ROIs, two
// ROI makers a member.
#include "bench_window.h"
#include "topics.h"

#include "body.h"
#include "cutting_plane.h"
#include "keygen.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <memory>

namespace {

constexpr int planes = 30;
constexpr int side = 60;    // pixels
constexpr int search_width = 30;
constexpr int searched_planes = 2 * search_width + 1;

const pos3d normal(0.8, -0.36, 0.48);
const pos3d centre(39.5, 39.5, planes / 2 * focal_plane_step);

// A recording of one unit.
std::string unit_file()
{
    std::string outline;
    for (const char step : {'2', '3', '0', '1'})
        outline.append(side, step);
    const std::string filename = (std::filesystem::temp_directory_path() / "bench_split.roi").string();
    std::ofstream file(filename);
    file << "recording\n";
    for (int z = 0; z < planes; ++z)
        file << "10 10 " << z << " 0 " << outline << '\n';
    return filename;
}

// Looks at every pixel of the unit once.
std::size_t pass_over_pixels(const std::vector<q_roiimg*>& members)
{
    std::size_t inside = 0;
    for (const q_roiimg* const raster : members)
        for (int i = 0; i < raster->width() * raster->height(); ++i)
            inside += raster->image()[i] != 0;
    return inside;
}

}    // namespace

std::vector<comparison> split_comparisons()
{
    const auto window = std::make_shared<BenchWindow>(unit_file());
    std::vector<q_roiimg*> members;
    const std::string unit = window->m_roidb->db.begin()->first;
    for (const auto& [key, r] : window->m_roidb->db) {
        window->m_head_members.emplace(unit, key);
        window->m_members_head.emplace(key, unit);
        members.push_back(window->m_q_roiimgdb->qrimg(r));
    }
    const auto search = [window, unit] {
        const SilentStream silent(std::cout);
        return seconds_of([&] { window->search_cutting_position(unit, normal, centre, search_width); });
    };
    const auto search_floor = [members] {
        return seconds_of([&] {
            for (int i = 0; i < searched_planes; ++i)
                benchmark::DoNotOptimize(pass_over_pixels(members));
        });
    };
    const auto cut = [window, unit] {
        const SilentStream silent(std::cout);
        std::list<roi> plus;
        std::list<roi> minus;
        return seconds_of([&] { window->splitROI(unit, normal, centre, plus, minus); });
    };
    // As many ROI makers, each with a mask of a half.
    const auto cut_floor = [] {
        std::vector<unsigned char> half(static_cast<std::size_t>(side * side));
        std::fill(half.begin(), half.begin() + side * side / 2, 1);
        return seconds_of([&] {
            for (int i = 0; i < 2 * planes; ++i)
                benchmark::DoNotOptimize(makeROIs(half.data(), side, side));
        });
    };
    return {{"search the plane of a cut", "one pass over the pixels per plane", 2, "plane", searched_planes,
             search, search_floor},
            {"cut a unit", "the ROI makers alone", 2, "member", planes, cut, cut_floor}};
}
