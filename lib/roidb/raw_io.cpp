#include "raw_io.h"

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

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

bool copy_all(int from, int to)
{
    if (::lseek(from, 0, SEEK_SET) < 0 || ::lseek(to, 0, SEEK_SET) < 0)
        return false;
    std::string piece(1 << 16, '\0');
    off_t size = 0;
    for (ssize_t n = 0; (n = read_some(from, piece.data(), piece.size())) != 0; size += n)
        if (n < 0 || !write_all(to, std::string_view(piece).substr(0, static_cast<std::size_t>(n))))
            return false;
    return ::ftruncate(to, size) == 0;
}

int create_new(const std::string& prefix, mode_t mode, std::string& path)
{
    static std::atomic<unsigned> last = 0;
    const std::string own_prefix = prefix + std::to_string(::getpid()) + '-';
    int fd = -1;
    do {    // a process that was killed may have left one behind
        path = own_prefix + std::to_string(++last);
        fd = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    } while (fd < 0 && errno == EEXIST);
    return fd;
}

std::string folder_of(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

void sync_folder(const std::string& folder)
{
    const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return;
    ::fsync(fd);
    ::close(fd);
}
