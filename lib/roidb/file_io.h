// file_io.h - files read in pieces and replaced as a whole.
#pragma once
#include <string>
#include <string_view>

// A file that is read from its first byte to its last, one piece at a time.
class file_reader {
public:
    explicit file_reader(const std::string& filename);
    ~file_reader();
    file_reader(const file_reader&) = delete;
    file_reader& operator=(const file_reader&) = delete;

    // True iff the file was opened and its first bytes could be read.
    [[nodiscard]] bool is_open() const noexcept { return _fd >= 0; }

    // True iff reading has ended before the end of the file.
    [[nodiscard]] bool failed() const noexcept { return _failed; }

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

    int _fd = -1;
    std::string _piece;
    std::size_t _next = 0;
    bool _failed = false;
};

// Writes a file beside `filename` and puts it in its place with commit(). Until
// then, and whenever something fails, the old file stays whole. What is no
// regular file (a device, a pipe) is written directly.
class replacing_file {
public:
    explicit replacing_file(std::string filename);
    ~replacing_file();    // without commit(): nothing was written
    replacing_file(const replacing_file&) = delete;
    replacing_file& operator=(const replacing_file&) = delete;

    void append(std::string_view text);

    // False when any byte could not be written or the file not be replaced.
    [[nodiscard]] bool commit();

private:
    void open_beside(const std::string& target);
    void flush();

    std::string _target;       // what `filename` names once symbolic links are followed
    std::string _temporary;    // empty when the target is written directly
    std::string _pending;
    int _fd = -1;
    bool _ok = false;
};
