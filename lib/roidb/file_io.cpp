#include "file_io.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
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

// read(2) that is not disturbed by signals.
ssize_t read_some(int fd, char* to, std::size_t size)
{
    ssize_t n = 0;
    do
        n = ::read(fd, to, size);
    while (n < 0 && errno == EINTR);
    return n;
}

bool write_all(int fd, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t n = ::write(fd, text.data(), text.size());
        if (n < 0 && errno != EINTR)
            return false;
        text.remove_prefix(n < 0 ? 0 : static_cast<std::size_t>(n));
    }
    return true;
}

std::string follow_links(const std::string& filename)
{
    char path[PATH_MAX];
    return ::realpath(filename.c_str(), path) ? path : filename;
}

std::string folder_of(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

mode_t mode_for_new_files()
{
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

// A renamed file survives a power failure only once its folder is on disk too.
void sync_folder(const std::string& folder)
{
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return;
    ::fsync(fd);
    ::close(fd);
}

}    // namespace

file_reader::file_reader(const std::string& filename) : _fd(::open(filename.c_str(), O_RDONLY | O_CLOEXEC))
{
    if (_fd < 0)
        return;
    _piece.resize(piece_size);
    const ssize_t n = read_some(_fd, _piece.data(), _piece.size());
    _piece.resize(n > 0 ? static_cast<std::size_t>(n) : 0);
    if (n < 0) {    // a folder opens, but does not read
        ::close(_fd);
        _fd = -1;
    }
}

file_reader::~file_reader()
{
    if (_fd >= 0)
        ::close(_fd);
}

std::string_view file_reader::at_hand()
{
    if (_next == _piece.size() && !fill())
        return {};
    return std::string_view(_piece).substr(_next);
}

bool file_reader::fill()
{
    if (_fd < 0)
        return false;
    _next = 0;
    _piece.resize(piece_size);
    const ssize_t n = read_some(_fd, _piece.data(), _piece.size());
    _piece.resize(n > 0 ? static_cast<std::size_t>(n) : 0);
    _failed = n < 0;
    return n > 0;
}

replacing_file::replacing_file(std::string filename) : _target(follow_links(filename))
{
    struct stat old {};
    const bool exists = ::stat(_target.c_str(), &old) == 0;
    if (exists && !S_ISREG(old.st_mode)) {
        _fd = ::open(_target.c_str(), O_WRONLY | O_CLOEXEC);
        _ok = _fd >= 0;
        return;
    }
    if (exists && ::access(_target.c_str(), W_OK) != 0)    // a rename would replace a protected file
        return;
    open_beside(_target);
    if (!_ok)
        return;
    _ok = ::fchmod(_fd, exists ? old.st_mode & 07777 : mode_for_new_files()) == 0;
    // Only root may give files away; elsewhere the new file belongs to who writes it.
    if (exists && ::fchown(_fd, old.st_uid, old.st_gid) != 0)
        errno = 0;
}

replacing_file::~replacing_file()
{
    if (_fd >= 0)
        ::close(_fd);
    if (!_temporary.empty())
        ::unlink(_temporary.c_str());
}

void replacing_file::open_beside(const std::string& target)
{
    std::string path = folder_of(target) + ".orvbrowser-XXXXXX";
    _fd = ::mkostemp(path.data(), O_CLOEXEC);
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
    _ok = _ok && write_all(_fd, _pending);
    _pending.clear();
}

bool replacing_file::commit()
{
    flush();
    if (!_ok || _temporary.empty())
        return _ok;
    _ok = ::fsync(_fd) == 0 && ::rename(_temporary.c_str(), _target.c_str()) == 0;
    if (!_ok)
        return false;
    _temporary.clear();
    sync_folder(folder_of(_target));
    return true;
}
