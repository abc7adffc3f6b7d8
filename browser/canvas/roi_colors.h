// roi_colors.h - the state codes whose bitwise OR is an ROI's index into the colour table.
//
// Elite, selected and removed include the low four bits: a tracking bit beside
// them changes nothing. Only the highlight adds to every other state.
#pragma once

enum roi_state : int {
    DEFAULT = 0,
    FORWARD = 1,
    BACKWARD = 2,
    LINEAGE = 4,
    ELITE = 15,
    SELECTED = 31,
    REMOVED = 47,
    HIGHLIGHT = 64,
};
