// rest_of_file.h - what a file beside the recording does not tell, although it is up to date: the order of
// entries with equal keys, and entries that name what is gone.
#pragma once
#include "edit_step.h"

class curation;

// The changes that lead from what this file says, once it is written, to what there is. Of what is kept in no
// file: all of it.
[[nodiscard]] edit_step rest_of_file(kept_in file, const curation& model);
