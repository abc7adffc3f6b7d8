// failing_reads.h - a disk that fails: while such an object lives, one file cannot be read beyond some byte.
//
// Takes the place of read(2) in the whole test program; include it in one source of a program.
#pragma once
#include <algorithm>
#include <cerrno>
#include <dlfcn.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

struct failing_reads {
    failing_reads(const std::string& filename, off_t readable_bytes) : readable(readable_bytes)
    {
        ::stat(filename.c_str(), &file);
        present = this;
    }
    ~failing_reads() { present = nullptr; }
    failing_reads(const failing_reads&) = delete;
    failing_reads& operator=(const failing_reads&) = delete;

    struct stat file {};
    off_t readable;
    static inline const failing_reads* present = nullptr;
};

extern "C" ssize_t read(int fd, void* to, size_t size)
{
    using read_type = ssize_t (*)(int, void*, size_t);
    static const auto real_read = reinterpret_cast<read_type>(::dlsym(RTLD_NEXT, "read"));
    struct stat opened {};
    const failing_reads* const fault = failing_reads::present;
    if (!fault || ::fstat(fd, &opened) != 0 || opened.st_ino != fault->file.st_ino ||
        opened.st_dev != fault->file.st_dev)
        return real_read(fd, to, size);
    const off_t left = fault->readable - ::lseek(fd, 0, SEEK_CUR);
    if (left > 0)
        return real_read(fd, to, std::min(size, static_cast<size_t>(left)));
    errno = EIO;
    return -1;
}
