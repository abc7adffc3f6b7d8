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

// Where the changes lie: the ROI key of the first of them, or of one that lies at time point t and focal
// plane z if any does. "" when no change has a place.
[[nodiscard]] std::string find_place(const edit_step& step, int t, int z);
