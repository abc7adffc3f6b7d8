#include "tails.h"

#include "keygen.h"

#include <utility>

std::vector<tail_segment> tails::of(const std::set<std::string>& units, int steps, int t)
{
    forget_old_centroids();
    std::vector<tail_segment> found;
    std::set<std::string> reached =
        follow(found, units, steps, tail_segment::part::before, &curation::parents);
    reached.merge(follow(found, units, steps, tail_segment::part::after, &curation::children));
    const auto [first, last] = at_time_point(reached, t);
    join_daughters(found, {first, last});
    return found;
}

std::set<std::string> tails::near_plane(int t, int z, int planes)
{
    std::set<std::string> near = _model.units(t);
    std::erase_if(near, [&](const std::string& unit) {
        return _model.z_max(unit) < z - planes || z + planes < _model.z_min(unit);
    });
    return near;
}

std::set<std::string> tails::follow(std::vector<tail_segment>& found, std::set<std::string> units, int steps,
                                    tail_segment::part part, relatives next)
{
    std::set<std::string> all = units;
    for (int step = 0; step < steps && !units.empty(); ++step) {
        std::set<std::string> reached;
        for (const std::string& unit : units) {
            for (const std::string& relative : (_model.*next)(unit)) {
                add(found, part, unit, relative);
                reached.insert(relative);
            }
        }
        all.insert(reached.begin(), reached.end());
        units = std::move(reached);
    }
    return all;
}

void tails::join_daughters(std::vector<tail_segment>& found, const std::set<std::string>& units)
{
    for (const std::string& unit : units)
        for (const std::string& mother : _model.parents(unit))
            for (const std::string& sister : _model.children(mother))
                if (unit < sister || (unit != sister && !units.contains(sister)))
                    add(found, tail_segment::part::daughters, unit, sister);
}

void tails::add(std::vector<tail_segment>& found, tail_segment::part part, const std::string& from,
                const std::string& to)
{
    const tail_segment segment{part, centroid(from), centroid(to)};
    if (is_finite(segment.from) && is_finite(segment.to))
        found.push_back(segment);
}

pos3d tails::centroid(const std::string& unit)
{
    const auto known = _centroids.find(unit);
    return known != _centroids.end() ? known->second : _centroids.emplace(unit, _model.g(unit)).first->second;
}

void tails::forget_old_centroids()
{
    const auto was = std::tuple(_edits, _recording, _revision);
    _edits = _model.edits();
    _recording = _model.recording();
    _revision = _model.has_rois() ? _model.rois().revision() : 0;
    if (was != std::tuple(_edits, _recording, _revision))
        _centroids.clear();
}
