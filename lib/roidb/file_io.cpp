#include "file_io.h"

#include "error_line.h"
#include "overwrite.h"
#include "raw_io.h"
#include "replacement_listener.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace {

#ifdef ORV_PIECE_SIZE
constexpr std::size_t piece_size = ORV_PIECE_SIZE;    // small ones cut words and lines anywhere
#else
constexpr std::size_t piece_size = 1 << 18;
#endif

// Empty when the links lead in a circle.
std::string follow_links(const std::string& filename)
{
    char text[PATH_MAX];
    if (::realpath(filename.c_str(), text))
        return text;
    constexpr int most_links = 40;
    std::string path = filename;    // of a file that is not there yet
    for (int i = 0; i < most_links; ++i) {
        const ssize_t n = ::readlink(path.c_str(), text, sizeof text);
        if (n < 0)    // its folder may be reached through links all the same
            return ::realpath(folder_of(path).c_str(), text)
                       ? std::string(text) + '/' + path.substr(path.rfind('/') + 1)
                       : path;
        const std::string to(text, static_cast<std::size_t>(n));
        path = to.starts_with('/') ? to : folder_of(path) + to;
    }
    return {};
}

// Group first: whoever gives the file away may change it no more.
bool take_over_rights(int fd, const struct stat& old)
{
    mode_t mode = old.st_mode & 07777;
    if (::fchown(fd, static_cast<uid_t>(-1), old.st_gid) != 0)
        mode &= ~static_cast<mode_t>(S_ISGID | S_IRWXG) | (mode & S_IRWXO) << 3;
    if (::fchown(fd, old.st_uid, static_cast<gid_t>(-1)) != 0)    // only root may
        mode &= ~static_cast<mode_t>(S_ISUID);
    return ::fchmod(fd, mode) == 0;
}

// The folder does not let its files be made or replaced. (A file that is a mount point is busy.)
bool is_forbidden(int error) { return error == EACCES || error == EPERM || error == EROFS || error == EBUSY; }

}    // namespace

file_reader::file_reader(std::string filename)
    : _filename(std::move(filename)), _fd(::open(_filename.c_str(), O_RDONLY | O_CLOEXEC))
{
    fill();
    if (_error == EISDIR) {    // a folder opens, but does not read
        ::close(_fd);
        _fd = -1;
    }
}

file_reader::~file_reader()
{
    if (_fd >= 0)
        ::close(_fd);
}

std::string file_reader::failure() const
{
    return _filename + ": cannot be read to its end: " + std::strerror(_error);
}

std::string_view file_reader::at_hand()
{
    if (_next == _piece.size() && !fill())
        return {};
    return std::string_view(_piece).substr(_next);
}

bool file_reader::fill()
{
    if (_fd < 0 || failed())
        return false;
    _next = 0;
    _piece.resize(piece_size);
    const ssize_t n = read_some(_fd, _piece.data(), _piece.size());
    _piece.resize(n > 0 ? static_cast<std::size_t>(n) : 0);
    if (n < 0)
        _error = errno;
    return n > 0;
}

replacing_file::replacing_file(std::string filename)
    : _filename(std::move(filename)), _target(follow_links(_filename))
{
    if (_target.empty())
        return;
    struct stat old {};
    const bool exists = ::stat(_target.c_str(), &old) == 0;
    if (exists && !S_ISREG(old.st_mode)) {
        _fd = ::open(_target.c_str(), O_WRONLY | O_CLOEXEC);
        _ok = _fd >= 0;
        return;
    }
    // A rename would replace a protected file.
    if (exists && ::faccessat(AT_FDCWD, _target.c_str(), W_OK, AT_EACCESS) != 0)
        return;
    open_temporary(folder_of(_target), exists ? 0600 : 0666);
    _is_in_place = exists && !_ok && is_forbidden(errno);
    if (_is_in_place)
        open_temporary(state_folder(), 0600);
    else if (exists && _ok)
        _ok = take_over_rights(_fd, old);
}

replacing_file::~replacing_file()
{
    if (_fd >= 0)
        ::close(_fd);
    if (!_temporary.empty())
        ::unlink(_temporary.c_str());
}

void replacing_file::open_temporary(const std::string& folder, unsigned int mode)
{
    std::string path;
    _fd = folder.empty() ? -1 : create_new(folder + ".orvbrowser-", mode, path);
    _ok = _fd >= 0;
    if (_ok)
        _temporary = std::move(path);
}

void replacing_file::append(std::string_view text)
{
    _pending += text;
    if (_pending.size() >= piece_size)
        flush();
}

void replacing_file::flush()
{
    if (_ok && !write_all(_fd, _pending)) {
        _ok = false;
        _error = errno;
    }
    _pending.clear();
}

bool replacing_file::commit()
{
    flush();
    if (!_ok || _temporary.empty())
        return _ok;
    _ok = ::fsync(_fd) == 0;
    if (_ok) {
        tell_before_replacing(_target, _temporary);
        _ok = put_in_place();
    }
    if (!_ok)
        _error = errno;
    tell_after_replacing(_target, _ok);
    return _ok;
}

bool replacing_file::put_in_place()
{
    if (!_is_in_place && ::rename(_temporary.c_str(), _target.c_str()) == 0) {
        _temporary.clear();
        sync_folder(folder_of(_target));
        return true;
    }
    return (_is_in_place || is_forbidden(errno)) && overwrite_keeping_copy(_fd, _target);
}

bool replacing_file::commit_or_say(std::string_view line)
{
    if (commit())
        return true;
    error_line(line, _filename);
    if (_error != 0)
        error_line(_filename, ": ", std::strerror(_error));
    return false;
}
