// How the work grows with the recording. The larger ones begin earlier, with less crowded planes.
#include "bench_window.h"
#include "topics.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace {

template <class Run>
double fastest_of_three(const Run& run)
{
    double fastest = run();
    for (int i = 1; i < 3; ++i)
        fastest = std::min(fastest, run());
    return fastest;
}

// As a ROI meets them: the mean over all ROIs of how many lie on the same plane.
double rois_a_plane(const roidb_plus& db)
{
    double pairs = 0;
    for (auto plane = db.tz_xy_db.begin(); plane != db.tz_xy_db.end();) {
        const auto next = db.tz_xy_db.upper_bound(plane->first);
        const auto rois = static_cast<double>(std::distance(plane, next));
        pairs += rois * rois;
        plane = next;
    }
    return pairs / static_cast<double>(db.db.size());
}

void print_row(const std::string& filename, const std::string& saved)
{
    BenchWindow w(filename);
    const auto rois = static_cast<double>(w.m_roidb->db.size());
    const auto in_us_a_roi = [rois](double seconds) { return seconds * 1e6 / rois; };
    const double read = fastest_of_three([&] { return seconds_of([&] { w.openRoiFile(filename); }); });
    const double write = fastest_of_three([&] { return seconds_of([&] { w.m_roidb->write(saved); }); });
    w.pushButton_select_all_clicked();
    const double track = seconds_of([&] { w.track_forward(); });
    const double units = seconds_of([&] { w.make_units(); });
    const double links = seconds_of([&] { w.make_links(); });
    const double clean = seconds_of([&] { w.pushButton_clean_clicked(); });
    std::printf("| %.0f | %.0f | %.2f | %.2f | %.2f | %.2f | %.2f | %.2f |\n", rois, rois_a_plane(*w.m_roidb),
                in_us_a_roi(read), in_us_a_roi(write), in_us_a_roi(track), in_us_a_roi(units),
                in_us_a_roi(links), in_us_a_roi(clean));
}

}    // namespace

void print_growth(const bench_data& data)
{
    std::puts("Microseconds a ROI:\n");
    std::puts(
        "| ROIs | on the same plane | open | save | track forward | make units | make links | clean up |\n"
        "|---:|---:|---:|---:|---:|---:|---:|---:|");
    for (const int thousand_rois : {10, 30, 100, 300})
        print_row(data.of_size(thousand_rois), data.folder + "/saved.roi");
}
