// run_state.h - what a curation and the long operations that work on it know of each other.
#pragma once

class curation;

struct run_state {
    curation* model;                // null once it is gone
    int runs = 0;                   // those going on, one inside the other
    bool is_closing = false;        // all of them are to end
    int steps_between_looks = 0;    // how many steps are done between two looks for events
    int steps_to_skip = 0;          // how many of them are left
};
