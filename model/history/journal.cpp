#include "journal.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <ctime>
#include <utility>

namespace {

constexpr std::string_view file_names[] = {"roi", "lineage",   "info",
                                           "fp",  "recording", "nowhere"};    // by kept_in

std::size_t count_lines(std::string_view text)
{
    return static_cast<std::size_t>(std::ranges::count(text, '\n'));
}

std::string line(std::initializer_list<std::string_view> words)
{
    std::string text;
    for (const std::string_view word : words) {
        if (!text.empty())
            text += ' ';
        text += word;
    }
    return text + '\n';
}

std::string_view name_of_file(kept_in file) { return file_names[static_cast<int>(file)]; }

std::optional<kept_in> file_named(std::string_view name)
{
    const auto found = std::ranges::find(file_names, name);
    if (found == std::end(file_names))
        return std::nullopt;
    return static_cast<kept_in>(found - std::begin(file_names));
}

// A title is the rest of its line: blanks may stand in it, line ends may not.
std::string in_one_line(std::string title)
{
    std::ranges::replace_if(
        title, [](unsigned char c) { return c < ' '; }, ' ');
    return title;
}

std::string_view take_word(std::string_view& text)
{
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return word;
}

// Whether every line, the last perhaps cut off, tells a change.
bool are_changes(std::string_view text)
{
    for (std::size_t line = 0; line < text.size();
         line = std::min(text.find('\n', line), text.size() - 1) + 1)
        if (text[line] != '+' && text[line] != '-' && text[line] != '*')
            return false;
    return true;
}

std::optional<std::size_t> take_number(std::string_view& text)
{
    const std::string_view word = take_word(text);
    std::size_t number = 0;
    const auto [end, fault] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (fault != std::errc() || end != word.data() + word.size())
        return std::nullopt;
    return number;
}

}    // namespace

namespace journal_text {

std::string now()
{
    const std::time_t seconds = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    std::array<char, 32> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &utc)};
}

std::string head(const std::string& recording)
{
    std::string name;
    append_word(name, recording);
    return line({"JOURNAL", "1", name});
}

std::string stretch(const std::string& roi_hash) { return line({"BASE", now(), roi_hash}); }

namespace {

std::string changes_of(const char* word, const edit_step& step, std::size_t noted)
{
    const std::string_view changes = std::string_view(step.changes()).substr(noted);
    return line({word, now(), std::to_string(count_lines(changes)), in_one_line(step.title())}) +
           std::string(changes);
}

}    // namespace

std::string step(const edit_step& step, std::size_t noted) { return changes_of("STEP", step, noted); }

std::string part(const edit_step& step, std::size_t noted) { return changes_of("PART", step, noted); }

std::string nothing() { return line({"NOTHING", now()}); }

std::string undo() { return line({"UNDO", now()}); }

std::string redo() { return line({"REDO", now()}); }

std::string saving(kept_in file, const std::string& hash, const edit_step& rest)
{
    return line({"SAVING", now(), name_of_file(file), hash, std::to_string(count_lines(rest.changes()))}) +
           rest.changes();
}

std::string saved(kept_in file, const std::string& hash)
{
    return line({"SAVED", now(), name_of_file(file), hash});
}

std::string go_on_with(std::size_t stretch) { return line({"CONTINUE", now(), std::to_string(stretch)}); }

}    // namespace journal_text

// The lines that are complete, one after the other.
struct journal::line_cursor {
    std::string_view rest;

    [[nodiscard]] std::optional<std::string_view> next()
    {
        const std::size_t end = rest.find('\n');
        if (end == std::string_view::npos)
            return std::nullopt;
        const std::string_view text = rest.substr(0, end);
        rest.remove_prefix(end + 1);
        return text;
    }

    // So many lines as one piece; nothing when there are fewer.
    [[nodiscard]] std::optional<std::string_view> block(std::size_t lines)
    {
        std::size_t end = 0;
        for (; lines > 0; --lines) {
            end = rest.find('\n', end);
            if (end == std::string_view::npos)
                return std::nullopt;
            ++end;
        }
        const std::string_view text = rest.substr(0, end);
        rest.remove_prefix(end);
        return text;
    }
};

journal::journal(std::string content) : _content(std::move(content))
{
    line_cursor lines{_content};
    std::string_view first = lines.next().value_or("");
    if (take_word(first) != "JOURNAL" || take_word(first) != "1") {
        _is_sound = _content.empty();
        return;
    }
    _recording = plain_word(first);
    do
        _good = _content.size() - lines.rest.size();
    while (read_event(lines));
    end_parts();
}

journal_stretch* journal::current() noexcept
{
    return _current < _stretches.size() ? &_stretches[_current] : nullptr;
}

// The changes behind a line, whose number is the next word of it. Nothing when there are fewer: at a torn end
// nothing but changes follows.
std::optional<std::string_view> journal::read_changes(line_cursor& lines, std::string_view& rest)
{
    const std::optional<std::size_t> count = take_number(rest);
    const std::string_view all = lines.rest;
    const std::optional<std::string_view> changes = count ? lines.block(*count) : std::nullopt;
    _is_sound = count && are_changes(changes.value_or(all));
    return _is_sound ? changes : std::nullopt;
}

// A step whose end is missing is what its parts say.
void journal::end_parts()
{
    if (_parts)
        current()->events.push_back(*_parts);
    _parts.reset();
}

bool journal::read_part(line_cursor& lines, std::string_view time, std::string_view rest)
{
    const std::optional<std::string_view> changes = read_changes(lines, rest);
    _is_sound = _is_sound && current();
    if (!changes || !_is_sound)
        return false;
    if (!_parts)
        _joined.emplace_back();
    _joined.back() += *changes;
    _parts = {journal_event::kind::step, time, rest, _joined.back(), {}, {}};
    return true;
}

// A step whose parts were read before is all of them.
bool journal::enter(journal_event event)
{
    if (_parts && event.what == journal_event::kind::step) {
        _joined.back() += event.changes;
        event.changes = _joined.back();
        _parts.reset();
    }
    end_parts();
    if (journal_stretch* const stretch = current())
        stretch->events.push_back(event);
    else
        _is_sound = false;
    return _is_sound;
}

// False at the end, at a torn one, and at what is no event: then it is not sound.
bool journal::read_event(line_cursor& lines)
{
    const std::optional<std::string_view> whole = lines.next();
    if (!whole)
        return false;
    std::string_view rest = *whole;
    const std::string_view word = take_word(rest);
    const std::string_view time = take_word(rest);
    using kind = journal_event::kind;
    if (word == "PART")
        return read_part(lines, time, rest);
    if (word == "NOTHING") {
        _parts.reset();
        return true;
    }
    if (word == "BASE") {
        end_parts();
        _current = _stretches.size();
        _stretches.push_back({time, take_word(rest), {}});
        return true;
    }
    if (word == "STEP") {
        const std::optional<std::string_view> changes = read_changes(lines, rest);
        return changes && enter({kind::step, time, rest, *changes, {}, {}});
    }
    if (word == "UNDO" || word == "REDO")
        return enter({word == "UNDO" ? kind::undo : kind::redo, time, {}, {}, {}, {}});
    if (word == "CONTINUE") {
        end_parts();
        const std::optional<std::size_t> stretch = take_number(rest);
        _is_sound = stretch && *stretch < _stretches.size();
        _current = stretch.value_or(0);
        return _is_sound;
    }
    const std::optional<kept_in> file =
        word == "SAVING" || word == "SAVED" ? file_named(take_word(rest)) : std::nullopt;
    _is_sound = file.has_value();
    if (!file)
        return false;
    const std::string_view hash = take_word(rest);
    if (word == "SAVED")
        return enter({kind::saved, time, {}, {}, *file, hash});
    const std::optional<std::string_view> changes = read_changes(lines, rest);
    return changes && enter({kind::saving, time, {}, *changes, *file, hash});
}
