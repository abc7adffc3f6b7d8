// error_line.h - the one way to standard error: a plain line for whoever works with the program.
//
// Windows that show these lines too listen; the stream itself is nobody else's business.
#pragma once
#include <functional>
#include <locale>
#include <sstream>
#include <string>

// Writes one line, without its end, to standard error and hands it to every listener, on the calling thread.
void write_error_line(const std::string& line);

// The parts one after the other, numbers as in the "C" locale.
template <class... Parts>
void error_line(const Parts&... parts)
{
    std::ostringstream line;
    line.imbue(std::locale::classic());
    (line << ... << parts);
    write_error_line(line.str());
}

// Hears every error line while it lives. Made, asked and destroyed on the thread that writes the lines.
class error_listener {
public:
    explicit error_listener(std::function<void(const std::string& line)> hear);
    ~error_listener();
    error_listener(const error_listener&) = delete;
    error_listener& operator=(const error_listener&) = delete;

private:
    friend void write_error_line(const std::string& line);

    std::function<void(const std::string&)> _hear;
};
