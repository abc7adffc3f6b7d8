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

constexpr const char* suffixes[] = {".roi", ".lineage", ".info", ".fp"};    // by kept_in

// Without a final ".roi", and as replaced files are named.
std::string stem_of(const std::string& roi_file)
{
    std::error_code unreadable;
    const fs::path path = fs::canonical(roi_file, unreadable);
    const std::string name = unreadable ? fs::absolute(roi_file).native() : path.native();
    return name.ends_with(suffixes[0]) ? name.substr(0, name.size() - 4) : name;
}

std::string canonical_name(const std::string& filename)
{
    std::error_code unreadable;
    const fs::path path = fs::weakly_canonical(filename, unreadable);
    return unreadable ? filename : path.native();
}

}    // namespace

kept_work::kept_work(curation& model) : _model(model), _observing(model, *this) {}

kept_work::~kept_work() = default;

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
    _names[0] = canonical_name(roi_file);
    _known[0] = hash_of_file(_names[0]);
    _journal_name = stem + ".journal";
    read_journal();
    _model.tell(&curation_observer::offers_changed);
}

// The steps of a recording end with it.
void kept_work::recording_changes()
{
    _writer.reset();
    _lock.reset();
    _journal.reset();
    _offers.clear();
    _history = edit_history();
    for (int file = 0; file < kept_in_count; ++file)
        _names[file] = _known[file] = "";
    _journal_name.clear();
    _is_taken_up = _is_without_journal = false;
}

void kept_work::step_ended(edit_step& step)
{
    if (amounts_to_nothing(step, _model.tables()))
        return;
    note(journal_text::step(step));
    _history.add(std::move(step));
    decline();    // this is a branch of its own
}

// ---- Undo and redo

bool kept_work::can_undo() const { return !_model.is_busy() && _history.can_undo(); }

bool kept_work::can_redo() const { return !_model.is_busy() && _history.can_redo(); }

const edit_step* kept_work::undo() { return can_undo() ? step_back_or_forth(false) : nullptr; }

const edit_step* kept_work::redo() { return can_redo() ? step_back_or_forth(true) : nullptr; }

const edit_step* kept_work::step_back_or_forth(bool forth)
{
    const edit_step& step = forth ? _history.next_to_redo() : _history.next_to_undo();
    (void)(forth ? redo_step(step, _model.tables()) : undo_step(step, _model.tables()));
    forth ? _history.redone() : _history.undone();
    note(forth ? journal_text::redo() : journal_text::undo());
    _model.forget_what_is_gone();
    const std::shared_ptr<observer_list> observers = _model.m_observers;
    for (std::size_t i = 0; i < observers->size(); ++i)
        (*observers)[i]->step_replayed(step, forth);
    return &step;
}

void kept_work::was_read(const std::string& filename)
{
    const std::string name = canonical_name(filename);
    for (int file = 0; file < kept_in_count; ++file)
        if (!_names[file].empty() && _names[file] == name)
            _known[file] = hash_of_file(name);
}
