// restored_state.h - a recording and its curation as the steps of a journal leave them, before anybody sees
// it.
#pragma once
#include "edit_history.h"
#include "edit_step.h"
#include "journal.h"
#include "q_roiimgdb.h"
#include "recording_file.h"
#include "roidb_plus.h"

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

struct restored_state {
    std::unique_ptr<roidb_plus> rois;
    std::multimap<std::string, std::string> head_members, links;
    std::map<std::string, std::string> members_head;
    std::set<std::string> elite, selected, false_positives, forward, backward, chosen, notes;
    recording_info info;
    edit_history history;
    std::string read_hashes[kept_in_count];    // of the files that were read for it; else ""

    [[nodiscard]] curation_tables tables();
};

// The files beside a recording: their names, and the hashes of what they hold; "" where there is none.
struct companions {
    std::string names[kept_in_count];
    std::string hashes[kept_in_count];
};

// Whether the stretch stands on these files.
[[nodiscard]] bool fits(const journal_stretch& stretch, const companions& files);

// How many of its steps these files do not hold, and how many were done; the last was made, undone or redone
// at `time`.
struct unsaved_work {
    std::size_t steps = 0;
    std::size_t done = 0;
    std::string_view time;
};
[[nodiscard]] unsaved_work unsaved_in(const journal_stretch& stretch, const companions& files);

// Reads the files that the stretch stands on and makes its steps. Nothing when they are not exactly what the
// steps were made on.
[[nodiscard]] std::optional<restored_state> restore(const journal_stretch& stretch, const companions& files);
