// The journal of the work on a recording: what an earlier run has left, and what this one notes.
#include "curation.h"
#include "error_line.h"
#include "journal.h"
#include "journal_writer.h"
#include "kept_work.h"
#include "overwrite.h"
#include "rest_of_file.h"

#include <QDir>
#include <QLockFile>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace fs = std::filesystem;

namespace {

// Where locks lie: they end with the person's session.
std::string runtime_folder()
{
    const char* const folder = std::getenv("XDG_RUNTIME_DIR");
    return folder && *folder ? folder : QDir::tempPath().toStdString();
}

bool is_there(const std::string& filename)
{
    std::error_code unreadable;
    return fs::exists(filename, unreadable);
}

}    // namespace

std::string kept_work::journal_in_state_folder() const
{
    const std::string folder = state_folder();
    return folder.empty() ? std::string() : folder + hash_of_text(_names[0]) + ".journal";
}

void kept_work::read_journal()
{
    if (const std::string elsewhere = journal_in_state_folder();
        !is_there(_journal_name) && !elsewhere.empty() && is_there(elsewhere))
        _journal_name = elsewhere;
    _journal = std::make_unique<journal>(content_of(_journal_name));
    find_offers();
}

companions kept_work::files_now() const
{
    companions files;
    for (int file = 0; file < kept_in_count; ++file) {
        files.names[file] = _names[file];
        files.hashes[file] = _names[file].empty() ? "" : hash_of_file(_names[file]);
    }
    return files;
}

void kept_work::find_offers()
{
    _offers.clear();
    if (_journal->recording() != _model.dataset() || _journal->stretches().empty())
        return;
    const companions files = files_now();
    for (std::size_t i = _journal->stretches().size(); i-- > 0;) {
        const journal_stretch& stretch = _journal->stretches()[i];
        const unsaved_work work = fits(stretch, files) ? unsaved_in(stretch, files) : unsaved_work();
        if (work.steps > 0)
            _offers.push_back({i, work.steps, std::string(work.time)});
    }
    std::ranges::stable_sort(_offers, std::greater(), &offer::time);
}

bool kept_work::take_up(std::size_t number)
{
    if (_history.end() > 0 || _model.is_busy()) {
        error_line("Cannot take up the journal: edits were made already");
        return false;
    }
    if (number >= _offers.size())
        return true;
    if (!lock())
        return false;
    const std::size_t stretch = _offers[number].stretch;
    const companions files = files_now();
    std::optional<restored_state> state = restore(_journal->stretches()[stretch], files);
    if (!state) {
        error_line(_journal_name, ": its steps do not fit ", _names[0]);
        return false;
    }
    std::ranges::copy(files.hashes, std::begin(_known));
    _history = std::move(state->history);
    _model.take_over(std::move(*state));
    _go_on_with = stretch;
    _is_taken_up = true;
    decline();
    return true;
}

void kept_work::decline()
{
    if (_offers.empty())
        return;
    _offers.clear();
    _model.tell(&curation_observer::offers_changed);
}

// ---- Writing

bool kept_work::lock()
{
    if (_lock)
        return true;
    const std::string name = runtime_folder() + "/orvbrowser-" + hash_of_text(_names[0]) + ".lock";
    _lock = std::make_unique<QLockFile>(QString::fromStdString(name));
    _lock->setStaleLockTime(0);    // however long it works: only a process that is gone has left it
    if (_lock->tryLock())
        return true;
    const bool is_taken = _lock->error() == QLockFile::LockFailedError;
    _lock.reset();
    error_line(is_taken ? "Another window works on this recording: no journal is kept of "
                        : "No journal is kept of ",
               _names[0]);
    _is_without_journal = true;
    return false;
}

// Beside the recording, else in the state folder; -1 when there is none to be had.
int kept_work::open_journal_file()
{
    for (const std::string& name : {_journal_name, journal_in_state_folder()}) {
        const int fd =
            name.empty() ? -1 : ::open(name.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
        if (fd < 0)
            continue;
        if (name != _journal_name)
            _journal = std::make_unique<journal>(content_of(name));
        _journal_name = name;
        return fd;
    }
    return -1;
}

// A journal that belongs to another recording, or holds what is no journal, is put aside; so is one that fits
// no file any more. A torn end is cut off.
bool kept_work::begin_journal()
{
    if (_writer)
        return true;
    if (_names[0].empty() || _is_without_journal || !lock())
        return false;
    const companions files = files_now();
    const auto& stretches = _journal->stretches();
    const bool is_ours = _journal->is_sound() && _journal->recording() == _model.dataset() &&
                         std::ranges::any_of(stretches, [&](const auto& s) { return fits(s, files); });
    if (!is_ours && is_there(_journal_name) && fs::file_size(_journal_name) > 0) {
        if (!put_aside_compressed(_journal_name))
            error_line("Cannot put aside ", _journal_name);
        _journal = std::make_unique<journal>("");
    }
    const int fd = open_journal_file();
    if (fd < 0 || ::ftruncate(fd, static_cast<off_t>(_journal->good_bytes())) != 0) {
        error_line("No journal is kept of ", _names[0], ": ", std::strerror(errno));
        _is_without_journal = true;
        return false;
    }
    _writer = std::make_unique<journal_writer>(fd);
    if (_journal->good_bytes() == 0)
        _writer->append(journal_text::head(_model.dataset()));
    _writer->append(_is_taken_up ? journal_text::go_on_with(_go_on_with)
                                 : journal_text::stretch(_known[0], true));
    return true;
}

void kept_work::note(const std::string& text)
{
    if (!begin_journal())
        return;
    _writer->append(text);
    tell_failure();
}

void kept_work::tell_failure()
{
    if (const std::string why = _writer->take_failure(); !why.empty())
        error_line(_journal_name, ": ", why);
}

// A new journal stands on the files as they are; the old one is put aside.
void kept_work::rotate_journal()
{
    constexpr std::uintmax_t largest = std::uintmax_t{64} << 20;
    std::error_code unreadable;
    if (!_writer || unsaved_edits() > 0 || fs::file_size(_journal_name, unreadable) < largest || unreadable)
        return;
    _writer.reset();
    if (!put_aside_compressed(_journal_name)) {
        error_line("Cannot put aside ", _journal_name);
        return;
    }
    _journal = std::make_unique<journal>("");
    _is_taken_up = false;
    const int fd = open_journal_file();
    if (fd < 0)
        return;
    _writer = std::make_unique<journal_writer>(fd);
    const companions files = files_now();
    _writer->append(journal_text::head(_model.dataset()) + journal_text::stretch(files.hashes[0], false));
    for (int i = 0; i < kept_in_count; ++i) {
        const auto file = static_cast<kept_in>(i);
        _writer->append(journal_text::saving(file, files.hashes[i], rest_of_file(file, _model)) +
                        journal_text::saved(file, files.hashes[i]));
    }
}
