// file_io.h - files read in pieces and replaced as a whole.
#pragma once
#include <string>
#include <string_view>

// A file that is read from its first byte to its last, one piece at a time.
class file_reader {
public:
    explicit file_reader(std::string filename);
    ~file_reader();
    file_reader(const file_reader&) = delete;
    file_reader& operator=(const file_reader&) = delete;

    // True iff the file was opened. A folder is not.
    [[nodiscard]] bool is_open() const noexcept { return _fd >= 0; }

    // True iff reading has ended before the end of the file: what was read is not to be used.
    [[nodiscard]] bool failed() const noexcept { return _error != 0; }

    // The line that tells so, and why.
    [[nodiscard]] std::string failure() const;

    // The next byte without taking it, or -1 at the end of the file.
    [[nodiscard]] int peek()
    {
        return _next < _piece.size() || fill() ? static_cast<unsigned char>(_piece[_next]) : -1;
    }
    void take() noexcept { ++_next; }

    // The bytes at hand, at least one unless the file has ended; take(n) takes the first n of them.
    [[nodiscard]] std::string_view at_hand();
    void take(std::size_t n) noexcept { _next += n; }

private:
    bool fill();

    std::string _filename;
    int _fd = -1;
    std::string _piece;
    std::size_t _next = 0;
    int _error = 0;    // the errno of the read that failed
};

// Writes a file beside `filename` and puts it in its place with commit(). Until then, and whenever
// something fails, the old file stays whole.
// - The new file has the rights, group and owner of the old one, as far as the user may give them. Where
//   the group cannot be kept, the group that comes instead has no right that others lack.
// - Where no file can be made beside the old one, or none put in its place, it is written in place, while
//   a copy of it is kept elsewhere (overwrite.h).
// - Symbolic links are followed, also to where no file is yet.
// - What is no regular file (a device, a pipe) is written directly.
class replacing_file {
public:
    explicit replacing_file(std::string filename);
    ~replacing_file();    // without commit() a regular file is as it was
    replacing_file(const replacing_file&) = delete;
    replacing_file& operator=(const replacing_file&) = delete;

    void append(std::string_view text);

    // False when any byte could not be written or the file not be replaced.
    [[nodiscard]] bool commit();

    // The same. When it fails, writes `line` and the file name to standard error; where not opening but
    // writing has failed, a second line tells the reason.
    [[nodiscard]] bool commit_or_say(std::string_view line);

private:
    void open_temporary(const std::string& folder, unsigned int mode);
    void flush();
    bool put_in_place();

    std::string _filename;
    std::string _target;       // what `filename` names once symbolic links are followed
    std::string _temporary;    // empty when the target is written directly
    std::string _pending;
    int _fd = -1;
    bool _is_in_place = false;    // nothing can be made beside the target
    bool _ok = false;
    int _error = 0;    // the errno of what failed after opening
};
