#include "track_table.h"

#include "error_line.h"
#include "file_io.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <string_view>

namespace {

constexpr std::size_t longest_line = 1000;    // of numbers it is far shorter

struct table_line {
    track t;
    int number = 0;    // from 1
};

// The four numbers of a line, or nothing.
std::optional<track> parse(std::string_view line)
{
    std::uint32_t fields[4] = {};
    const char* at = line.data();
    const char* const end = at + line.size();
    const auto skip_blanks = [&] {
        while (at < end && (*at == ' ' || *at == '\t' || *at == '\r'))
            ++at;
    };
    for (std::uint32_t& field : fields) {
        skip_blanks();
        const auto [next, error] = std::from_chars(at, end, field);
        if (error != std::errc() || (next<end&& * next> ' '))
            return std::nullopt;
        at = next;
    }
    skip_blanks();
    constexpr std::uint32_t most = 1u << 30;    // time points are less by far
    if (at < end || fields[1] > most || fields[2] > most)
        return std::nullopt;
    return track{fields[0], static_cast<int>(fields[1]), static_cast<int>(fields[2]), fields[3]};
}

class table_reader {
public:
    explicit table_reader(std::string filename) : _filename(std::move(filename)) {}

    bool read()
    {
        file_reader file(_filename);
        if (!file.is_open())
            return say("Cannot open " + _filename);
        std::string line;
        for (int number = 1; file.peek() >= 0; ++number) {
            line.clear();
            for (int c; (c = file.peek()) >= 0 && c != '\n' && line.size() <= longest_line; file.take())
                line += static_cast<char>(c);
            if (!take(line, number))
                return false;
            if (file.peek() >= 0)
                file.take();
        }
        return !file.failed() || say(file.failure());
    }

    bool check()
    {
        if (_lines.empty())
            return refuse(0, "no track");
        for (const table_line& line : _lines) {
            if (line.t.parent == 0)
                continue;
            const auto parent = _by_label.find(line.t.parent);
            if (parent == _by_label.end())
                return refuse(line.number, "no track " + std::to_string(line.t.parent) + " to be the parent");
            if (_lines[parent->second].t.last >= line.t.first)
                return refuse(line.number,
                              "begins before its parent " + std::to_string(line.t.parent) + " has ended");
        }
        return true;
    }

    [[nodiscard]] std::vector<track> tracks() const
    {
        std::vector<track> found;
        for (const table_line& line : _lines)
            found.push_back(line.t);
        return found;
    }

private:
    bool take(const std::string& line, int number)
    {
        if (line.find_first_not_of(" \t\r") == std::string::npos)
            return true;
        const auto parsed = parse(line);
        if (!parsed)
            return refuse(number, "no four numbers L B E P");
        if (parsed->label == 0)
            return refuse(number, "label 0 is no track");
        if (parsed->last < parsed->first)
            return refuse(number, "ends before it begins");
        if (!_by_label.emplace(parsed->label, _lines.size()).second)
            return refuse(number, "label " + std::to_string(parsed->label) + " for a second time");
        _lines.push_back({*parsed, number});
        return true;
    }

    bool refuse(int number, const std::string& why)
    {
        return say(_filename + (number > 0 ? ":" + std::to_string(number) : "") + ": " + why);
    }

    static bool say(const std::string& line)
    {
        error_line(line);
        return false;
    }

    std::string _filename;
    std::vector<table_line> _lines;
    std::map<std::uint32_t, std::size_t> _by_label;
};

}    // namespace

std::optional<std::vector<track>> read_track_table(const std::string& filename)
{
    table_reader table(filename);
    if (!table.read() || !table.check())
        return std::nullopt;
    return table.tracks();
}

std::string track_table_text(const std::vector<track>& tracks)
{
    std::string text;
    for (const track& t : tracks)
        text += std::to_string(t.label) + ' ' + std::to_string(t.first) + ' ' + std::to_string(t.last) + ' ' +
                std::to_string(t.parent) + '\n';
    return text;
}
