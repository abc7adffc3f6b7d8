#include "grouping.h"

#include "meeting_boxes.h"

#include <algorithm>
#include <limits>
#include <map>
#include <tuple>
#include <utility>

namespace {

constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

// An ROI's place in its chain.
struct chain_link {
    std::size_t above = none;    // the next ROI of the chain, on a higher plane
    std::size_t below = none;
    int shared_above = 0;    // pixels shared with the one above
};

// What an ROI would like to be joined to; none: nothing.
struct choice {
    std::size_t other = none;
    double distance = std::numeric_limits<double>::infinity();
    int shared = 0;

    // Of two as near, the one that comes first by key.
    void consider(const choice& c)
    {
        if (std::tie(c.distance, c.other) < std::tie(distance, other))
            *this = c;
    }
};

class chains {
public:
    chains(std::span<const roi_mask* const> rois, const nearest_rule& rule,
           const std::function<bool()>& carry_on)
        : _rois(rois), _rule(rule), _carry_on(carry_on), _links(rois.size())
    {
        for (std::size_t i = 0; i < rois.size(); ++i)
            _planes[rois[i]->z()].push_back(box_of(i));
        for (auto& [z, boxes] : _planes)
            sort_by_left(boxes);
    }

    // Joins ROIs `gap` planes apart. False when that was ended.
    [[nodiscard]] bool join(int gap)
    {
        _up.assign(_rois.size(), {});
        _down.assign(_rois.size(), {});
        for (const auto& [z, boxes] : _planes)
            if (const auto higher = _planes.find(z + gap); higher != _planes.end())
                if (!for_meeting_boxes(boxes, higher->second, _carry_on,
                                       [&](std::size_t a, std::size_t b) { consider(a, b); }))
                    return false;
        std::vector<std::size_t> joined;
        for (std::size_t a = 0; a < _rois.size(); ++a)
            if (agree(a) && (gap == 1 || are_open(a, _up[a].other)))
                joined.push_back(a);
        for (const std::size_t a : joined)
            join(a);
        return true;
    }

    // From the lowest ROI to the highest.
    [[nodiscard]] std::vector<roi_group> all() const
    {
        std::vector<roi_group> found;
        for (std::size_t i = 0; i < _rois.size(); ++i) {
            if (_links[i].below != none)
                continue;
            roi_group& chain = found.emplace_back();
            for (std::size_t at = i; at != none; at = _links[at].above)
                chain.push_back(at);
        }
        return found;
    }

    // Where to cut a chain: that many of its ROIs remain below. 0: nowhere.
    [[nodiscard]] std::size_t waist(std::span<const std::size_t> chain) const;

private:
    [[nodiscard]] indexed_box box_of(std::size_t i) const
    {
        const pixel_box box = _rois[i]->box();
        return {static_cast<double>(box.left),
                static_cast<double>(box.right),
                static_cast<double>(box.top),
                static_cast<double>(box.bottom),
                0,
                0,
                i};
    }

    [[nodiscard]] double distance(std::size_t a, std::size_t b) const
    {
        return (_rois[a]->centre() - _rois[b]->centre()).size();
    }

    // a lies below b. Those with a neighbour on that side already are not free any more.
    void consider(std::size_t a, std::size_t b)
    {
        if (_links[a].above != none || _links[b].below != none)
            return;
        const int shared = shared_pixels(*_rois[a], *_rois[b]);
        if (shared == 0 || shared < _rule.share * std::min(_rois[a]->size(), _rois[b]->size()))
            return;
        const double d = distance(a, b);
        _up[a].consider({b, d, shared});
        _down[b].consider({a, d, shared});
    }

    [[nodiscard]] bool agree(std::size_t a) const
    {
        return _up[a].other != none && _down[_up[a].other].other == a;
    }

    // True iff neither the chain that ends at a nor the one that starts at b has tapered off.
    [[nodiscard]] bool are_open(std::size_t a, std::size_t b) const
    {
        return is_open(a, &chain_link::below) && is_open(b, &chain_link::above);
    }

    [[nodiscard]] bool is_open(std::size_t end, std::size_t chain_link::*next) const
    {
        int largest = 0;
        for (std::size_t at = end; at != none; at = _links[at].*next)
            largest = std::max(largest, _rois[at]->size());
        return _rois[end]->size() >= _rule.open * largest;
    }

    void join(std::size_t a)
    {
        const choice& up = _up[a];
        _links[a].above = up.other;
        _links[a].shared_above = up.shared;
        _links[up.other].below = a;
    }

    [[nodiscard]] std::size_t cut_at(std::span<const std::size_t> chain, std::size_t edge) const;

    std::span<const roi_mask* const> _rois;
    const nearest_rule& _rule;
    const std::function<bool()>& _carry_on;
    std::map<long long, std::vector<indexed_box>> _planes;
    std::vector<chain_link> _links;
    std::vector<choice> _up, _down;    // of each ROI, in the present round
};

// Edge i joins ROIs i and i + 1 of the chain; the waist is the inner edge that is narrowest against the
// widest on its two sides.
std::size_t chains::waist(std::span<const std::size_t> chain) const
{
    const std::size_t edges = chain.size() - 1;
    if (edges < 3)
        return 0;
    const auto shared = [&](std::size_t edge) { return _links[chain[edge]].shared_above; };
    std::vector<int> widest_above(edges, shared(edges - 1));    // of an edge and all those above it
    for (std::size_t e = edges - 1; e-- > 0;)
        widest_above[e] = std::max(shared(e), widest_above[e + 1]);
    double narrowest = std::numeric_limits<double>::infinity();
    std::size_t at = 0;
    int widest_below = shared(0);
    for (std::size_t e = 1; e + 1 < edges; ++e) {
        const double ratio = static_cast<double>(shared(e)) / std::min(widest_below, widest_above[e + 1]);
        if (ratio < narrowest)
            std::tie(narrowest, at) = std::pair(ratio, e);
        widest_below = std::max(widest_below, shared(e));
    }
    return narrowest > _rule.waist ? 0 : cut_at(chain, at);
}

// The smaller ROI at a waist may be of either nucleus: it stays with the neighbour that lies nearer.
std::size_t chains::cut_at(std::span<const std::size_t> chain, std::size_t edge) const
{
    const bool is_lower = _rois[chain[edge]]->size() <= _rois[chain[edge + 1]]->size();
    const std::size_t w = is_lower ? edge : edge + 1;
    return distance(chain[w], chain[w - 1]) <= distance(chain[w], chain[w + 1]) ? w + 1 : w;
}

// The parts of a chain that have no waist.
void cut(const chains& all, std::span<const std::size_t> chain, std::vector<roi_group>& parts)
{
    std::vector<std::span<const std::size_t>> uncut{chain};
    while (!uncut.empty()) {
        const auto part = uncut.back();
        uncut.pop_back();
        if (const std::size_t below = all.waist(part)) {
            uncut.push_back(part.subspan(below));
            uncut.push_back(part.first(below));
        } else
            parts.emplace_back(part.begin(), part.end());
    }
}

}    // namespace

std::vector<roi_group> group_nearest(std::span<const roi_mask* const> rois, const nearest_rule& rule,
                                     const std::function<bool()>& carry_on)
{
    chains all(rois, rule, carry_on);
    for (int gap = 1; gap <= rule.reach; ++gap)
        if (!all.join(gap))
            return {};
    std::vector<roi_group> groups;
    for (const roi_group& chain : all.all())
        cut(all, chain, groups);
    std::ranges::sort(groups);
    return groups;
}
