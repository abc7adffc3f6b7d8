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
    return _error == 0 && _pending.empty() && _is_synced;
}

std::string journal_writer::take_failure()
{
    const std::lock_guard lock(_mutex);
    if (_error == 0 || std::exchange(_is_error_told, true))
        return {};
    return std::strerror(_error);
}

void journal_writer::run()
{
    std::unique_lock lock(_mutex);
    auto next_sync = std::chrono::steady_clock::now() + sync_every;
    while (true) {
        const auto has_work = [this] {
            return _is_ending || _wants_sync || (!_pending.empty() && _error == 0);
        };
        if (!has_work() && _is_synced && _pending.empty())
            _wake.wait(lock, has_work);
        else
            _wake.wait_until(lock, next_sync, has_work);
        const bool is_time = std::chrono::steady_clock::now() >= next_sync;
        const bool is_last = _is_ending;
        if (!_pending.empty() && (_error == 0 || is_time || is_last || _wants_sync))
            write_some(lock);
        if (!_is_synced && (is_time || is_last || _wants_sync))
            sync_file(lock);
        if (is_time || _is_synced)
            next_sync = std::chrono::steady_clock::now() + sync_every;
        if (_wants_sync && (_pending.empty() || _error != 0)) {
            _wants_sync = false;
            _done.notify_all();
        }
        if (is_last && (_pending.empty() || _error != 0))
            return;
    }
}

// The lock is open while the system writes.
void journal_writer::write_some(std::unique_lock<std::mutex>& lock)
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
    _error = error;
}

void journal_writer::sync_file(std::unique_lock<std::mutex>& lock)
{
    lock.unlock();
    const int error = ::fsync(_fd) == 0 ? 0 : errno;
    lock.lock();
    _is_synced = error == 0 || error == EINVAL;    // what cannot be synced, as a pipe, is as good as it gets
    if (_error == 0 && !_is_synced)
        _error = error;
}
