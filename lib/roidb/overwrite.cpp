#include "overwrite.h"

#include "error_line.h"
#include "raw_io.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace {

// The name of a copy that is on disk, in the state folder; empty when there is none.
std::string keep_copy(int of, const std::string& target)
{
    const std::string folder = state_folder();
    std::string path;
    const int fd =
        folder.empty() ? -1 : create_new(folder + target.substr(target.rfind('/') + 1) + '-', 0600, path);
    if (fd < 0)
        return {};
    const bool is_whole = copy_all(of, fd) && ::fsync(fd) == 0;
    ::close(fd);
    if (!is_whole) {
        ::unlink(path.c_str());
        return {};
    }
    sync_folder(folder);
    return path;
}

bool overwrite(int from, int fd, const std::string& target)
{
    const std::string copy = keep_copy(fd, target);
    if (copy.empty())
        return false;
    if (copy_all(from, fd) && ::fsync(fd) == 0) {
        ::unlink(copy.c_str());
        return true;
    }
    const int reason = errno;
    error_line(copy, ": a copy of what was in ", target);
    errno = reason;
    return false;
}

}    // namespace

std::string state_folder()
{
    const char* const chosen = std::getenv("XDG_STATE_HOME");
    const char* const home = std::getenv("HOME");
    std::string folder;
    if (chosen && *chosen == '/')    // a relative one counts for nothing
        folder = chosen;
    else if (home && *home == '/')
        folder = std::string(home) + "/.local/state";
    else
        return {};
    folder += "/orvbrowser";
    std::error_code failure;
    std::filesystem::create_directories(folder, failure);
    return failure ? std::string() : folder + '/';
}

bool overwrite_keeping_copy(int from, const std::string& target)
{
    const int fd = ::open(target.c_str(), O_RDWR | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool is_written = overwrite(from, fd, target);
    const int reason = errno;
    ::close(fd);
    errno = reason;
    return is_written;
}
