#include "file_series.h"

#include "error_line.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <map>
#include <set>

namespace {

namespace fs = std::filesystem;

bool is_digit(char c) { return c >= '0' && c <= '9'; }

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string lower(std::string text)
{
    std::ranges::transform(text, text.begin(), [](char c) { return lower(c); });
    return text;
}

// A name with its numbers taken out: "t07_z1.tif" is t#_z#.tif, 7 and 1.
struct numbered_name {
    std::string pattern;
    std::vector<int> numbers;
    std::vector<char> before;    // the letter before each number, or 0
};

constexpr int no_number = -1;    // more digits than a number has

numbered_name take_apart(const std::string& stem)
{
    numbered_name name;
    for (std::size_t i = 0; i < stem.size();) {
        if (!is_digit(stem[i])) {
            name.pattern += stem[i++];
            continue;
        }
        const std::size_t last = std::min(stem.find_first_not_of("0123456789", i), stem.size());
        int number = no_number;
        if (std::from_chars(stem.data() + i, stem.data() + last, number).ec != std::errc())
            number = no_number;
        const std::size_t letter = i > 0 ? stem.find_last_not_of("_-. =", i - 1) : std::string::npos;
        name.before.push_back(letter == std::string::npos ? '\0' : lower(stem[letter]));
        name.numbers.push_back(number);
        name.pattern += '#';
        i = last;
    }
    return name;
}

bool is_tiff(const fs::path& path)
{
    const std::string ending = lower(path.extension().string());
    return ending == ".tif" || ending == ".tiff";
}

std::optional<std::vector<std::string>> tiff_names(const std::string& folder)
{
    std::error_code error;
    std::vector<std::string> names;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error))
        if (is_tiff(entry->path()))
            names.push_back(entry->path().filename().string());
    if (error) {
        error_line("Cannot open ", folder);
        return std::nullopt;
    }
    std::ranges::sort(names);
    return names;
}

std::nullopt_t refuse(const std::string& folder, const std::string& why)
{
    error_line(folder, ": ", why);
    return std::nullopt;
}

// Which numbers differ between the names.
std::vector<std::size_t> varying(const std::vector<numbered_name>& names)
{
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < names.front().numbers.size(); ++i)
        if (std::ranges::any_of(names, [&](const auto& n) { return n.numbers[i] != names[0].numbers[i]; }))
            found.push_back(i);
    return found;
}

// In order, unless two are of one place.
std::optional<file_series> ordered(file_series series)
{
    const auto place = [](const series_file& f) { return std::pair(f.t, f.z); };
    std::ranges::sort(series.files, {}, place);
    const auto twice = std::ranges::adjacent_find(series.files, {}, place);
    if (twice != series.files.end())
        return refuse(series.folder, twice->path + " is of the same place as another file");
    return series;
}

}    // namespace

std::optional<file_series> find_series(const std::string& source)
{
    std::error_code error;
    if (fs::is_regular_file(source, error))
        return file_series{source, {{0, 0, source}}, false};
    const auto files = tiff_names(source);
    if (!files)
        return std::nullopt;
    if (files->empty())
        return refuse(source, "no TIFF file");
    std::vector<numbered_name> names;
    for (const std::string& file : *files) {
        names.push_back(take_apart(fs::path(file).stem().string()));
        if (names.back().pattern != names.front().pattern)
            return refuse(source, file + " is not named like " + files->front());
        if (std::ranges::count(names.back().numbers, no_number) > 0)
            return refuse(source, file + " has a number that is too large");
    }
    std::vector<std::size_t> numbers = varying(names);
    if (numbers.empty() && !names.front().numbers.empty())
        numbers.push_back(names.front().numbers.size() - 1);    // a single file
    if (numbers.empty() && names.size() == 1)
        return file_series{source, {{0, 0, (fs::path(source) / files->front()).string()}}, false};
    if (numbers.size() > 2)
        return refuse(source, "names with more than two numbers that differ");
    if (numbers.size() == 2 &&
        (names.front().before[numbers[0]] == 'z' || names.front().before[numbers[1]] == 't'))
        std::swap(numbers[0], numbers[1]);
    file_series series{source, {}, numbers.size() == 2};
    for (std::size_t i = 0; i < names.size(); ++i)
        series.files.push_back({names[i].numbers[numbers[0]],
                                series.has_plane_numbers ? names[i].numbers[numbers[1]] : 0,
                                (fs::path(source) / (*files)[i]).string()});
    return ordered(std::move(series));
}

std::optional<file_series> find_frames(const std::string& folder, const std::string& prefix)
{
    const auto files = tiff_names(folder);
    if (!files)
        return std::nullopt;
    file_series series{folder, {}, false};
    for (const std::string& file : *files) {
        const numbered_name name = take_apart(lower(fs::path(file).stem().string()));
        if (name.pattern == prefix + '#' && name.numbers.front() != no_number)
            series.files.push_back({name.numbers.front(), 0, (fs::path(folder) / file).string()});
    }
    if (series.files.empty())
        return refuse(folder, "no file " + prefix + "NUMBER.tif");
    return ordered(std::move(series));
}
