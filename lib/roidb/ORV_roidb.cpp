#include "ORV_roidb.h"

#include "error_line.h"
#include "file_io.h"
#include "roi_reader.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <iostream>
#include <utility>

namespace {

constexpr std::ptrdiff_t int_digits = 11;    // the longest text of an int: a sign and ten digits

void append_int(std::string& text, int value)
{
    char digits[int_digits];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

// Writes one field of a key, up to int_digits characters, and returns its end.
char* put_field(char* to, int value)
{
    if (value < 0 || value > 999)
        return std::ranges::copy(roidb::digit(value, 3), to).out;
    *to++ = static_cast<char>('0' + value / 100);
    *to++ = static_cast<char>('0' + value / 10 % 10);
    *to++ = static_cast<char>('0' + value % 10);
    return to;
}

void append_record(std::string& text, const roi& r)
{
    for (const int field : {r.x(), r.y(), r.z(), r.t()}) {
        append_int(text, field);
        text += ' ';
    }
    text += r.outline();
}

}    // namespace

roidb::roidb(std::string name) : _name(std::move(name)) {}

void roidb::setName(std::string name) { _name = std::move(name); }

void roidb::entry(roi r)
{
    std::string key = keygen(r);
    // Files are in key order: with the end as hint their records go there without a search.
    db.emplace_hint(db.end(), std::move(key), std::move(r));
}

bool roidb::find(roi& r) const
{
    const auto found = db.find(keygen(r));
    if (found == db.end())
        return false;
    r = found->second;
    return true;
}

std::string roidb::digit(int value, int width)
{
    std::string text;
    append_int(text, value);
    const auto missing = width - static_cast<std::ptrdiff_t>(text.size());
    return missing > 0 ? text.insert(0, static_cast<std::size_t>(missing), '0') : text;
}

std::string roidb::keygen(pos4i position)
{
    char key[4 * int_digits];
    char* end = key;
    for (const int field : {position.t(), position.z(), position.x(), position.y()})
        end = put_field(end, field);
    return {key, end};
}

bool roidb::read(const std::string& filename)
{
    return read_roi_file(filename, _name, [this](roi r) { entry(std::move(r)); });
}

// Why the file would not be read back as it was written, or nothing.
std::string roidb::fault() const
{
    if (!is_word(_name))
        return "the name of the recording is empty or holds white space: \"" + _name + '"';
    for (const auto& [key, r] : db)
        if (!is_word(r.outline()))
            return "the outline of ROI " + key + " is empty or holds white space";
    return {};
}

bool roidb::write(const std::string& filename) const
{
    if (const std::string why_not = fault(); !why_not.empty()) {
        error_line("roidb: Not saved in ", filename, ": ", why_not);
        return false;
    }
    replacing_file file(filename);
    std::string line = _name + '\n';
    file.append(line);
    for (const auto& [key, r] : db) {
        line.clear();
        append_record(line, r);
        line += '\n';
        file.append(line);
    }
    return file.commit_or_say("roidb: Cannot open ");
}

std::ostream& operator<<(std::ostream& out, const roi& r)
{
    std::string text;
    append_record(text, r);
    return out << text;
}
