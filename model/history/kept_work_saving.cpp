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

namespace fs = std::filesystem;

bool kept_work::save_all()
{
    if (_names[0].empty()) {
        error_line("No recording is open from a file: nothing to save");
        return false;
    }
    if (_model.is_busy())
        return false;
    const file_set files = _history.state().unsaved_files();
    bool is_saved = true;
    for (const kept_in file : {kept_in::rois, kept_in::lineage, kept_in::info, kept_in::false_positives})
        if ((files & bit_of(file)) != 0)
            is_saved = save_file(file) && is_saved;
    if (is_saved && (files & bit_of(kept_in::nowhere)) != 0) {    // the journal keeps it
        _history.state().saved(bit_of(kept_in::nowhere));
        note(journal_text::saved(kept_in::nowhere, "-"));
    }
    if (_writer && !_writer->sync())
        tell_failure();
    rotate_journal();
    _model.tell(&curation_observer::work_saved);
    return is_saved;
}

bool kept_work::save_file(kept_in file) { return keep_version_before(file) && write_file(file); }

// What this run of the program has not seen is put aside; else it becomes the version before.
bool kept_work::keep_version_before(kept_in file)
{
    const int i = static_cast<int>(file);
    const fs::path name = _names[i];
    std::error_code fault;
    if (!fs::exists(name, fault))
        return true;
    if (_known[i].empty() || _known[i] != hash_of_file(_names[i])) {
        const std::string aside = _names[i] + '.' + time_in_name();
        fs::rename(name, aside, fault);
        if (!fault)
            error_line(_names[i], " was not read or has changed: put aside as ", aside);
    } else {
        fs::copy_file(name, _names[i] + '~', fs::copy_options::overwrite_existing, fault);
        if (!fault && file == kept_in::rois && !fs::exists(_names[i] + ".orig"))
            fs::copy_file(name, _names[i] + ".orig", fault);
    }
    if (fault)
        error_line("Cannot keep ", _names[i], ": ", fault.message());
    return !fault;
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
    default:
        return write_mark_file(name, _model.dataset(), "FP", _model.false_positives());
    }
}

// Whoever replaces a file beside the recording: the journal tells before and after, so that its steps have
// a file to stand on whenever the program ends.
void kept_work::before_replacing(const std::string& target, const std::string& content)
{
    const auto found = std::ranges::find(_names, target);
    if (target.empty() || found == std::end(_names))
        return;
    _coming = hash_of_file(content);
    if (!_writer)    // nothing was edited
        return;
    const auto file = static_cast<kept_in>(found - std::begin(_names));
    note(journal_text::saving(file, _coming, rest_of_file(file, _model)));
    if (!_writer->sync())
        tell_failure();
}

void kept_work::after_replacing(const std::string& target, bool is_replaced)
{
    const auto found = std::ranges::find(_names, target);
    if (target.empty() || found == std::end(_names) || !is_replaced)
        return;
    const auto file = static_cast<kept_in>(found - std::begin(_names));
    _known[found - std::begin(_names)] = _coming;
    _history.state().saved(bit_of(file));
    if (_writer)
        note(journal_text::saved(file, _coming));
    _model.tell(&curation_observer::work_saved);
}
