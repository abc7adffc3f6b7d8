#include "half_links.h"

#include "keygen.h"

#include <algorithm>
#include <tuple>
#include <vector>

namespace {

constexpr double reach = 1.5;      // sums of the radii, from a half to a unit
constexpr double middle = 0.75;    // of the halves, from their mother's centre, in her radii

}    // namespace

half_links::half_links(curation& model, const std::pair<std::string, std::string>& halves, int t)
    : _model(model), _t(t), _is_before(t < decode(halves.first).t()), _halves{halves.first, halves.second},
      _shapes{shape(halves.first), shape(halves.second)}
{
}

void half_links::give(const std::set<std::string>& free)
{
    choose(candidates(free));
    for (const std::size_t half : {0, 1}) {
        for (const std::string& unit : linked(half)) {
            const bool is_shared = _chosen[half].empty() && _is_before && is_mother(unit);
            if (_taken.contains(unit) && _chosen[half] != unit && !is_shared)
                unlink(unit, _halves[half]);
        }
        if (!_chosen[half].empty())
            _model.link(_halves[half], _chosen[half]);
    }
}

std::set<std::string> half_links::linked(std::size_t half) const
{
    return _is_before ? _model.parents(_halves[half]) : _model.children(_halves[half]);
}

unit_shape half_links::shape(const std::string& unit) const
{
    return shape_of(_model.rasters_of(unit), _model.info().scale);
}

// What is free may have got a link since.
std::set<std::string> half_links::candidates(const std::set<std::string>& free) const
{
    std::set<std::string> found = linked(0);
    found.merge(linked(1));
    for (const std::string& unit : free)
        if (decode(unit).t() == _t && (_is_before ? _model.children(unit) : _model.parents(unit)).empty())
            found.insert(unit);
    return found;
}

// The nearest pairs first.
void half_links::choose(const std::set<std::string>& candidates)
{
    std::vector<std::tuple<double, std::string, std::size_t>> pairs;
    for (const std::string& unit : candidates)
        for (const std::size_t half : {0, 1})
            if (const double d = distance(_shapes[half], shape(unit)); d <= reach)
                pairs.emplace_back(d, unit, half);
    std::ranges::sort(pairs);
    for (const auto& [d, unit, half] : pairs)
        if (_chosen[half].empty() && _taken.insert(unit).second)
            _chosen[half] = unit;
}

// One nucleus, with the halves on either side of its centre: then the cut was of a division.
bool half_links::is_mother(const std::string& unit) const
{
    const auto two =
        find_two_ellipsoids(pixels_of(_model.rasters_of(unit), _model.info().scale.plane_step()));
    const unit_shape mother = shape(unit);
    const pos3d between = (_shapes[0].centre + _shapes[1].centre) / 2;
    return (!two || two->gain < least_gain_of_two) &&
           (between - mother.centre).size() <= middle * mother.radius;
}

void half_links::unlink(const std::string& unit, const std::string& half)
{
    if (_is_before)
        _model.release_child(unit, half);
    else
        _model.release_child(half, unit);
}
