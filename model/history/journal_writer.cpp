#include "journal_writer.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <unistd.h>
#include <utility>

namespace {

constexpr auto sync_every = std::chrono::seconds(2);    // what a pulled plug costs, and a full disk is given

}    // namespace

journal_writer::journal_writer(int fd) : _fd(fd), _thread([this] { run(); }) {}

journal_writer::~journal_writer()
{
    {
        const std::lock_guard lock(_mutex);
        _is_ending = true;
    }
    _wake.notify_one();
    _thread.join();
    ::close(_fd);
}

void journal_writer::append(std::string_view text)
{
    {
        const std::lock_guard lock(_mutex);
        _pending += text;
    }
    _wake.notify_one();
}

bool journal_writer::sync()
{
    std::unique_lock lock(_mutex);
    _wants_sync = true;
    _wake.notify_one();
    _done.wait(lock, [this] { return !_wants_sync; });
    return _pending.empty() && _is_synced;
}

std::string journal_writer::take_failure()
{
    const std::lock_guard lock(_mutex);
    const int error = _write_error != 0 ? _write_error : _sync_error;
    if (error == 0 || std::exchange(_is_error_told, true))
        return {};
    return std::strerror(error);
}

// What cannot be written or synced is tried again when it is time to sync, when somebody waits, and at the
// end.
void journal_writer::run()
{
    std::unique_lock lock(_mutex);
    auto next_sync = std::chrono::steady_clock::now() + sync_every;
    const auto has_work = [this] {
        return _is_ending || _wants_sync || (!_pending.empty() && _write_error == 0);
    };
    for (bool is_last = false; !is_last;) {
        if (_pending.empty() && _is_synced)
            _wake.wait(lock, has_work);
        else
            _wake.wait_until(lock, next_sync, has_work);
        is_last = _is_ending;
        const bool is_waited_for = _wants_sync;    // from now on: who comes while the lock is open is next
        const bool is_time = std::chrono::steady_clock::now() >= next_sync || is_last || is_waited_for;
        if (!_pending.empty() && (_write_error == 0 || is_time))
            write_pending(lock);
        if (!_is_synced && is_time)
            sync_file(lock);
        if (is_time)
            next_sync = std::chrono::steady_clock::now() + sync_every;
        if (is_waited_for && (_pending.empty() || _write_error != 0)) {
            _wants_sync = false;
            _done.notify_all();
        }
    }
}

// The lock is open while the system writes.
void journal_writer::write_pending(std::unique_lock<std::mutex>& lock)
{
    std::string text = std::exchange(_pending, {});
    lock.unlock();
    std::size_t written = 0;
    int error = 0;
    while (written < text.size() && error == 0) {
        const ssize_t n = ::write(_fd, text.data() + written, text.size() - written);
        if (n >= 0)
            written += static_cast<std::size_t>(n);
        else if (errno != EINTR)
            error = errno;
    }
    lock.lock();
    _is_synced = _is_synced && written == 0;
    text.erase(0, written);
    _pending.insert(0, text);
    _is_error_told = _is_error_told && error != 0;
    _write_error = error;
}

void journal_writer::sync_file(std::unique_lock<std::mutex>& lock)
{
    lock.unlock();
    const int error =
        ::fsync(_fd) == 0 || errno == EINVAL ? 0 : errno;    // EINVAL: what cannot be synced at all
    lock.lock();
    _is_synced = error == 0;
    _is_error_told = _is_error_told && error != 0;
    _sync_error = error;
}
