#include "q_roiimgdb.h"

#include "keygen.h"

#include <algorithm>
#include <limits>
#include <thread>

namespace {

constexpr int kept_time_points = 3;                // on either side of the one in use
constexpr std::size_t least_for_a_thread = 100;    // rasters: starting one costs about as much

}    // namespace

q_roiimgdb::~q_roiimgdb() { drop(db.begin(), db.end()); }

q_roiimg* q_roiimgdb::qrimg(const roi& r)
{
    std::string key = keygen(r);
    if (const auto found = db.find(key); found != db.end())
        return found->second;
    auto raster = std::make_unique<q_roiimg>(r);
    raster->map();
    return enter(std::move(key), std::move(raster));
}

q_roiimg* q_roiimgdb::enter(std::string key, std::unique_ptr<q_roiimg> raster)
{
    if (_kept_around != raster->t() || _kept != db.size()) {
        drop_far_from(raster->t());
        _kept_around = raster->t();
    }
    q_roiimg* const made = db.emplace(std::move(key), raster.release()).first->second;
    _kept = db.size();
    return made;
}

void q_roiimgdb::make(const std::vector<const roi*>& rois)
{
    std::vector<const roi*> missing;
    for (const roi* const r : rois)
        if (!db.contains(keygen(*r)))
            missing.push_back(r);
    std::vector<std::unique_ptr<q_roiimg>> made(missing.size());
    const auto make_some = [&](std::size_t first, std::size_t last) {
        for (std::size_t i = first; i < last; ++i) {
            made[i] = std::make_unique<q_roiimg>(*missing[i]);
            if (!made[i]->is_too_large())    // that is said, by this thread
                made[i]->map();
        }
    };
    const std::size_t threads = std::min<std::size_t>(std::max(std::thread::hardware_concurrency(), 1U),
                                                      missing.size() / least_for_a_thread + 1);
    {
        std::vector<std::jthread> others;
        for (std::size_t i = 1; i < threads; ++i)
            others.emplace_back(make_some, missing.size() * i / threads, missing.size() * (i + 1) / threads);
        make_some(0, missing.size() / threads);
    }
    for (std::unique_ptr<q_roiimg>& raster : made) {
        raster->map();
        std::string key = keygen(*raster);
        (void)enter(std::move(key), std::move(raster));
    }
}

std::shared_ptr<plane_rois> q_roiimgdb::plane(const roidb_plus& roidb, int t, int z)
{
    auto& known = _planes[{t, z}];
    if (!known || !known->is_current(roidb))
        known = std::make_shared<plane_rois>(roidb, t, z);
    return known;
}

void q_roiimgdb::remove(pos4i pos)
{
    if (const auto found = db.find(keygen(pos)); found != db.end())
        drop(found, std::next(found));
    _planes.erase({pos.t(), pos.z()});    // it still knows the raster
}

void q_roiimgdb::release_dropped() noexcept
{
    if (_dropped.empty())
        return;
    _dropped.clear();
    ++_releases;
    _planes.clear();    // they may point to rasters that are gone
}

void q_roiimgdb::remove_after(int t)
{
    drop(db.lower_bound(end_of_time_point(t)), db.end());
    _planes.erase(_planes.upper_bound({t, std::numeric_limits<int>::max()}), _planes.end());
}

void q_roiimgdb::drop_far_from(int t)
{
    const int t_min = std::max(t, kept_time_points) - kept_time_points;
    const int t_max = std::min(t, std::numeric_limits<int>::max() - kept_time_points) + kept_time_points;
    const auto low = db.lower_bound(time_key(0));
    const auto kept = db.lower_bound(time_key(t_min));
    // Negative time points sort before or after their neighbours: the ranges may be the wrong way round.
    if (low != db.end() && low->first < time_key(t_min))
        drop(low, kept);
    drop(db.lower_bound(end_of_time_point(t_max)), db.end());
}

void q_roiimgdb::drop(position first, position last)
{
    for (auto entry = first; entry != last; ++entry)
        _dropped.emplace_back(entry->second);
    db.erase(first, last);
}
