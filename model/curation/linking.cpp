#include "linking.h"

#include "meeting_boxes.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <optional>
#include <tuple>

namespace {

using body = unit_linker::body;

constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

struct near_pair {
    double distance = 0;    // in sums of the radii
    std::size_t parent = 0;
    std::size_t child = 0;

    auto operator<=>(const near_pair&) const = default;
};

struct division {
    double distance = 0;    // of the farther daughter
    std::size_t mother = 0;
    std::size_t one = 0;
    std::size_t other = 0;

    auto operator<=>(const division&) const = default;
};

double median(std::vector<double> values)
{
    const auto middle = values.begin() + std::ssize(values) / 2;
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// The links from one time point to the next, in the making.
class step {
public:
    step(const std::vector<body>& before, const std::vector<body>& now, const linking_rule& rule,
         const kept_links& kept, const std::function<bool()>& carry_on)
        : _before(before), _now(now), _rule(rule), _kept(kept), _carry_on(carry_on)
    {
    }

    // Nothing when that was ended.
    [[nodiscard]] std::optional<std::vector<unit_link>> run()
    {
        if (!link_nearest())
            return std::nullopt;
        if (_links >= _rule.enough) {
            _shift = drift();
            if (!link_nearest())
                return std::nullopt;
        }
        if (!add_divisions())
            return std::nullopt;
        std::vector<bool> is_kept(_now.size());
        for (const unit_link& l : _kept.links)
            is_kept[l.child] = true;
        std::vector<unit_link> links;
        for (std::size_t c = 0; c < _now.size(); ++c)
            if (_parent[c] != none && !is_kept[c])
                links.push_back({c, _parent[c]});
        return links;
    }

private:
    // A sphere of `reach` times the radius.
    [[nodiscard]] static indexed_box box_around(pos3d p, double reach, std::size_t index)
    {
        return {p.x() - reach, p.x() + reach, p.y() - reach, p.y() + reach,
                p.z() - reach, p.z() + reach, index};
    }

    [[nodiscard]] static std::vector<indexed_box> boxes(const std::vector<body>& units, double reach,
                                                        pos3d shift)
    {
        std::vector<indexed_box> all;
        for (std::size_t i = 0; i < units.size(); ++i)
            if (units[i].volume > 0)
                all.push_back(box_around(units[i].centre + shift, reach * units[i].radius, i));
        sort_by_left(all);
        return all;
    }

    // All pairs within `reach`, the nearest first; nothing when that was ended.
    [[nodiscard]] std::optional<std::vector<near_pair>> pairs_within(double reach) const
    {
        std::vector<near_pair> pairs;
        const bool done =
            for_meeting_boxes(boxes(_before, reach, _shift), boxes(_now, reach, {}), _carry_on,
                              [&](std::size_t p, std::size_t c) {
                                  const double apart = (_before[p].centre + _shift - _now[c].centre).size();
                                  const double distance = apart / (_before[p].radius + _now[c].radius);
                                  if (distance <= reach && _kept.may_be_linked(p, c))
                                      pairs.push_back({distance, p, c});
                              });
        if (!done)
            return std::nullopt;
        std::ranges::sort(pairs);
        return pairs;
    }

    [[nodiscard]] bool link_nearest()
    {
        const auto pairs = pairs_within(_rule.reach);
        if (!pairs)
            return false;
        _parent.assign(_now.size(), none);
        _child.assign(_before.size(), none);
        for (const unit_link& l : _kept.links) {
            _parent[l.child] = l.parent;
            _child[l.parent] = l.child;
        }
        _links = _kept.links.size();
        for (const near_pair& pair : *pairs)
            if (_child[pair.parent] == none && _parent[pair.child] == none) {
                _child[pair.parent] = pair.child;
                _parent[pair.child] = pair.parent;
                ++_links;
            }
        return true;
    }

    [[nodiscard]] pos3d drift() const
    {
        std::vector<double> x, y, z;
        for (std::size_t p = 0; p < _before.size(); ++p)
            if (_child[p] != none) {
                const pos3d way = _now[_child[p]].centre - _before[p].centre;
                x.push_back(way.x());
                y.push_back(way.y());
                z.push_back(way.z());
            }
        return {median(std::move(x)), median(std::move(y)), median(std::move(z))};
    }

    [[nodiscard]] bool is_orphan(std::size_t c) const { return _parent[c] == none; }

    [[nodiscard]] bool can_divide(std::size_t mother, std::size_t one, std::size_t other) const
    {
        const body& a = _now[one];
        const body& b = _now[other];
        const body& m = _before[mother];
        const pos3d middle = (a.centre + b.centre) / 2;
        return std::max(a.volume, b.volume) <= _rule.size * std::min(a.volume, b.volume) &&
               (middle - (m.centre + _shift)).size() <= _rule.middle * m.radius;
    }

    // `near` are the pairs of one mother: an orphan joins her only child, or two orphans become her children.
    void consider_divisions(std::span<const near_pair> near, std::vector<division>& found) const
    {
        const std::size_t mother = near.front().parent;
        if (_before[mother].is_two)
            return;
        const auto may_be_hers = [&](std::size_t c) { return is_orphan(c) || _child[mother] == c; };
        for (std::size_t j = 0; j < near.size(); ++j)
            for (std::size_t i = 0; i < j; ++i) {
                const std::size_t a = near[i].child;
                const std::size_t b = near[j].child;
                const bool has_hers = _child[mother] == none || _child[mother] == a || _child[mother] == b;
                if (has_hers && may_be_hers(a) && may_be_hers(b) && can_divide(mother, a, b))
                    found.push_back({std::max(near[i].distance, near[j].distance), mother, a, b});
            }
    }

    [[nodiscard]] bool add_divisions()
    {
        auto pairs = pairs_within(_rule.far);
        if (!pairs)
            return false;
        std::ranges::stable_sort(*pairs, {}, &near_pair::parent);
        std::vector<division> found;
        for (auto first = pairs->begin(); first != pairs->end();) {
            const auto last = std::find_if(
                first, pairs->end(), [&](const near_pair& pair) { return pair.parent != first->parent; });
            consider_divisions({first, last}, found);
            if (_carry_on && !_carry_on())
                return false;
            first = last;
        }
        std::ranges::sort(found);
        std::vector<bool> has_divided = divided_already();
        for (const division& d : found)
            if (!has_divided[d.mother] && are_still_free(d)) {
                has_divided[d.mother] = true;
                _parent[d.one] = _parent[d.other] = d.mother;
            }
        return true;
    }

    [[nodiscard]] std::vector<bool> divided_already() const
    {
        std::vector<bool> has_divided(_before.size());
        std::vector<bool> has_child(_before.size());
        for (const unit_link& l : _kept.links) {
            has_divided[l.parent] = has_child[l.parent];
            has_child[l.parent] = true;
        }
        return has_divided;
    }

    // No mother before them has taken one of the daughters.
    [[nodiscard]] bool are_still_free(const division& d) const
    {
        const auto is_free = [&](std::size_t c) { return is_orphan(c) || _child[d.mother] == c; };
        return is_free(d.one) && is_free(d.other);
    }

    const std::vector<body>& _before;
    const std::vector<body>& _now;
    const linking_rule& _rule;
    const kept_links& _kept;
    const std::function<bool()>& _carry_on;
    pos3d _shift;                        // of the whole sample
    std::vector<std::size_t> _parent;    // of each unit now
    std::vector<std::size_t> _child;     // of each unit before, without divisions
    std::size_t _links = 0;
};

// The box that holds a unit, in pixels and focal planes.
indexed_box box_of(const body& unit, std::size_t index)
{
    constexpr double inf = std::numeric_limits<double>::infinity();
    indexed_box box{inf, -inf, inf, -inf, inf, -inf, index};
    for (const roi_mask* const r : unit.rois) {
        const pixel_box own = r->box();
        box.left = std::min<double>(box.left, own.left);
        box.right = std::max<double>(box.right, own.right);
        box.top = std::min<double>(box.top, own.top);
        box.bottom = std::max<double>(box.bottom, own.bottom);
        box.front = std::min<double>(box.front, r->z());
        box.back = std::max<double>(box.back, r->z());
    }
    return box;
}

unit_rasters in_order_of_planes(unit_rasters rois)
{
    std::ranges::stable_sort(rois, {}, [](const roi_mask* r) { return r->z(); });
    return rois;
}

long long pixels_of(const body& unit)
{
    long long pixels = 0;
    for (const roi_mask* const r : unit.rois)
        pixels += r->size();
    return pixels;
}

// The pixels that two units share: the sum of what each two ROIs of one plane do.
template <class SharedPixels>
long long pixels_in_both(const body& a, const body& b, const SharedPixels& shared_by)
{
    long long shared = 0;
    const auto by_plane = [](const roi_mask* r) { return r->z(); };
    for (const roi_mask* const r : a.rois)
        for (const roi_mask* const other : std::ranges::equal_range(b.rois, r->z(), {}, by_plane))
            shared += shared_by(*r, *other);
    return shared;
}

// No less than shared_pixels(), and told without a look at pixels.
int most_shared_pixels(const roi_mask& a, const roi_mask& b)
{
    const pixel_box one = a.box();
    const pixel_box other = b.box();
    if (!one.meets(other))
        return 0;
    const int width = std::min(one.right, other.right) - std::max(one.left, other.left) + 1;
    const int height = std::min(one.bottom, other.bottom) - std::max(one.top, other.top) + 1;
    return std::min({width * height, a.size(), b.size()});
}

// Whether two or more units of more than one ROI, of those known before, lie inside each unit now. Nothing
// when that was ended. Boxes rule out nearly all of it before any pixel is looked at.
std::optional<std::vector<bool>> hold_two(const std::vector<body>& before, const std::vector<body>& now,
                                          const linking_rule& rule, const std::function<bool()>& carry_on)
{
    std::vector<indexed_box> inner, outer;
    for (std::size_t i = 0; i < before.size(); ++i)
        if (before[i].rois.size() > 1 && before[i].is_known)
            inner.push_back(box_of(before[i], i));
    for (std::size_t i = 0; i < now.size(); ++i)
        outer.push_back(box_of(now[i], i));
    sort_by_left(inner);
    sort_by_left(outer);
    const auto lies_inside = [&](const body& b, const body& n, const auto& shared_by) {
        const double needed = rule.inside * static_cast<double>(pixels_of(b));
        return static_cast<double>(pixels_in_both(b, n, shared_by)) >= needed;
    };
    std::vector<std::vector<std::size_t>> may_be_inside(now.size());
    const bool done = for_meeting_boxes(inner, outer, carry_on, [&](std::size_t b, std::size_t n) {
        if (lies_inside(before[b], now[n], most_shared_pixels))
            may_be_inside[n].push_back(b);
    });
    if (!done)
        return std::nullopt;
    std::vector<bool> two(now.size());
    for (std::size_t n = 0; n < now.size(); ++n)
        if (may_be_inside[n].size() >= 2)
            two[n] = std::ranges::count_if(may_be_inside[n], [&](std::size_t b) {
                         return lies_inside(before[b], now[n], shared_pixels);
                     }) >= 2;
    return two;
}

}    // namespace

std::vector<body> unit_linker::bodies(const std::vector<unit_rasters>& units) const
{
    const double voxel = _scale.pixel_um * _scale.pixel_um * _scale.plane_um;
    std::vector<body> all;
    all.reserve(units.size());
    for (const unit_rasters& rois : units) {
        body& unit = all.emplace_back();
        unit.rois = in_order_of_planes(rois);
        pos3d sum;
        for (const roi_mask* const r : rois)
            if (r->size() > 0)
                sum = sum + pos3d(r->centre().x() * _scale.pixel_um, r->centre().y() * _scale.pixel_um,
                                  r->z() * _scale.plane_um) *
                                r->size();
        const auto pixels = static_cast<double>(pixels_of(unit));
        unit.volume = pixels * voxel;
        unit.radius = std::cbrt(unit.volume * 3 / (4 * std::numbers::pi));
        unit.centre = pixels > 0 ? sum / pixels : pos3d();
    }
    return all;
}

std::vector<unit_link> unit_linker::link(const std::vector<unit_rasters>& units,
                                         const std::function<bool()>& carry_on, const kept_links& kept)
{
    std::vector<body> now = bodies(units);
    auto links = step(_before, now, _rule, kept, carry_on).run();
    if (!links)
        return {};
    std::vector<unit_link> all = *links;
    all.insert(all.end(), kept.links.begin(), kept.links.end());
    if (!go_on(std::move(now), all, carry_on))
        return {};
    return std::move(*links);
}

void unit_linker::give_again(const std::vector<unit_rasters>& units)
{
    for (std::size_t i = 0; i < _before.size(); ++i)
        _before[i].rois = in_order_of_planes(units[i]);
}

// Makes `now` the units given before.
bool unit_linker::go_on(std::vector<body> now, std::span<const unit_link> links,
                        const std::function<bool()>& carry_on)
{
    const auto two = hold_two(_before, now, _rule, carry_on);
    if (!two)
        return false;
    for (std::size_t i = 0; i < now.size(); ++i) {
        now[i].is_known = !_has_begun;
        now[i].is_two = (*two)[i];
    }
    for (const unit_link& l : links) {
        const body& parent = _before[l.parent];
        body& child = now[l.child];
        child.is_known = true;
        child.is_two |= parent.is_two && child.volume >= _rule.parted * parent.volume;
    }
    _before = std::move(now);
    _has_begun = true;
    return true;
}
