// open_step.h - the step that is being made.
#pragma once
#include "edit_step.h"

#include <string>
#include <utility>

class curation;

struct open_step {
    open_step(curation* made_in, std::string title, std::string chosen)
        : model(made_in), step(std::move(title)), chosen_before(std::move(chosen))
    {
    }

    curation* model;    // null once the step has ended before its scopes have
    edit_step step;
    std::string chosen_before;
    int scopes = 0;
    int machine_scopes = 0;    // of these, those of what no person decides one by one
};
