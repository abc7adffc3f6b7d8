#include "edit_step.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace {

struct kind_row {
    std::string_view name;
    kept_in file;
};

// By change_kind.
constexpr kind_row kinds[] = {
    {"roi", kept_in::rois},        {"index", kept_in::rois},
    {"unit", kept_in::lineage},    {"head", kept_in::lineage},
    {"link", kept_in::lineage},    {"elite", kept_in::lineage},
    {"selected", kept_in::info},   {"false_positive", kept_in::false_positives},
    {"forward", kept_in::nowhere}, {"backward", kept_in::nowhere},
    {"note", kept_in::lineage},    {"scale", kept_in::recording},
    {"chosen", kept_in::nowhere},
};

constexpr const char* hex_digits = "0123456789ABCDEF";

constexpr bool needs_escape(char c) noexcept
{
    return static_cast<unsigned char>(c) <= ' ' || c == '%' || c == '\x7f';
}

int hex_value(char c) noexcept
{
    return c >= '0' && c <= '9' ? c - '0' : c >= 'A' && c <= 'F' ? c - 'A' + 10 : 0;
}

}    // namespace

kept_in file_of(change_kind kind) noexcept { return kinds[static_cast<int>(kind)].file; }

std::string_view name_of(change_kind kind) noexcept { return kinds[static_cast<int>(kind)].name; }

void append_word(std::string& text, std::string_view word)
{
    if (word.empty())
        text += '%';
    while (!word.empty()) {
        const auto escaped = std::ranges::find_if(word, needs_escape);
        text.append(word.begin(), escaped);
        if (escaped == word.end())
            return;
        text += {'%', hex_digits[static_cast<unsigned char>(*escaped) / 16],
                 hex_digits[static_cast<unsigned char>(*escaped) % 16]};
        word = {escaped + 1, word.end()};
    }
}

std::string plain_word(std::string_view escaped)
{
    std::string word;
    for (std::size_t i = 0; i < escaped.size(); ++i) {
        if (escaped[i] != '%') {
            word += escaped[i];
        } else if (i + 2 < escaped.size()) {
            word += static_cast<char>(hex_value(escaped[i + 1]) * 16 + hex_value(escaped[i + 2]));
            i += 2;
        }
    }
    return word;
}

edit_step::edit_step(std::string title, std::string changes)
    : _title(std::move(title)), _changes(std::move(changes))
{
    for (std::size_t line = 0; line < _changes.size(); line = _changes.find('\n', line) + 1) {
        const std::string_view kind(&_changes[line + 1], _changes.find(' ', line) - line - 1);
        const auto row = std::ranges::find(kinds, kind, &kind_row::name);
        if (row != std::end(kinds))
            concern(static_cast<change_kind>(row - std::begin(kinds)));
        _added += _changes[line] == '+';
        _removed += _changes[line] == '-';
    }
}

void edit_step::begin(char sign, change_kind kind)
{
    _changes += sign;
    _changes += name_of(kind);
    concern(kind);
    _added += sign == '+';
    _removed += sign == '-';
}

// The chosen nucleus is a place, nothing that could be saved.
void edit_step::concern(change_kind kind)
{
    if (kind != change_kind::chosen)
        _files |= 1U << static_cast<int>(file_of(kind));
}

void edit_step::word(std::string_view text)
{
    _changes += ' ';
    append_word(_changes, text);
}

void edit_step::number(int value)
{
    char digits[12];
    _changes += ' ';
    _changes.append(digits, std::to_chars(digits, std::end(digits), value).ptr);
}

void edit_step::add(change_kind kind, std::string_view first, std::string_view second)
{
    begin('+', kind);
    word(first);
    if (!second.empty())
        word(second);
    end();
}

void edit_step::remove(change_kind kind, std::string_view first, std::string_view second, int position)
{
    begin('-', kind);
    word(first);
    if (!second.empty())
        word(second);
    if (position > 0)
        number(position);
    end();
}

void edit_step::add_roi(const roi& r)
{
    begin('+', change_kind::roi);
    for (const int field : {r.x(), r.y(), r.z(), r.t()})
        number(field);
    word(r.outline());
    end();
}

void edit_step::remove_roi(const roi& r)
{
    begin('-', change_kind::roi);
    for (const int field : {r.x(), r.y(), r.z(), r.t()})
        number(field);
    word(r.outline());
    end();
}

void edit_step::add_index(std::string_view plane, pos2i at)
{
    begin('+', change_kind::index);
    word(plane);
    number(at.x());
    number(at.y());
    end();
}

void edit_step::remove_index(std::string_view plane, pos2i at, int position)
{
    begin('-', change_kind::index);
    word(plane);
    number(at.x());
    number(at.y());
    if (position > 0)
        number(position);
    end();
}

void edit_step::exchange(change_kind kind, const std::string& before, const std::string& after)
{
    begin('*', kind);
    word(before);
    word(after);
    end();
}
