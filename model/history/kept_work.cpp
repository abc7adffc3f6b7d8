// The recording and its history. Its journal: kept_work_journal.cpp; saving: kept_work_saving.cpp.
#include "kept_work.h"

#include "curation.h"
#include "error_line.h"
#include "journal.h"
#include "journal_writer.h"
#include "replay.h"

#include <QLockFile>

#include <filesystem>
#include <utility>

namespace fs = std::filesystem;

namespace {

constexpr auto part_every = std::chrono::milliseconds(20);    // of a long step, for a crash in the middle

constexpr const char* suffixes[] = {".roi", ".lineage", ".info", ".fp", ".recording.json"};    // by kept_in

// Without a final ".roi". A symbolic link is not followed: what belongs to the recording lies beside it.
std::string stem_of(const std::string& roi_file)
{
    std::error_code unreadable;
    const std::string name = fs::absolute(roi_file, unreadable).lexically_normal().native();
    return name.ends_with(suffixes[0]) ? name.substr(0, name.size() - 4) : name;
}

}    // namespace

kept_work::kept_work(curation& model) : _model(model), _observing(model, *this) {}

kept_work::~kept_work() { close_journal(); }

// What could not be written until now is tried once more.
void kept_work::close_journal()
{
    if (_writer && !_writer->sync())
        tell_failure();
    _writer.reset();
    _lock.reset();
    _journal.reset();
}

bool kept_work::open(const std::string& roi_file)
{
    auto rois = std::make_unique<roidb_plus>("");
    if (!rois->read_plus(roi_file))
        return false;
    _model.open_rois(std::move(rois));
    opened(roi_file);
    return true;
}

void kept_work::opened(const std::string& roi_file)
{
    const std::string stem = stem_of(roi_file);
    for (std::size_t file = 1; file < std::size(suffixes); ++file)
        _names[file] = stem + suffixes[file];
    std::error_code unreadable;
    _names[0] = fs::absolute(roi_file, unreadable).lexically_normal().native();
    _known[0] = _base_hash = hash_of_file(_names[0]);
    const std::string& recording = _names[static_cast<int>(kept_in::recording)];
    _known[static_cast<int>(kept_in::recording)] = hash_of_file(recording);
    _model.take_info(read_recording_file(recording));
    _beside = stem + ".journal";
    read_journal();
    if (!is_taken_elsewhere())
        find_offers();
    _model.tell(&curation_observer::offers_changed);
}

// The steps of a recording end with it.
void kept_work::recording_changes()
{
    close_journal();
    _offers.clear();
    _history = edit_history();
    for (int file = 0; file < kept_in_count; ++file)
        _names[file] = _known[file] = "";
    _journal_name.clear();
    _noted_bytes = 0;
    _is_taken_up = _was_edited = _is_without_journal = false;
}

void kept_work::step_goes_on(const edit_step& step)
{
    const auto now = std::chrono::steady_clock::now();
    if (now < _next_part || step.changes().size() == _noted_bytes)
        return;
    _next_part = now + part_every;
    note(journal_text::part(step, _noted_bytes));
    _noted_bytes = step.changes().size();
    set_edited();
}

void kept_work::step_ended(edit_step& step)
{
    const std::size_t noted = std::exchange(_noted_bytes, 0);
    if (amounts_to_nothing(step, _model.tables())) {
        if (noted > 0)
            note(journal_text::nothing());
        return;
    }
    note(journal_text::step(step, noted));
    _history.add(std::move(step));
    set_edited();
}

// From here on this is a branch of its own.
void kept_work::set_edited()
{
    _was_edited = true;
    decline();
}

// ---- Undo and redo

bool kept_work::can_undo() const { return !_model.is_busy() && _history.can_undo(); }

bool kept_work::can_redo() const { return !_model.is_busy() && _history.can_redo(); }

const edit_step* kept_work::undo() { return can_undo() ? step_back_or_forth(false) : nullptr; }

const edit_step* kept_work::redo() { return can_redo() ? step_back_or_forth(true) : nullptr; }

const edit_step* kept_work::step_back_or_forth(bool forth)
{
    const edit_step& step = forth ? _history.next_to_redo() : _history.next_to_undo();
    _was_edited = true;
    (void)(forth ? redo_step(step, _model.tables()) : undo_step(step, _model.tables()));
    forth ? _history.redone() : _history.undone();
    note(forth ? journal_text::redo() : journal_text::undo());
    if (step.concerns(kept_in::rois))
        _model.take_time_bounds_of_rois();
    _model.forget_what_is_gone();
    const std::shared_ptr<observer_list> observers = _model.m_observers;
    for (std::size_t i = 0; i < observers->size(); ++i)
        (*observers)[i]->step_replayed(step, forth);
    return &step;
}

void kept_work::was_read(const std::string& filename)
{
    std::error_code unreadable;
    const fs::path path = fs::weakly_canonical(filename, unreadable);
    if (const int file = file_at(path.native()); file >= 0)
        _known[file] = hash_of_file(path.native());
}

// Names are compared as they are once symbolic links are followed.
int kept_work::file_at(const std::string& target) const
{
    for (int file = 0; file < kept_in_count; ++file) {
        std::error_code unreadable;
        if (!_names[file].empty() && fs::weakly_canonical(_names[file], unreadable).native() == target)
            return file;
    }
    return -1;
}
