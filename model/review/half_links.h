// half_links.h - which units of a neighbouring time point the two halves of a cut unit are linked to.
#pragma once
#include "curation.h"
#include "unit_shape.h"

#include <array>
#include <set>
#include <string>
#include <utility>

class half_links {
public:
    // REQUIRES: t is the time point before that of the halves, or after it; a LongRun keeps the rasters
    half_links(curation& model, const std::pair<std::string, std::string>& halves, int t);

    // Each half gets the nearest of the units that were linked to the whole, or are `free`. None is shared,
    // unless it is the mother of both.
    void give(const std::set<std::string>& free);

private:
    [[nodiscard]] std::set<std::string> linked(std::size_t half) const;
    [[nodiscard]] unit_shape shape(const std::string& unit) const;
    [[nodiscard]] std::set<std::string> candidates(const std::set<std::string>& free) const;
    void choose(const std::set<std::string>& candidates);
    [[nodiscard]] bool is_mother(const std::string& unit) const;
    void unlink(const std::string& unit, const std::string& half);

    curation& _model;
    int _t;
    bool _is_before;
    std::array<std::string, 2> _halves;
    std::array<unit_shape, 2> _shapes;
    std::array<std::string, 2> _chosen;    // of each half; "": none
    std::set<std::string> _taken;
};
