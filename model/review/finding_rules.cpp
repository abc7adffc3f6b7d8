#include "finding_rules.h"

#include "keygen.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>

namespace {

constexpr double reach_of_link = 1.5;      // sums of the radii
constexpr double reach_of_daughter = 1;    // the same
constexpr double reach_of_other_half = 0.8;
constexpr double volume_of_link = 4;            // larger to smaller volume, at most
constexpr double middle_of_daughters = 1.25;    // from their mother's centre, in her radii
constexpr double far_away = 0.7;                // sums of the radii
constexpr double other_volume = 2;              // larger to smaller volume, at least
constexpr double swollen = 1.3;                 // volume, to parent and child
constexpr double step_of_pieces = 0.3;          // in the image, in radii of the nucleus
constexpr double small_volume = 0.3;            // of the median

double ratio(const scene_unit& a, const scene_unit& b)
{
    const auto [low, high] = std::minmax(a.shape.volume, b.shape.volume);
    return low > 0 ? high / low : std::numeric_limits<double>::infinity();
}

std::vector<std::string> heads_of(const std::vector<scene_unit*>& units)
{
    std::vector<std::string> heads;
    for (const scene_unit* const u : units)
        heads.push_back(u->head);
    return heads;
}

// The rules, one after the other. The proposals of those that would undo what a person has decided are left
// out.
class examination {
public:
    examination(unit_scene& scene, scene_unit& u) : _scene(scene), _u(u) {}

    [[nodiscard]] std::vector<finding> all()
    {
        if (_u.is_false || _scene.is_set_aside(_u))
            return {};
        look_at_links();
        if (_u.shape.volume > 0) {
            look_for_pieces();
            look_for_two();
            look_for_link(true);
            look_for_link(false);
        }
        look_for_ends();
        return best_of_each_kind();
    }

private:
    finding& add(finding_rule rule, std::vector<std::string> with = {}, int plane = 0)
    {
        const rule_record& record = record_of(rule);
        return _found.emplace_back(finding{record.kind, rule, _u.t, _u.head, std::move(with), plane,
                                           record.score(), record.proposal});
    }

    [[nodiscard]] bool has_end() const { return _u.children.empty() && _u.t < _scene.last_t(); }
    [[nodiscard]] bool has_beginning() const { return _u.parent_entries == 0 && _u.t > _scene.first_t(); }

    [[nodiscard]] std::vector<scene_unit*> live(std::vector<scene_unit*> units) const
    {
        std::erase_if(units, [this](const scene_unit* u) { return !_scene.is_live(*u); });
        return units;
    }

    // ---- Links that are there
    void look_at_links()
    {
        if (_u.parent_entries > 1)
            look_at_parents();
        if (_u.children.size() > 2)
            propose_unlinking(add(finding_rule::third_child), _u.children);
        for (scene_unit* const parent : _u.parents) {
            if (_u.is_reviewed || parent->is_reviewed)
                continue;
            if (parent->children.size() > 1 && has_end())
                add(finding_rule::daughter_ends, {parent->head});
            if (distance(_u.shape, parent->shape) >= far_away && ratio(_u, *parent) >= other_volume)
                add(finding_rule::far_and_changed, {parent->head});
        }
    }

    void look_at_parents()
    {
        const auto inner = inner_units();
        finding& f = add(finding_rule::second_parent);
        if (inner.size() > 1 && may_be_cut() && is_two()) {
            f.with = heads_of(inner);
            f.proposal = proposal_kind::cut;
        } else
            propose_unlinking(f, _u.parents);
    }

    // The farthest of several.
    void propose_unlinking(finding& f, const std::vector<scene_unit*>& kin) const
    {
        const auto farthest = std::ranges::max_element(kin, {}, [this](const scene_unit* other) {
            return std::pair(distance(_u.shape, other->shape), other->head);
        });
        if (farthest == kin.end() || _u.is_reviewed || (*farthest)->is_reviewed)
            f.proposal = proposal_kind::none;
        else
            f.with = {(*farthest)->head};
    }

    // ---- Two nuclei in it
    void look_for_two()
    {
        if (const auto plane = doubled_plane(_u.shape))
            add(may_be_cut() && is_two() ? finding_rule::pieces_apart : finding_rule::pieces_together, {},
                *plane);
        if (!may_be_cut())
            return;
        if (const auto plane = step_at_gap(_u.shape))
            add(finding_rule::gap_step, {}, *plane);
        if (const auto plane = step_at_waist(_u.shape))
            add(finding_rule::waist_step, {}, *plane);
        for (const auto& filled : _u.fills)
            if (_scene.is_live(*filled.neighbour) && !filled.neighbour->is_reviewed)
                add(finding_rule::gap_filled, {filled.neighbour->head}, filled.plane);
        const auto inner = inner_units();
        if (inner.size() > 1 && is_two())
            add(finding_rule::inner_cut, heads_of(inner));
        else if (inner.size() > 1 && (_scene.gain_of(_u) >= 0 || are_reviewed(inner)))
            add(finding_rule::inner_close, heads_of(inner));
        else if (const scene_unit* const free = free_other_half(); free && is_two())
            add(finding_rule::beside_free, {free->head});
    }

    // A person has seen that they are two.
    [[nodiscard]] static bool are_reviewed(const std::vector<scene_unit*>& units)
    {
        return std::ranges::all_of(units, &scene_unit::is_reviewed);
    }

    [[nodiscard]] bool may_be_cut() const { return !_scene.is_flat() && !_u.is_reviewed; }
    [[nodiscard]] bool is_two() { return _scene.gain_of(_u) >= least_gain_of_two; }

    // Two units of the time point before, or after, that lie in it; its daughters are none.
    [[nodiscard]] std::vector<scene_unit*> inner_units() const
    {
        if (auto before = live(_u.inner_before); before.size() > 1)
            return before;
        auto after = live(_u.inner_after);
        const bool has_divided = std::ranges::count_if(after, [this](const scene_unit* inner) {
                                     return std::ranges::count(_u.children, inner) > 0;
                                 }) > 1;
        return has_divided ? std::vector<scene_unit*>() : after;
    }

    [[nodiscard]] bool is_swollen() const
    {
        const auto is_smaller = [this](const scene_unit* kin) {
            return _u.shape.volume >= swollen * kin->shape.volume;
        };
        return !_u.parents.empty() && !_u.children.empty() && std::ranges::all_of(_u.parents, is_smaller) &&
               std::ranges::all_of(_u.children, is_smaller);
    }

    [[nodiscard]] const scene_unit* free_other_half() const
    {
        return is_swollen() ? nearest(reach_of_other_half, false) : nullptr;
    }

    // The nearest unit of both neighbouring time points that lacks a link to this one's.
    [[nodiscard]] const scene_unit* nearest(double reach, bool of_similar_volume) const
    {
        const scene_unit* const before = nearest_free(true, reach, of_similar_volume);
        return before ? before : nearest_free(false, reach, of_similar_volume);
    }

    // A person has looked at both, and they are not linked.
    [[nodiscard]] bool was_parted_from(const scene_unit& other) const
    {
        return _u.is_reviewed && other.is_reviewed;
    }

    [[nodiscard]] scene_unit* nearest_free(bool is_before, double reach, bool of_similar_volume) const
    {
        scene_unit* found = nullptr;
        double least = reach;
        _scene.for_each_near(_u, _u.t + (is_before ? -1 : 1), reach, [&](scene_unit& other, double d) {
            const bool is_free = is_before ? other.children.empty() && !other.is_before_gap
                                           : other.parent_entries == 0 && !other.is_behind_gap;
            if (!is_free || !_scene.is_live(other) || was_parted_from(other) ||
                (of_similar_volume && ratio(_u, other) > volume_of_link))
                return;
            if (d > least || (found && d == least && found->head < other.head))
                return;
            found = &other;
            least = d;
        });
        return found;
    }

    // ---- Half of a nucleus
    void look_for_pieces()
    {
        if (_u.is_reviewed)
            return;
        for (const auto& [outer, inner] : {std::pair(&scene_unit::outer_before, &scene_unit::inner_after),
                                           std::pair(&scene_unit::outer_after, &scene_unit::inner_before)})
            for (scene_unit* const whole : _u.*outer)
                if (_scene.is_live(*whole))
                    look_for_other_piece(*whole, whole->*inner);
    }

    void look_for_other_piece(const scene_unit& whole, const std::vector<scene_unit*>& pieces)
    {
        for (scene_unit* const other : pieces)
            if (other != &_u && !other->is_reviewed && !other->is_false && is_smaller_piece(*other) &&
                are_pieces(*other, whole)) {
                finding& f = add(finding_rule::pieces_of_one, {other->head});
                f.kind = has_beginning() ? finding_kind::unlinked
                         : has_end()     ? finding_kind::dead_end
                                         : finding_kind::division;
            }
    }

    // One of the two carries the finding.
    [[nodiscard]] bool is_smaller_piece(const scene_unit& other) const
    {
        return std::pair(_u.shape.volume, _u.head) < std::pair(other.shape.volume, other.head);
    }

    [[nodiscard]] bool are_pieces(const scene_unit& other, const scene_unit& whole) const
    {
        const double both = _u.shape.volume + other.shape.volume;
        const double larger = std::max(_u.shape.volume, other.shape.volume);
        const double v = whole.shape.volume;
        if (std::abs(std::log(both / v)) >= std::abs(std::log(larger / v)))
            return false;
        const pos3d way = _u.shape.centre - other.shape.centre;
        const bool are_stacked = pos2d(way.x(), way.y()).size() < step_of_pieces * whole.shape.radius;
        return are_stacked || _scene.is_flat();
    }

    // ---- Links that are missing
    void look_for_link(bool to_parent)
    {
        if (!(to_parent ? has_beginning() : has_end()))
            return;
        if (const scene_unit* const free = nearest_free(to_parent, reach_of_link, true)) {
            finding& f = add(finding_rule::free_neighbour, {free->head});
            f.kind = to_parent ? finding_kind::unlinked : finding_kind::dead_end;
        }
        if (to_parent)
            look_for_mother();
    }

    void look_for_mother()
    {
        const scene_unit* mother = nullptr;
        double least = reach_of_daughter;
        _scene.for_each_near(_u, _u.t - 1, reach_of_daughter, [&](const scene_unit& other, double d) {
            if (other.children.size() != 1 || !_scene.is_live(other) || was_parted_from(other) || d >= least)
                return;
            const scene_unit& sister = *other.children.front();
            const pos3d middle = (_u.shape.centre + sister.shape.centre) / 2;
            if ((middle - other.shape.centre).size() > middle_of_daughters * other.shape.radius)
                return;
            mother = &other;
            least = d;
        });
        if (mother)
            add(finding_rule::second_daughter, {mother->head});
    }

    // ---- What is left
    void look_for_ends()
    {
        if (is_short_track())
            add(finding_rule::short_track, {_u.children.front()->head});
        else if (const scene_unit* const other = much_larger_kin())
            add(finding_rule::lone_beside, {other->head});
        else if (_u.shape.is_lone() && !_scene.is_flat())
            add(finding_rule::lone_linked);
        if (has_beginning())
            add(finding_rule::begins);
        if (has_end())
            add(finding_rule::ends);
    }

    // The one that a lone ROI has its only link to.
    [[nodiscard]] const scene_unit* much_larger_kin() const
    {
        if (!_u.shape.is_lone() || _scene.is_flat() || _u.is_reviewed ||
            _u.parents.size() + _u.children.size() != 1)
            return nullptr;
        const scene_unit* const other = _u.parents.empty() ? _u.children.front() : _u.parents.front();
        return !other->is_reviewed && ratio(_u, *other) >= volume_of_link ? other : nullptr;
    }

    [[nodiscard]] bool is_short_track() const
    {
        if (!_u.shape.is_lone() || _u.parent_entries > 0 || _u.children.size() != 1 || _u.is_reviewed)
            return false;
        const scene_unit& other = *_u.children.front();
        const double most = small_volume * _scene.median_volume(_u.t);
        return other.shape.is_lone() && other.children.empty() && other.parent_entries == 1 &&
               !other.is_reviewed && _u.shape.volume < most && other.shape.volume < most;
    }

    // A dismissal is of a kind: of several of one kind the best stands for them.
    [[nodiscard]] std::vector<finding> best_of_each_kind()
    {
        std::erase_if(_found, [](const finding& f) { return f.score < least_listed_score; });
        std::ranges::stable_sort(_found, ranks_before);
        std::vector<finding> best;
        std::array<bool, finding_kind_count> has_kind{};
        for (finding& f : _found)
            if (!std::exchange(has_kind[static_cast<std::size_t>(f.kind)], true))
                best.push_back(std::move(f));
        return best;
    }

    unit_scene& _scene;
    scene_unit& _u;
    std::vector<finding> _found;
};

}    // namespace

std::vector<finding> findings_of(unit_scene& scene, scene_unit& u) { return examination(scene, u).all(); }

std::vector<finding> findings_of_roi(const unit_scene& scene, const std::string& key)
{
    const int t = decode(key).t();
    if (!scene.loose_at(t).contains(key) || scene.units_at(t).empty())
        return {};
    const rule_record& record = record_of(finding_rule::roi_alone);
    return {{record.kind, finding_rule::roi_alone, t, key, {}, 0, record.score(), record.proposal}};
}
