// scoring.h - how good units and links are, against the truth.
//
// What counts as a nucleus is what some ROI of its time point shows: nothing can be made of one that the
// detector missed.
#pragma once
#include "lineage_file.h"
#include "truth_file.h"

#include <cstddef>

// Shares are of 1. Where there was nothing to find and nothing was made, all of them are 1.
struct share_score {
    std::size_t made = 0;
    std::size_t right = 0;    // of those made
    std::size_t real = 0;
    std::size_t found = 0;    // of the real ones

    [[nodiscard]] double precision() const noexcept;
    [[nodiscard]] double recall() const noexcept;
    [[nodiscard]] double f() const noexcept;    // harmonic mean of the two
};

struct lineage_score {
    // A unit is right when all its ROIs are of one nucleus and none of that nucleus is missing: a joined
    // outline makes no unit right. An ROI that the truth does not name (a half of a joined outline that was
    // cut) is of the nucleus of which it covers more than half of a part.
    share_score units;

    // A link is right when the nuclei that most ROIs of its units are of are one nucleus, or mother and
    // daughter.
    share_score links;

    // A unit with several children is right when it is the mother and they are her two daughters, each of
    // them one unit. A real division is one of which mother and daughters are shown at successive time
    // points.
    share_score divisions;

    // Detection and tracking accuracy: 1 less the cost of turning the lineage into the true one, as a part of
    // that of making the true one from nothing; 0 when it is no better than nothing. A unit stands for
    // the nuclei more than half of whose pixels it covers (of a joined outline without known parts, each
    // nucleus has half). It costs 5 to split a unit for each nucleus more than one, 10 to add a missing
    // nucleus, 1 to delete a unit of none; for tra also 1 to delete a wrong link, 1.5 to add a missing one
    // and 1 where one is of the wrong kind (within a nucleus, to a daughter). Matula et al. (2015), Cell
    // tracking accuracy measurement based on comparison of acyclic oriented graphs, PLoS ONE 10(12):
    // e0144959.
    double det = 1;
    double tra = 1;
};

// One thing that is wrong, and the units that it shows in.
struct lineage_error {
    enum class kind { unit, missed, link, missing_link };
    kind what;
    std::set<std::string> units;
};

// Units that do not show one nucleus, and nuclei that none shows: a unit shows one when this part of its
// pixels is of it, and this part of all of its pixels in the unit. Links that are not right, and those
// between shown nuclei that are missing.
[[nodiscard]] std::vector<lineage_error> errors_of(const lineage& made, const truth& known, const roidb& rois,
                                                   double part = 0.9);

[[nodiscard]] lineage_score score_lineage(const lineage& made, const truth& known, const roidb& rois);
