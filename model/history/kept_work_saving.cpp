// Saving everything that has changed to the files beside the recording.
#include "curation.h"
#include "error_line.h"
#include "journal.h"
#include "journal_writer.h"
#include "kept_work.h"
#include "mark_files.h"
#include "rest_of_file.h"

#include <QLockFile>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace fs = std::filesystem;

namespace {

// As many bytes as tell what a file holds.
std::string beginning_of(const std::string& filename)
{
    std::string text(512, '\0');
    std::ifstream file(filename, std::ios::binary);
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(file.gcount()));
    return text;
}

// Whether the content is what this file keeps, and not something else that a person saves under its name. An
// empty one is, where there is nothing to keep.
bool is_of_kind(kept_in file, std::string_view content, const curation& model)
{
    if (file == kept_in::recording)
        return content.starts_with('{');
    if (file == kept_in::rois)
        return content.starts_with(model.dataset() + '\n');
    const std::string name = "NAME " + model.dataset() + '\n';
    if (!content.starts_with(name))
        return false;
    const std::string_view rest = content.substr(name.size());
    switch (file) {
    case kept_in::lineage:
        return rest.empty() ? model.head_members().empty() : rest.starts_with("UNIT ");
    case kept_in::info:
        return rest.empty() ? model.selected().empty() : rest.starts_with("SELECT ");
    default:
        return rest.empty() ? model.false_positives().empty() : rest.starts_with("FP ");
    }
}

// All of it or nothing, and one line.
bool keep_copy(const std::string& name, const std::string& as)
{
    std::error_code fault;
    const std::string part = as + ".part";
    fs::copy_file(name, part, fs::copy_options::overwrite_existing, fault);
    if (!fault)
        fs::rename(part, as, fault);
    if (!fault)
        return true;
    error_line("Cannot keep ", name, " as ", as, ": ", fault.message());
    fs::remove(part, fault);
    return false;
}

}    // namespace

bool kept_work::save_all()
{
    if (_names[0].empty()) {
        error_line("No recording is open from a file: nothing to save");
        return false;
    }
    if (_model.is_busy())
        return false;
    const Writing writing(_model);
    const file_set files = _history.state().unsaved_files();
    bool is_saved = true;
    for (const kept_in file :
         {kept_in::rois, kept_in::lineage, kept_in::info, kept_in::false_positives, kept_in::recording})
        if ((files & bit_of(file)) != 0)
            is_saved = save_file(file) && is_saved;
    if ((files & bit_of(kept_in::nowhere)) != 0)
        is_saved = save_in_journal() && is_saved;
    if (_writer && !_writer->sync())
        tell_failure();
    _model.tell(&curation_observer::work_saved);
    return is_saved;
}

// What no file keeps: tracking marks.
bool kept_work::save_in_journal()
{
    if (!_writer || !_writer->sync()) {
        error_line("Tracking marks are not saved: no journal is kept of ", _names[0]);
        return false;
    }
    _history.state().saved(bit_of(kept_in::nowhere));
    note(journal_text::saved(kept_in::nowhere, "-"));
    return true;
}

bool kept_work::save_file(kept_in file) { return keep_version_before(file) && write_file(file); }

// What this run of the program has not seen is put aside; else it becomes the version before, where there is
// room for one.
bool kept_work::keep_version_before(kept_in file)
{
    const std::string& name = _names[static_cast<int>(file)];
    const std::string& known = _known[static_cast<int>(file)];
    std::error_code fault;
    if (!fs::exists(name, fault))
        return true;
    if (file == kept_in::rois && !fs::exists(name + ".orig", fault))
        (void)keep_copy(name, name + ".orig");
    if (known.empty() || known != hash_of_file(name)) {
        const std::string aside = free_name(name + '.' + time_in_name());
        if (!fs::copy_file(name, aside, fault))
            error_line("Cannot put aside ", name, ": ", fault.message());
        else
            error_line(name, " was not read or has changed: put aside as ", aside);
        return !fault;
    }
    (void)keep_copy(name, name + '~');
    return true;
}

bool kept_work::write_file(kept_in file)
{
    const std::string& name = _names[static_cast<int>(file)];
    switch (file) {
    case kept_in::rois:
        return _model.rois().write(name);
    case kept_in::lineage:
        return write_lineage(name, _model.dataset(), _model.current_lineage());
    case kept_in::info:
        return write_mark_file(name, _model.dataset(), "SELECT", _model.selected());
    case kept_in::recording:
        return write_recording_file(name, _model.info());
    default:
        return write_mark_file(name, _model.dataset(), "FP", _model.false_positives());
    }
}

// Whoever replaces a file beside the recording: the journal tells before and after, so that its steps have
// a file to stand on whenever the program ends. What belongs to an open step is noted first: it is in the
// file.
void kept_work::before_replacing(const std::string& target, const std::string& content)
{
    const int i = file_at(target);
    if (i < 0 || (Writing::current && Writing::current != &_model))
        return;
    _coming = hash_of_file(content);
    _model.end_step_so_far();
    const auto file = static_cast<kept_in>(i);
    if (!is_of_kind(file, beginning_of(content), _model))
        _coming.clear();
    if (!_writer || _coming.empty())    // nothing was edited, or nothing is kept
        return;
    note(journal_text::saving(file, _coming, rest_of_file(file, _model)));
    if (!_writer->sync())
        tell_failure();
}

void kept_work::after_replacing(const std::string& target, bool is_replaced)
{
    const int i = file_at(target);
    if (i < 0 || !is_replaced || (Writing::current && Writing::current != &_model))
        return;
    const auto file = static_cast<kept_in>(i);
    _known[i] = _coming;
    if (_coming.empty())
        return;
    if (file == kept_in::rois && !_writer)    // what is edited from now on stands on it
        _base_hash = _coming;
    _history.state().saved(bit_of(file));
    if (_writer)
        note(journal_text::saved(file, _coming));
    _model.tell(&curation_observer::work_saved);
}
