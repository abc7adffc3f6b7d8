// link_making.h - the links of a whole recording, by either rule, one time point after the other.
#pragma once
#include "curation.h"
#include "linking.h"

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

// Makes the links of one time point after the other. Between the steps the recording may be edited.
class link_making {
public:
    link_making(curation& model, const making& how);

    // The links of the units of time point t to those of the one before, in place of those that are not
    // spared. Time points are taken in ascending order, without a gap. False when the recording was closed
    // meanwhile.
    bool step(int t);

    // How many links into time point t there would be then; the same order of time points.
    [[nodiscard]] std::optional<std::size_t> count(int t);

private:
    using link_set = std::set<std::pair<std::string, std::string>>;    // child, parent
    [[nodiscard]] std::optional<link_set> find(int t);
    [[nodiscard]] std::optional<link_set> find_by_nearest(int t);
    [[nodiscard]] kept_links kept(int t, const std::vector<std::string>& heads) const;
    [[nodiscard]] std::vector<std::string> units_at(int t) const;
    [[nodiscard]] std::vector<unit_rasters> rasters_of(const std::vector<std::string>& units, int t) const;

    curation& _model;
    unsigned long _recording;
    unsigned long _releases = 0;    // of rasters of the time point before, when they were collected
    making _how;
    unit_linker _linker;
    std::vector<std::string> _before;    // the heads of the time point before
    bool _has_begun = false;
};
