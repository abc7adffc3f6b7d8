// The journal of the work on a recording: what an earlier run has left, and what this one notes.
#include "curation.h"
#include "error_line.h"
#include "journal.h"
#include "journal_writer.h"
#include "kept_work.h"
#include "overwrite.h"

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

constexpr std::size_t largest_journal = std::size_t{64} << 20;    // bytes; then a new one begins

bool is_there(const std::string& name) { return ::access(name.c_str(), F_OK) == 0; }

// Whether it can be appended to, or made.
bool can_be_kept(const std::string& name)
{
    return ::access(is_there(name) ? name.c_str() : fs::path(name).parent_path().c_str(), W_OK) == 0;
}

// Where locks lie: they end with the person's session. Never none.
std::vector<std::string> lock_folders()
{
    const char* const folder = std::getenv("XDG_RUNTIME_DIR");
    std::vector<std::string> folders{QDir::tempPath().toStdString()};
    if (folder && *folder)
        folders.insert(folders.begin(), folder);
    return folders;
}

// In the first of the folders that can hold one. Not locked: another process has it, or no folder can.
std::unique_ptr<QLockFile> try_lock(const std::string& name)
{
    std::unique_ptr<QLockFile> lock;
    for (const std::string& folder : lock_folders()) {
        lock = std::make_unique<QLockFile>(QString::fromStdString(folder + name));
        lock->setStaleLockTime(0);    // however long it works: only a process that is gone has left it
        if (lock->tryLock() || lock->error() == QLockFile::LockFailedError)
            break;
    }
    return lock;
}

}    // namespace

// Beside the recording; in the state folder where it cannot be kept there, or could not so far.
std::string kept_work::choose_journal() const
{
    if (can_be_kept(_beside) && is_there(_beside))
        return _beside;
    const std::string folder = state_folder();
    const std::string elsewhere = folder.empty() ? "" : folder + hash_of_text(_names[0]) + ".journal";
    return !elsewhere.empty() && (is_there(elsewhere) || !can_be_kept(_beside)) ? elsewhere : _beside;
}

// Nothing is known of one that cannot be read, and nothing written to it.
void kept_work::read_journal()
{
    _journal_name = choose_journal();
    std::optional<std::string> content = content_of(_journal_name);
    _journal = std::make_unique<journal>(std::move(content).value_or(""));
    if (!content && !_is_without_journal)
        (void)go_without_journal(_journal_name + " cannot be read");
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
    const std::size_t last = _journal->stretches().size() - 1;
    for (std::size_t i = last + 1; i-- > 0;) {
        const journal_stretch& stretch = _journal->stretches()[i];
        const unsaved_work work = fits(stretch, files) ? unsaved_in(stretch, files) : unsaved_work();
        if (work.steps > 0 || (i == last && work.done > 0))
            _offers.push_back({i, work.steps, std::string(work.time)});
    }
    std::ranges::stable_sort(_offers, std::greater(), &offer::time);
}

// Another window goes on in the journal: its steps are not for the taking.
bool kept_work::is_taken_elsewhere() const
{
    return !_lock && try_lock(lock_name())->error() == QLockFile::LockFailedError;
}

bool kept_work::take_up(std::size_t number)
{
    if (_was_edited || _model.is_busy()) {
        error_line(_was_edited ? "Cannot take up the journal: edits were made already"
                               : "Cannot take up the journal while an operation is going on");
        return false;
    }
    if (_offers.empty())
        return true;
    if (number >= _offers.size()) {
        error_line("The journal offers no such work");
        return false;
    }
    if (!lock())
        return false;
    const offer wanted = _offers[number];
    read_journal();    // whoever had it until now may have gone on
    find_offers();
    const auto found = std::ranges::find(_offers, wanted.stretch, &offer::stretch);
    std::optional<restored_state> state;
    if (found != _offers.end())
        state = restore(_journal->stretches()[wanted.stretch], files_now());
    if (!state) {
        error_line(_journal_name, ": its steps do not fit ", _names[0]);
        _model.tell(&curation_observer::offers_changed);
        return false;
    }
    for (int file = 0; file < kept_in_count; ++file)
        if (!state->read_hashes[file].empty())
            _known[file] = state->read_hashes[file];
    _history = std::move(state->history);
    _model.take_over(std::move(*state));
    _go_on_with = wanted.stretch;
    _is_taken_up = true;
    (void)begin_journal();
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

// One recording has one lock, whatever links lead to it.
std::string kept_work::lock_name() const
{
    std::error_code unreadable;
    const fs::path file = fs::weakly_canonical(_names[0], unreadable);
    return "/orvbrowser-" + hash_of_text(unreadable ? _names[0] : file.native()) + ".lock";
}

bool kept_work::lock()
{
    if (_lock)
        return true;
    _lock = try_lock(lock_name());
    if (_lock->isLocked())
        return true;
    const bool is_taken = _lock->error() == QLockFile::LockFailedError;
    _lock.reset();
    return go_without_journal(is_taken ? "another window works on it" : "no lock can be made");
}

bool kept_work::go_without_journal(const std::string& why)
{
    error_line("No journal is kept of ", _names[0], ": ", why);
    _is_without_journal = true;
    return false;
}

// Work goes on in a journal of this recording that fits its files, as far as it could be read, and is not too
// large.
bool kept_work::can_go_on_in_journal() const
{
    const auto& stretches = _journal->stretches();
    if (_journal->recording() != _model.dataset() || stretches.empty())
        return false;
    const companions files = files_now();
    const bool is_large = _journal->good_bytes() > largest_journal &&
                          std::ranges::all_of(stretches, [&](const journal_stretch& stretch) {
                              return !fits(stretch, files) || unsaved_in(stretch, files).steps == 0;
                          });
    return !is_large &&
           std::ranges::any_of(stretches, [&](const auto& stretch) { return fits(stretch, files); });
}

// What cannot be gone on with is put aside. A torn end is cut off; what follows the part that was taken up,
// and is no torn end, is put aside with all of it first.
bool kept_work::begin_journal()
{
    if (_writer)
        return true;
    if (_names[0].empty() || _is_without_journal || !lock())
        return false;
    if (!_is_taken_up)
        read_journal();    // whoever had it until now may have gone on
    if (_is_without_journal)
        return false;
    const bool goes_on = _is_taken_up || can_go_on_in_journal();
    const bool has_content =
        is_there(_journal_name) && !(goes_on && _journal->is_sound()) && content_of(_journal_name) != "";
    if (has_content && !put_aside_compressed(_journal_name, goes_on))
        return go_without_journal("what is there cannot be put aside");
    if (!goes_on)
        _journal = std::make_unique<journal>("");
    const int fd = ::open(_journal_name.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
    if (fd < 0 || ::ftruncate(fd, static_cast<off_t>(_journal->good_bytes())) != 0) {
        const int error = errno;
        if (fd >= 0)
            ::close(fd);
        return go_without_journal(std::strerror(error));
    }
    _writer = std::make_unique<journal_writer>(fd);
    if (_journal->good_bytes() == 0)
        _writer->append(journal_text::head(_model.dataset()));
    _writer->append(_is_taken_up ? journal_text::go_on_with(_go_on_with) : journal_text::stretch(_base_hash));
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
