#include "ORV_roidb.h"

#include "file_io.h"
#include "roi_reader.h"

#include <charconv>
#include <iostream>
#include <utility>

namespace {

void append_int(std::string& text, int value)
{
    char digits[12];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

void append_digits(std::string& text, int value, int width)
{
    char digits[12];
    const auto length = std::to_chars(digits, digits + sizeof digits, value).ptr - digits;
    if (length < width)
        text.append(static_cast<std::size_t>(width - length), '0');
    text.append(digits, static_cast<std::size_t>(length));
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
    // Files are in key order: their records go to the end without a search.
    const auto hint = db.empty() || db.rbegin()->first < key ? db.end() : db.lower_bound(key);
    db.try_emplace(hint, std::move(key), std::move(r));
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
    append_digits(text, value, width);
    return text;
}

std::string roidb::keygen(pos4i position)
{
    std::string key;
    for (const int field : {position.t(), position.z(), position.x(), position.y()})
        append_digits(key, field, 3);
    return key;
}

bool roidb::read(const std::string& filename)
{
    return read_roi_file(filename, _name, [this](roi r) { entry(std::move(r)); });
}

bool roidb::write(const std::string& filename) const
{
    replacing_file file(filename);
    std::string line = _name + '\n';
    file.append(line);
    for (const auto& [key, r] : db) {
        line.clear();
        append_record(line, r);
        line += '\n';
        file.append(line);
    }
    if (file.commit())
        return true;
    std::cerr << "roidb: Cannot open " << filename << std::endl;
    return false;
}

std::ostream& operator<<(std::ostream& out, const roi& r)
{
    std::string text;
    append_record(text, r);
    return out << text;
}
