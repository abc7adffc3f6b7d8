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
    // Most come in the order of their keys: with the end as hint they go there without a search.
    const auto entry = db.emplace_hint(db.end(), std::move(key), raster.get());
    if (entry->second == raster.get())    // and not one that was there already
        (void)raster.release();
    _kept = db.size();
    return entry->second;
}

std::vector<q_roiimg*> q_roiimgdb::qrimgs(const std::vector<const roi*>& rois)
{
    struct missing_raster {
        std::size_t index;
        std::string key;
        std::unique_ptr<q_roiimg> made = {};
    };
    std::vector<q_roiimg*> rasters;
    rasters.reserve(rois.size());
    std::vector<missing_raster> missing;
    for (const roi* const r : rois) {
        std::string key = keygen(*r);
        const auto found = db.find(key);
        if (found == db.end())
            missing.push_back({rasters.size(), std::move(key)});
        rasters.push_back(found == db.end() ? nullptr : found->second);
    }
    const auto make_some = [&](std::size_t first, std::size_t last) {
        for (std::size_t i = first; i < last; ++i) {
            missing[i].made = std::make_unique<q_roiimg>(*rois[missing[i].index]);
            if (!missing[i].made->is_too_large())    // that is said, by this thread
                missing[i].made->map();
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
    for (auto& [index, key, made] : missing) {
        made->map();
        rasters[index] = enter(std::move(key), std::move(made));
    }
    return rasters;
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

void q_roiimgdb::release_dropped()
{
    if (_dropped.empty())
        return;
    std::optional<int> counted;
    for (const auto& raster : _dropped) {
        if (counted == raster->t())    // they leave by time points
            continue;
        counted = raster->t();
        ++_releases[raster->t()];
    }
    _dropped.clear();
    _planes.clear();    // they may point to rasters that are gone
}

unsigned long q_roiimgdb::releases(int t) const
{
    const auto found = _releases.find(t);
    return found == _releases.end() ? 0 : found->second;
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
