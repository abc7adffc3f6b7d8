#include "body.h"

#include "error_line.h"
#include "roimaker_answer.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <iostream>
#include <limits.h>
#include <poll.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int max_side = 4096;    // pixels

[[noreturn]] void fail(const char* call)
{
    std::perror(call);
    std::exit(1);
}

bool is_side(int pixels) { return pixels >= 1 && pixels <= max_side; }

// The pipe's ends, moved away from the descriptors that the child gives up: in a program started without
// standard input or output they might be those.
void open_pipe(int pipefds[2])
{
    int ends[2];
    if (pipe(ends) != 0)
        fail("pipe");
    for (int i = 0; i < 2; ++i) {
        pipefds[i] = fcntl(ends[i], F_DUPFD, STDERR_FILENO + 1);
        if (pipefds[i] < 0)
            fail("pipe");
        close(ends[i]);
    }
}

// The width, the height, and a line for each row: its bytes as decimal numbers, nothing between them.
std::string mask_text(const unsigned char* canvas, int width, int height)
{
    std::string text = std::to_string(width) + '\n' + std::to_string(height) + '\n';
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            text += std::to_string(*canvas++);
        text += '\n';
    }
    return text;
}

// In the child: the one pipe becomes standard input and standard output. The parent's exit handlers
// are not for the child, so it leaves by _exit.
[[noreturn]] void run_roimaker(const std::string& path, const int pipefds[2])
{
    close(0);
    const bool reads = dup(pipefds[0]) == 0;
    close(pipefds[0]);
    close(1);
    const bool writes = dup(pipefds[1]) == 1;
    close(pipefds[1]);
    std::signal(SIGPIPE, SIG_DFL);
    char* const no_arguments[] = {nullptr};
    if (reads && writes)
        execvp(path.c_str(), no_arguments);
    std::perror("roimaker");
    _exit(1);
}

bool has_ended(pid_t pid) { return waitpid(pid, nullptr, WNOHANG) != 0; }

// Writes the mask. A child that ends without reading it would leave this process waiting for room in
// a pipe that nobody empties: then the rest is not written. True iff the child has ended.
bool send(int fd, std::string_view text, pid_t pid)
{
    constexpr int patience_ms = 50;
    while (!text.empty()) {
        pollfd room{fd, POLLOUT, 0};
        if (poll(&room, 1, patience_ms) <= 0) {
            if (has_ended(pid))
                return true;
            continue;
        }
        // Not more than this is sure to fit once the pipe has room.
        const ssize_t n = write(fd, text.data(), std::min<std::size_t>(text.size(), PIPE_BUF));
        if (n < 0 && errno != EINTR)
            return false;
        text.remove_prefix(n > 0 ? static_cast<std::size_t>(n) : 0);
    }
    return false;
}

void wait_for(pid_t pid)
{
    pid_t ended = 0;
    do
        ended = waitpid(pid, nullptr, 0);
    while (ended < 0 && errno == EINTR);
}

}    // namespace

std::list<roi> makeROIs(unsigned char* canvas, int width, int height)
{
    if (!is_side(width) || !is_side(height)) {
        error_line("makeROIs: no mask of up to ", max_side, " x ", max_side, " pixels");
        return {};
    }
    const std::string path = roimaker_path();
    const std::string mask = mask_text(canvas, width, height);
    int pipefds[2];
    open_pipe(pipefds);
    // What waits in a buffer now would be written by both processes.
    std::cout.flush();
    std::fflush(nullptr);
    const pid_t pid = fork();
    if (pid < 0)
        fail("fork");
    if (pid == 0)
        run_roimaker(path, pipefds);
    const bool ended = send(pipefds[1], mask, pid);
    close(pipefds[1]);
    if (!ended)
        wait_for(pid);
    std::FILE* const fp = fdopen(pipefds[0], "r");
    if (!fp)
        fail("fdopen");
    std::list<roi> rois = read_answer(fp);
    std::fclose(fp);
    return rois;
}

std::string roimaker_path()
{
    if (const char* chosen = std::getenv("ORVBROWSER_ROIMAKER"); chosen && *chosen)
        return chosen;
    std::error_code unreadable;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", unreadable);
    const std::string_view build_tree = ORV_BUILD_TREE "/";
    if (unreadable || self.native().starts_with(build_tree))
        return ORV_ROIMAKER_BUILT;
    return (self.parent_path() / ORV_ROIMAKER_FROM_BIN).lexically_normal();
}

bool is_roimaker_there()
{
    const std::string path = roimaker_path();
    struct stat status {};
    return path.starts_with('/') && stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) &&
           access(path.c_str(), X_OK) == 0;
}
