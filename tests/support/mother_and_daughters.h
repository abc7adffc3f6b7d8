// mother_and_daughters.h - three linked units in the small recording.
#pragma once
#include "open_window.h"
#include "units.h"

// Units of the squares at (10, 5), one for each time point; at time point 1 its daughters, the larger on
// planes 20 to 22.
struct Family {
    explicit Family(WindowProbe& w)
    {
        mother = put_unit(w, {"000020010005"});
        large = put_unit(w, {"001020010005", put_roi(w, {10, 5, 21, 1}), put_roi(w, {10, 5, 22, 1})});
        small = put_unit(w, {put_roi(w, {40, 20, 20, 1})});
        w.link(mother, large);
        w.link(mother, small);
        w.show_changes();
    }

    std::string mother, large, small;
};
