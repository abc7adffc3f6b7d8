// raw_io.h - what readers and writers of files share: whole reads, writes and copies of descriptors.
//
// Whatever fails leaves its reason in errno.
#pragma once
#include <string>
#include <string_view>
#include <sys/types.h>

// read(2) and write(2) that are not disturbed by signals.
ssize_t read_some(int fd, char* to, std::size_t size);
bool write_all(int fd, std::string_view text);

// Makes the content of one regular file that of another.
bool copy_all(int from, int to);

// A new file whose name starts with `prefix`; its name goes into `path`. The system takes the umask off
// `mode`. -1 when there can be none.
int create_new(const std::string& prefix, mode_t mode, std::string& path);

// The folder of a file, with its last "/".
std::string folder_of(const std::string& path);

// A file survives a power failure under its name only once its folder is on disk too.
void sync_folder(const std::string& folder);
