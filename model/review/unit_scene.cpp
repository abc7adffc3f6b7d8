#include "unit_scene.h"

#include "keygen.h"
#include "meeting_boxes.h"
#include "set_aside.h"

#include <algorithm>

namespace {

constexpr double part_inside = 0.5;             // of its pixels, of a unit that lies in another
constexpr double outline_over_its_own = 1.3;    // areas, of an outline that covers a neighbour's gap

bool by_head(const scene_unit* a, const scene_unit* b) { return a->head < b->head; }

void enter(std::vector<scene_unit*>& units, scene_unit* u)
{
    const auto place = std::ranges::lower_bound(units, u, by_head);
    if (place == units.end() || *place != u)
        units.insert(place, u);
}

indexed_box box_of(const scene_unit& u, std::size_t index)
{
    const pixel_box& box = u.shape.box;
    return {static_cast<double>(box.left),
            static_cast<double>(box.right),
            static_cast<double>(box.top),
            static_cast<double>(box.bottom),
            static_cast<double>(u.shape.lowest()),
            static_cast<double>(u.shape.highest()),
            index};
}

std::vector<indexed_box> boxes_of(const std::vector<scene_unit*>& units)
{
    std::vector<indexed_box> boxes;
    for (std::size_t i = 0; i < units.size(); ++i)
        boxes.push_back(box_of(*units[i], i));
    sort_by_left(boxes);
    return boxes;
}

long long pixels_in_both(const std::vector<keyed_raster>& a, const std::vector<keyed_raster>& b)
{
    long long shared = 0;
    const auto plane = [](const keyed_raster& r) { return r.second->z(); };
    for (const keyed_raster& r : a)
        for (const keyed_raster& other : std::ranges::equal_range(b, r.second->z(), {}, plane))
            shared += shared_pixels(*r.second, *other.second);
    return shared;
}

const roi_mask* on_plane(const std::vector<keyed_raster>& rasters, int plane)
{
    const auto found = std::ranges::find(rasters, plane, [](const keyed_raster& r) { return r.second->z(); });
    return found == rasters.end() ? nullptr : found->second;
}

// The area of the unit's outline on this plane, when it is much larger than those beside it; else 0.
int swollen_area(const unit_shape& unit, int plane)
{
    const auto on = std::ranges::find(unit.rois, plane, &roi_shape::plane);
    if (on == unit.rois.end())
        return 0;
    int beside = 0;
    if (on != unit.rois.begin())
        beside = std::max(beside, std::prev(on)->area);
    if (std::next(on) != unit.rois.end())
        beside = std::max(beside, std::next(on)->area);
    return beside > 0 && on->area >= outline_over_its_own * beside ? on->area : 0;
}

}    // namespace

unit_scene::~unit_scene() = default;

bool unit_scene::lies_left_of(const scene_unit* a, const scene_unit* b)
{
    return a->shape.centre.x() != b->shape.centre.x() ? a->shape.centre.x() < b->shape.centre.x()
                                                      : a->head < b->head;
}

// ---- Loading

void unit_scene::begin()
{
    _units.clear();
    _times.clear();
    _planes.clear();
    _rasters.clear();
    _first_t = _next_t = 0;
    _last_t = -1;
    if (!_model.has_rois())
        return;
    _first_t = _next_t = _model.min_time_point();
    _last_t = _model.max_time_point();
}

bool unit_scene::load_next()
{
    if (is_loaded())
        return false;
    const int t = _next_t++;
    time_point& tp = _times[t];
    const auto [first, last] = at_time_point(_model.rois().db, t);
    for (auto r = first; r != last; ++r) {
        ++_planes[r->second.z()];
        if (is_loose(r->first))
            tp.loose.insert(tp.loose.end(), r->first);
    }
    const auto [unit, end] = at_time_point(_model.head_members(), t);
    std::vector<scene_unit*> placed;
    for (auto entry = unit; entry != end; entry = _model.head_members().upper_bound(entry->first)) {
        scene_unit* const u = add_unit(entry->first);
        if (u && u->shape.volume > 0)
            placed.push_back(u);
    }
    std::ranges::sort(placed, lies_left_of);
    tp.by_x = std::move(placed);
    relate_all(t);
    for (const auto& [head, u] : tp.units)
        link_parents(*u);
    _rasters.erase(_rasters.begin(), _rasters.lower_bound(t));
    return !is_loaded();
}

// Ascending by key, each member once.
const std::vector<keyed_raster>& unit_scene::rasters_of(const std::string& head)
{
    const auto [known, is_new] = _rasters[decode(head).t()].try_emplace(head);
    unit_rasters& rasters = known->second;
    if (!is_new)
        return rasters.all;
    std::set<std::string> members;
    const auto [first, last] = _model.head_members().equal_range(head);
    for (auto entry = first; entry != last; ++entry)
        members.insert(entry->second);
    for (const std::string& key : members)
        if (const auto r = _model.rois().db.find(key); r != _model.rois().db.end()) {
            rasters.owned.push_back(std::make_unique<q_roiimg>(r->second));
            rasters.owned.back()->map();
            rasters.all.emplace_back(key, rasters.owned.back().get());
        }
    return rasters.all;
}

// Null for what no list of units holds.
scene_unit* unit_scene::add_unit(const std::string& head)
{
    if (!is_roi_key(head) || head == time_key(decode(head).t()) || !_model.head_members().contains(head))
        return nullptr;
    auto made = std::make_unique<scene_unit>();
    scene_unit* const u = made.get();
    u->head = head;
    u->t = decode(head).t();
    u->shape = shape_of(rasters_of(head), _model.info().scale);
    mark(*u);
    time_point& tp = _times[u->t];
    tp.units.emplace(head, u);
    tp.median.reset();
    tp.largest_radius = std::max(tp.largest_radius, u->shape.radius);
    _units[head] = std::move(made);
    return u;
}

void unit_scene::mark(scene_unit& u) const
{
    u.is_false = _model.is_false(u.head);
    u.is_reviewed = _model.is_reviewed(u.head);
    u.is_before_gap = u.is_behind_gap = false;
    for (const auto& [earlier, later] : notes_of_kind(_model.notes(), "GAP")) {
        u.is_before_gap |= earlier == u.head;
        u.is_behind_gap |= later == u.head;
    }
}

void unit_scene::remove_unit(scene_unit& u)
{
    for (const auto& [mine, theirs] : {std::pair(&scene_unit::parents, &scene_unit::children),
                                       std::pair(&scene_unit::children, &scene_unit::parents),
                                       std::pair(&scene_unit::inner_before, &scene_unit::outer_after),
                                       std::pair(&scene_unit::outer_after, &scene_unit::inner_before),
                                       std::pair(&scene_unit::inner_after, &scene_unit::outer_before),
                                       std::pair(&scene_unit::outer_before, &scene_unit::inner_after)})
        for (scene_unit* const other : u.*mine)
            std::erase(other->*theirs, &u);
    for (const auto& filled : u.fills)
        std::erase(filled.neighbour->filled_by, &u);
    for (scene_unit* const other : u.filled_by)
        std::erase_if(other->fills, [&](const auto& filled) { return filled.neighbour == &u; });
    _rasters[u.t].erase(u.head);
    time_point& tp = _times[u.t];
    tp.units.erase(u.head);
    tp.median.reset();
    std::erase(tp.by_x, &u);
    _units.erase(std::string(u.head));
}

// ---- What lies in what

void unit_scene::relate(scene_unit& before, scene_unit& after)
{
    if (!before.shape.may_meet(after.shape))
        return;
    const auto shared = static_cast<double>(pixels_in_both(rasters_of(before.head), rasters_of(after.head)));
    if (shared > 0 && shared >= part_inside * static_cast<double>(before.shape.pixels)) {
        enter(after.inner_before, &before);
        enter(before.outer_after, &after);
    }
    if (shared > 0 && shared >= part_inside * static_cast<double>(after.shape.pixels)) {
        enter(before.inner_after, &after);
        enter(after.outer_before, &before);
    }
}

void unit_scene::relate_beside(scene_unit& a, scene_unit& b)
{
    for (std::size_t i = 0; i + 1 < b.shape.rois.size(); ++i) {
        const int plane = b.shape.rois[i].plane + 1;
        if (b.shape.rois[i + 1].plane != plane + 1 || swollen_area(a.shape, plane) == 0)
            continue;
        const roi_mask* const cover = on_plane(rasters_of(a.head), plane);
        const auto& theirs = rasters_of(b.head);
        const auto is_covered = [&](int beside) {
            const roi_mask* const r = on_plane(theirs, beside);
            return r && r->size() > 0 && shared_pixels(*cover, *r) >= part_inside * r->size();
        };
        if (!is_covered(plane - 1) || !is_covered(plane + 1))
            continue;
        a.fills.push_back({plane, &b});
        std::ranges::sort(a.fills, [](const auto& x, const auto& y) {
            return std::tie(x.plane, x.neighbour->head) < std::tie(y.plane, y.neighbour->head);
        });
        enter(b.filled_by, &a);
    }
}

void unit_scene::relate_all(int t)
{
    const std::vector<scene_unit*>& now = _times[t].by_x;
    const auto boxes = boxes_of(now);
    if (const time_point* const earlier = at(t - 1)) {
        const std::vector<scene_unit*>& before = earlier->by_x;
        for_meeting_boxes(boxes_of(before), boxes, {},
                          [&](std::size_t b, std::size_t n) { relate(*before[b], *now[n]); });
    }
    for_meeting_boxes(boxes, boxes, {}, [&](std::size_t a, std::size_t b) {
        if (a != b)
            relate_beside(*now[a], *now[b]);
    });
}

void unit_scene::relate_to_all(scene_unit& u)
{
    if (u.shape.volume == 0)
        return;
    if (const time_point* const tp = at(u.t - 1))
        for (scene_unit* const other : tp->by_x)
            relate(*other, u);
    if (const time_point* const tp = at(u.t + 1))
        for (scene_unit* const other : tp->by_x)
            relate(u, *other);
    for (scene_unit* const other : at(u.t)->by_x)
        if (other != &u && other->shape.may_meet(u.shape)) {
            relate_beside(u, *other);
            relate_beside(*other, u);
        }
}

void unit_scene::link_parents(scene_unit& u)
{
    for (scene_unit* const parent : u.parents)
        std::erase(parent->children, &u);
    u.parents.clear();
    u.parent_entries = 0;
    const auto [first, last] = _model.links().equal_range(u.head);
    for (auto entry = first; entry != last; ++entry, ++u.parent_entries)
        if (scene_unit* const parent = find(entry->second)) {
            enter(u.parents, parent);
            enter(parent->children, &u);
        }
}

void unit_scene::link_children(scene_unit& u)
{
    const auto [first, last] = at_time_point(_model.links(), u.t + 1);
    for (auto entry = first; entry != last; ++entry)
        if (entry->second == u.head)
            if (scene_unit* const child = find(entry->first))
                link_parents(*child);
}

// ---- Asking

const unit_scene::time_point* unit_scene::at(int t) const
{
    const auto found = _times.find(t);
    return found == _times.end() ? nullptr : &found->second;
}

scene_unit* unit_scene::find(const std::string& head) const
{
    const auto found = _units.find(head);
    return found == _units.end() ? nullptr : found->second.get();
}

const std::map<std::string, scene_unit*>& unit_scene::units_at(int t) const
{
    static const std::map<std::string, scene_unit*> none;
    const time_point* const tp = at(t);
    return tp ? tp->units : none;
}

const std::set<std::string>& unit_scene::loose_at(int t) const
{
    static const std::set<std::string> none;
    const time_point* const tp = at(t);
    return tp ? tp->loose : none;
}

bool unit_scene::is_set_aside(const scene_unit& u) const noexcept
{
    return ::is_set_aside({is_flat(), _first_t, _last_t}, u.shape.rois.size(),
                          u.parent_entries > 0 || !u.children.empty());
}

bool unit_scene::is_live(const scene_unit& u) const noexcept
{
    return !u.is_false && !is_set_aside(u) && u.shape.volume > 0;
}

double unit_scene::median_volume(int t) const
{
    const time_point* const tp = at(t);
    if (!tp || tp->by_x.empty())
        return 0;
    if (!tp->median) {
        std::vector<double> volumes;
        for (const scene_unit* const u : tp->by_x)
            volumes.push_back(u->shape.volume);
        const auto middle = volumes.begin() + std::ssize(volumes) / 2;
        std::ranges::nth_element(volumes, middle);
        tp->median = *middle;
    }
    return *tp->median;
}

double unit_scene::gain_of(scene_unit& u)
{
    if (!u.gain) {
        const auto sides =
            find_two_ellipsoids(pixels_of(rasters_of(u.head), _model.info().scale.plane_step()));
        u.gain = sides ? sides->gain : 0;
    }
    return *u.gain;
}

void unit_scene::for_each_near(const scene_unit& u, int t, double reach,
                               const std::function<void(scene_unit&, double)>& visit) const
{
    const time_point* const tp = at(t);
    if (!tp || u.shape.volume == 0)
        return;
    const double farthest = reach * (u.shape.radius + tp->largest_radius);
    const double x = u.shape.centre.x();
    const auto first = std::ranges::lower_bound(
        tp->by_x, x - farthest, {}, [](const scene_unit* other) { return other->shape.centre.x(); });
    for (auto other = first; other != tp->by_x.end() && (*other)->shape.centre.x() <= x + farthest; ++other)
        if (const double d = distance(u.shape, (*other)->shape); d <= reach)
            visit(**other, d);
}
