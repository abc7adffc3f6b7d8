#include "unit_notes.h"

#include <algorithm>
#include <sstream>
#include <vector>

namespace {

std::vector<std::string> words_of(const std::string& note)
{
    std::istringstream text(note);
    std::vector<std::string> words;
    for (std::string word; text >> word;)
        words.push_back(word);
    return words;
}

// A name may hold blanks: it is the rest of its line.
std::string name_in(const std::string& note) { return note.substr(note.find(' ', note.find(' ') + 1) + 1); }

}    // namespace

unit_notes notes_of(const lineage& units)
{
    unit_notes notes;
    for (const std::string& head : units.edited)
        notes.insert("EDITED " + head);
    for (const std::string& head : units.reviewed)
        notes.insert("REVIEWED " + head);
    for (const dismissal& d : units.dismissed)
        notes.insert("DISMISSED " + d.kind + ' ' + d.head + (d.other.empty() ? "" : ' ' + d.other));
    for (const auto& [earlier, later] : units.gaps)
        notes.insert("GAP " + earlier + ' ' + later);
    for (const auto& [head, name] : units.called)
        notes.insert("CALLED " + head + ' ' + name);
    return notes;
}

void put_notes(const unit_notes& notes, lineage& units)
{
    const auto is_unit = [&units](const std::string& head) { return units.head_members.contains(head); };
    for (const std::string& note : notes) {
        const std::vector<std::string> words = words_of(note);
        if (words.size() < 2)
            continue;
        if (words[0] == "DISMISSED" && words.size() > 2)
            units.dismissed.insert({words[1], words[2], words.size() > 3 ? words[3] : ""});
        else if (words[0] == "EDITED" && is_unit(words[1]))
            units.edited.insert(words[1]);
        else if (words[0] == "REVIEWED" && is_unit(words[1]))
            units.reviewed.insert(words[1]);
        else if (words[0] == "GAP" && words.size() > 2 && is_unit(words[1]) && is_unit(words[2]))
            units.gaps.emplace(words[1], words[2]);
        else if (words[0] == "CALLED" && words.size() > 2 && is_unit(words[1]))
            units.called.emplace(words[1], name_in(note));
    }
}

std::string about_another(const std::string& note, const std::string& from, const std::string& to)
{
    std::istringstream text(note);
    const bool has_name = note.starts_with("CALLED ");
    std::string changed;
    std::string word;
    for (int i = 0; (i < 2 || !has_name) && text >> word; ++i) {
        if (i > 2 && word == from && to.empty() && note.starts_with("DISMISSED "))
            continue;    // it is about the first of the two
        if (i > 0 && word == from && to.empty())
            return {};
        changed += (i > 0 ? " " : "") + (i > 0 && word == from ? to : word);
    }
    return has_name ? changed + ' ' + name_in(note) : changed;
}

std::vector<std::pair<std::string, std::string>>
notes_of_kind(const unit_notes& notes, const std::string& kind, const std::string& first)
{
    const std::string begin = kind + ' ' + first + (first.empty() ? "" : " ");
    std::vector<std::pair<std::string, std::string>> found;
    for (auto note = notes.lower_bound(begin); note != notes.end() && note->starts_with(begin); ++note) {
        const std::size_t word = kind.size() + 1;
        const std::size_t end = std::min(note->find(' ', word), note->size());
        found.emplace_back(note->substr(word, end - word), note->substr(std::min(end + 1, note->size())));
    }
    return found;
}
