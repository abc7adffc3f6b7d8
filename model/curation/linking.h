// linking.h - which units of successive time points are one nucleus, or a nucleus and its daughters.
//
// Units are compared by their centres and sizes in space, so that neither a moving nucleus nor one that is
// outlined in few planes loses its link. What all of them have in common (the drift of the sample) is taken
// out first. Lengths are in micrometres, volumes in cubic micrometres.
#pragma once
#include "physical_scale.h"
#include "roi_mask.h"

#include <cstddef>
#include <functional>
#include <span>
#include <vector>

// Distances of two units are in sums of their radii, those of spheres of their volumes: at 1 the spheres
// touch.
struct linking_rule {
    double reach = 1;          // farthest link
    std::size_t enough = 8;    // links that tell the drift; with fewer it is taken for none

    // Daughters lie within `far` of their mother, their middle within `middle` of her radius from her centre,
    // and neither has more than `size` times the volume of the other. far 0: no divisions.
    double far = 2;
    double middle = 0.75;
    double size = 3;

    // Two units that lie with this part of their pixels in one unit of the next time point are two nuclei in
    // one unit: when they part again, that is no division. It stays so until a unit has less than `parted`
    // of the volume of its parent.
    double inside = 0.5;
    double parted = 0.7;
};

// Indices of units, the child in the later time point.
struct unit_link {
    std::size_t child = 0;
    std::size_t parent = 0;

    bool operator==(const unit_link&) const = default;
};

// What linking leaves as it is: these links, and that there are no others between two units that are both
// fixed. A child of a kept link gets no other parent; a parent of one may yet divide.
struct kept_links {
    std::vector<unit_link> links = {};
    std::vector<bool> fixed_parents = {};    // of the units before; empty: none
    std::vector<bool> fixed_children = {};

    [[nodiscard]] bool may_be_linked(std::size_t parent, std::size_t child) const
    {
        return fixed_parents.empty() || !fixed_parents[parent] || !fixed_children[child];
    }
};

// The mapped rasters of a unit. Units come in the order of their heads: of two as near, the first is taken.
using unit_rasters = std::vector<const roi_mask*>;

// Is given the units of one time point after the other; the first may be any.
class unit_linker {
public:
    explicit unit_linker(physical_scale scale = {}, linking_rule rule = {}) : _scale(scale), _rule(rule) {}

    // The links of these units to those given before that come to those kept, in ascending order. None, and
    // the linker is still where it was, once carry_on answers no; it is asked at every few comparisons.
    // REQUIRES: the rasters of the units given before are still there, or were given again.
    [[nodiscard]] std::vector<unit_link> link(const std::vector<unit_rasters>& units,
                                              const std::function<bool()>& carry_on = {},
                                              const kept_links& kept = {});

    // The rasters of the units given last, which may have been freed since.
    void give_again(const std::vector<unit_rasters>& units);

    // What is compared of a unit.
    struct body {
        unit_rasters rois;    // in ascending order of focal planes
        pos3d centre;         // of its volume, in micrometres
        double volume = 0;    // 0: it has no pixels, and gets no links
        double radius = 0;
        bool is_known = false;    // it has a parent, or there is no time point before
        bool is_two = false;      // two nuclei in one unit
    };

private:
    [[nodiscard]] std::vector<body> bodies(const std::vector<unit_rasters>& units) const;
    [[nodiscard]] bool go_on(std::vector<body> now, std::span<const unit_link> links,
                             const std::function<bool()>& carry_on);

    physical_scale _scale;
    linking_rule _rule;
    bool _has_begun = false;
    std::vector<body> _before;
};
