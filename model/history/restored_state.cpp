#include "restored_state.h"

#include "lineage_file.h"
#include "mark_files.h"
#include "replay.h"
#include "unit_notes.h"

#include <array>
#include <utility>

namespace {

using kind = journal_event::kind;

// From which event on the entries of each file are made from the steps; what was before is in the file.
struct starting_points {
    std::array<std::size_t, kept_in_count> first{};
    std::array<const journal_event*, kept_in_count> saved_in{};    // null: the stretch began without the file
};

std::optional<starting_points> find_start(const journal_stretch& stretch, const companions& files)
{
    starting_points start;
    for (std::size_t i = 0; i < stretch.events.size(); ++i) {
        const journal_event& event = stretch.events[i];
        const auto file = static_cast<std::size_t>(event.file);
        if (event.what != kind::saving || event.hash.empty() || event.hash != files.hashes[file])
            continue;
        start.first[file] = i + 1;
        start.saved_in[file] = &event;
    }
    const bool is_on_roi_file = start.saved_in[0] || stretch.roi_hash == files.hashes[0];
    return is_on_roi_file ? std::optional(start) : std::nullopt;
}

std::set<std::string> read_marks(const std::string& filename, const std::string& dataset, const char* keyword)
{
    std::set<std::string> marks;
    read_mark_file(filename, dataset, keyword, marks);
    return marks;
}

// What the files say, where they are the start.
bool read_files(restored_state& state, const starting_points& start, const companions& files)
{
    state.rois = std::make_unique<roidb_plus>("");
    if (!state.rois->read_plus(files.names[0]))
        return false;
    const std::string& dataset = state.rois->name();
    state.read_hashes[0] = files.hashes[0];
    state.read_hashes[static_cast<int>(kept_in::recording)] =
        files.hashes[static_cast<int>(kept_in::recording)];
    state.info = read_recording_file(files.names[static_cast<int>(kept_in::recording)]);
    const auto is_read = [&](kept_in file) {
        const auto i = static_cast<std::size_t>(file);
        if (start.saved_in[i])
            state.read_hashes[i] = files.hashes[i];
        return start.saved_in[i] && !files.hashes[i].empty();    // else there was none, and is none
    };
    if (is_read(kept_in::lineage)) {
        std::optional<lineage> units = read_lineage(files.names[static_cast<int>(kept_in::lineage)], dataset);
        if (!units)
            return false;
        state.members_head = heads_of_members(*units);
        state.notes = notes_of(*units);
        state.head_members = std::move(units->head_members);
        state.links = std::move(units->links);
        state.elite = std::move(units->elite);
    }
    if (is_read(kept_in::info))
        state.selected = read_marks(files.names[static_cast<int>(kept_in::info)], dataset, "SELECT");
    if (is_read(kept_in::false_positives))
        state.false_positives =
            read_marks(files.names[static_cast<int>(kept_in::false_positives)], dataset, "FP");
    return true;
}

// The files whose entries event number i changes.
file_set files_made_at(std::size_t i, const starting_points& start)
{
    file_set files = 0;
    for (unsigned file = 0; file < kept_in_count; ++file)
        if (i >= start.first[file])
            files |= 1U << file;
    return files;
}

// False when the event does not fit.
bool make(const journal_event& event, file_set files, restored_state& state)
{
    edit_history& history = state.history;
    switch (event.what) {
    case kind::step: {
        edit_step step{std::string(event.title), std::string(event.changes)};
        const bool is_exact = redo_step(step, state.tables(), files);
        history.add(std::move(step));
        return is_exact;
    }
    case kind::undo:
        if (!history.can_undo() || !undo_step(history.next_to_undo(), state.tables(), files))
            return false;
        history.undone();
        return true;
    case kind::redo:
        if (!history.can_redo() || !redo_step(history.next_to_redo(), state.tables(), files))
            return false;
        history.redone();
        return true;
    default:
        return true;
    }
}

// Whether the entries of its file are saved from this event on: the file holds them still. What no file keeps
// is saved in the journal itself.
bool tells_saved(const journal_event& event, const companions& files)
{
    if (event.what != kind::saved && event.what != kind::saving)
        return false;
    if (event.file == kept_in::nowhere)
        return event.what == kind::saved;
    return !event.hash.empty() && event.hash == files.hashes[static_cast<int>(event.file)];
}

}    // namespace

curation_tables restored_state::tables()
{
    return {.rois = rois.get(),
            .rasters = nullptr,
            .head_members = &head_members,
            .members_head = &members_head,
            .links = &links,
            .elite = &elite,
            .selected = &selected,
            .false_positives = &false_positives,
            .forward = &forward,
            .backward = &backward,
            .notes = &notes,
            .info = &info,
            .chosen = &chosen};
}

bool fits(const journal_stretch& stretch, const companions& files)
{
    return find_start(stretch, files).has_value();
}

unsaved_work unsaved_in(const journal_stretch& stretch, const companions& files)
{
    saved_state state;
    unsaved_work work;
    for (const journal_event& event : stretch.events) {
        if (event.what == kind::step)
            state.add(files_of(edit_step({}, std::string(event.changes))));
        else if (event.what == kind::undo && state.position() > 0)
            state.undo();
        else if (event.what == kind::redo && state.position() < state.end())
            state.redo();
        else if (tells_saved(event, files))
            state.saved(bit_of(event.file));
        if (event.what != kind::saving && event.what != kind::saved)
            work.time = event.time;
    }
    work.steps = state.unsaved_steps();
    work.done = state.position();
    return work;
}

std::optional<restored_state> restore(const journal_stretch& stretch, const companions& files)
{
    const std::optional<starting_points> start = find_start(stretch, files);
    restored_state state;
    if (!start || !read_files(state, *start, files))
        return std::nullopt;
    for (std::size_t i = 0; i < stretch.events.size(); ++i) {
        const journal_event& event = stretch.events[i];
        const auto file = static_cast<std::size_t>(event.file);
        if (start->saved_in[file] == &event) {
            if (!redo_step(edit_step({}, std::string(event.changes)), state.tables(), bit_of(event.file)))
                return std::nullopt;
        } else if (!make(event, files_made_at(i, *start), state)) {
            return std::nullopt;
        }
        if (tells_saved(event, files))
            state.history.state().saved(bit_of(event.file));
    }
    return state;
}
