// replay.h - a step made backwards, or once more.
//
// Entries of equal keys come back in their order. Tables that were changed behind the back of the steps
// are borne: what is gone is not removed, what is there is not put in twice.
#pragma once
#include "edit_step.h"
#include "saved_state.h"

// Makes the changes of the entries that these files keep. True iff each met the tables as the step had left
// them.
bool undo_step(const edit_step& step, const curation_tables& tables, file_set files = all_files);
bool redo_step(const edit_step& step, const curation_tables& tables, file_set files = all_files);

// True iff the tables, which are as the step has left them, were the same before it.
[[nodiscard]] bool amounts_to_nothing(const edit_step& step, const curation_tables& tables);

// Where the changes lie: the time point and focal plane of the first of them, or of one that lies at `here`
// if any does. False when no change has a place.
struct step_place {
    int t = 0;
    int z = 0;
    bool operator==(const step_place&) const = default;
};
[[nodiscard]] bool find_place(const edit_step& step, step_place here, step_place& found);
