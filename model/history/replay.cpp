#include "replay.h"

#include "keygen.h"
#include "q_roiimgdb.h"
#include "recording_file.h"
#include "roidb_plus.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <vector>

namespace {

constexpr int kind_count = static_cast<int>(change_kind::chosen) + 1;

// One line of a step, taken apart.
struct change {
    static constexpr std::size_t most_words = 6;

    char sign = 0;
    change_kind kind = change_kind::roi;
    std::array<std::string_view, most_words> words;
    std::size_t count = 0;

    [[nodiscard]] std::string text(std::size_t i) const
    {
        return i < count ? plain_word(words[i]) : std::string();
    }

    [[nodiscard]] int number(std::size_t i) const
    {
        int value = 0;
        if (i < count)
            std::from_chars(words[i].data(), words[i].data() + words[i].size(), value);
        return value;
    }
};

std::optional<change_kind> kind_named(std::string_view name)
{
    for (int i = 0; i < kind_count; ++i)
        if (name_of(static_cast<change_kind>(i)) == name)
            return static_cast<change_kind>(i);
    return std::nullopt;
}

std::optional<change> read_change(std::string_view line)
{
    change c;
    if (line.empty())
        return std::nullopt;
    c.sign = line.front();
    line.remove_prefix(1);
    const std::size_t end = std::min(line.find(' '), line.size());
    const std::optional<change_kind> kind = kind_named(line.substr(0, end));
    line.remove_prefix(end);
    while (!line.empty() && c.count < change::most_words) {
        line.remove_prefix(1);
        const std::size_t length = std::min(line.find(' '), line.size());
        c.words[c.count++] = line.substr(0, length);
        line.remove_prefix(length);
    }
    if (!kind)
        return std::nullopt;
    c.kind = *kind;
    return c;
}

std::vector<std::string_view> lines_of(std::string_view text)
{
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1);
        lines.push_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    return lines;
}

// ---- Entries of a multimap, in the order of equal keys

template <class Map, class Value>
bool insert_at(Map& map, const std::string& key, const Value& value, int position)
{
    const auto [first, last] = map.equal_range(key);
    auto place = first;
    for (; position > 0 && place != last; --position)
        ++place;
    map.emplace_hint(place, key, value);
    return position == 0;
}

// The one at this position, else the first that has the value.
template <class Map, class Value>
bool erase_at(Map& map, const std::string& key, const Value& value, int position)
{
    const auto [first, last] = map.equal_range(key);
    auto found = last;
    int at = 0;
    for (auto entry = first; entry != last && (found == last || at <= position); ++entry, ++at)
        if (entry->second == value && (found == last || at == position))
            found = entry;
    if (found == last)
        return false;
    const bool is_exact = std::distance(first, found) == position;
    map.erase(found);
    return is_exact;
}

template <class Map, class Value>
bool erase_last(Map& map, const std::string& key, const Value& value)
{
    const auto [first, last] = map.equal_range(key);
    for (auto entry = last; entry != first;)
        if ((--entry)->second == value) {
            map.erase(entry);
            return true;
        }
    return false;
}

// An entry comes in behind the others, or where it was before it left.
template <class Map, class Value>
bool change_entry(Map& map, const std::string& key, const Value& value, char sign, bool forward, int position)
{
    if (sign == '+' && forward) {
        map.emplace(key, value);
        return true;
    }
    if (sign == '+')
        return erase_last(map, key, value);
    return forward ? erase_at(map, key, value, position) : insert_at(map, key, value, position);
}

// ---- One change

bool change_roi(const change& c, bool comes, const curation_tables& tables)
{
    const roi r(c.number(0), c.number(1), c.number(2), c.number(3), c.text(4));
    if (tables.rasters)
        tables.rasters->remove(r);
    return comes ? tables.rois->put_record(r) : tables.rois->take_record(keygen(r));
}

bool change_index(const change& c, bool forward, roidb_plus& rois)
{
    rois.index_changes();
    return change_entry(rois.tz_xy_db, c.text(0), pos2i(c.number(1), c.number(2)), c.sign, forward,
                        c.number(3));
}

bool change_head(const change& c, bool comes, std::map<std::string, std::string>& heads)
{
    return comes ? heads.emplace(c.text(0), c.text(1)).second : heads.erase(c.text(0)) > 0;
}

bool change_choice(const change& c, bool forward, std::set<std::string>& chosen)
{
    const std::string after = c.text(forward ? 1 : 0);
    chosen.clear();
    if (!after.empty())
        chosen.insert(after);
    return true;
}

std::set<std::string>* marks_in(const curation_tables& tables, change_kind kind)
{
    switch (kind) {
    case change_kind::elite:
        return tables.elite;
    case change_kind::selected:
        return tables.selected;
    case change_kind::false_positive:
        return tables.false_positives;
    case change_kind::forward:
        return tables.forward;
    case change_kind::note:
        return tables.notes;
    default:
        return tables.backward;
    }
}

bool change_mark(const change& c, bool comes, std::set<std::string>* marks)
{
    return !marks || (comes ? marks->insert(c.text(0)).second : marks->erase(c.text(0)) > 0);
}

bool apply(const change& c, bool forward, const curation_tables& tables)
{
    const bool comes = (c.sign == '+') == forward;
    switch (c.kind) {
    case change_kind::roi:
        return !tables.rois || change_roi(c, comes, tables);
    case change_kind::index:
        return !tables.rois || change_index(c, forward, *tables.rois);
    case change_kind::unit:
        return !tables.head_members ||
               change_entry(*tables.head_members, c.text(0), c.text(1), c.sign, forward, c.number(2));
    case change_kind::head:
        return !tables.members_head || change_head(c, comes, *tables.members_head);
    case change_kind::link:
        return !tables.links ||
               change_entry(*tables.links, c.text(0), c.text(1), c.sign, forward, c.number(2));
    case change_kind::scale:
        return !tables.info || take_recording_text(c.text(forward ? 1 : 0), *tables.info);
    case change_kind::chosen:
        return !tables.chosen || change_choice(c, forward, *tables.chosen);
    default:
        return change_mark(c, comes, marks_in(tables, c.kind));
    }
}

bool apply_all(const edit_step& step, bool forward, const curation_tables& tables, file_set files)
{
    std::vector<std::string_view> lines = lines_of(step.changes());
    if (!forward)
        std::ranges::reverse(lines);
    bool is_exact = true;
    for (const std::string_view line : lines) {
        const std::optional<change> c = read_change(line);
        if (c && (bit_of(file_of(c->kind)) & files) == 0)
            continue;
        is_exact = c && apply(*c, forward, tables) && is_exact;
    }
    return is_exact;
}

// The key of a change that is no ROI: a note has it behind its first word.
std::string key_in(const change& c)
{
    const std::string text = c.text(0);
    return c.kind == change_kind::note ? text.substr(std::min(text.find(' '), text.size() - 1) + 1, 12)
                                       : text;
}

// ---- What a step has touched

template <class Map>
void copy_entries(const Map& from, const std::string& key, Map& to)
{
    if (to.contains(key))
        return;
    const auto [first, last] = from.equal_range(key);
    to.insert(first, last);
}

}    // namespace

bool undo_step(const edit_step& step, const curation_tables& tables, file_set files)
{
    return apply_all(step, false, tables, files);
}

bool redo_step(const edit_step& step, const curation_tables& tables, file_set files)
{
    return apply_all(step, true, tables, files);
}

// Looks at the entries of the keys that the step names, alone.
bool amounts_to_nothing(const edit_step& step, const curation_tables& tables)
{
    // ROIs that come and go are never the same ones; sizes are changed only to others.
    if (!step.is_balanced() || step.concerns(kept_in::rois) || step.concerns(kept_in::recording))
        return false;
    std::multimap<std::string, std::string> units, links;
    std::map<std::string, std::string> heads;
    std::set<std::string> marks[kind_count];
    for (const std::string_view line : lines_of(step.changes())) {
        const std::optional<change> c = read_change(line);
        if (!c || c->kind == change_kind::chosen || c->kind == change_kind::scale)
            continue;
        const std::string key = c->text(0);
        if (c->kind == change_kind::unit)
            copy_entries(*tables.head_members, key, units);
        else if (c->kind == change_kind::link)
            copy_entries(*tables.links, key, links);
        else if (c->kind == change_kind::head)
            copy_entries(*tables.members_head, key, heads);
        else if (marks_in(tables, c->kind)->contains(key))
            marks[static_cast<int>(c->kind)].insert(key);
    }
    const auto marks_of = [&marks](change_kind kind) { return &marks[static_cast<int>(kind)]; };
    const auto units_after = units, links_after = links;
    const auto heads_after = heads;
    const std::vector<std::set<std::string>> marks_after(std::begin(marks), std::end(marks));
    (void)undo_step(step, {.head_members = &units,
                           .members_head = &heads,
                           .links = &links,
                           .elite = marks_of(change_kind::elite),
                           .selected = marks_of(change_kind::selected),
                           .false_positives = marks_of(change_kind::false_positive),
                           .forward = marks_of(change_kind::forward),
                           .backward = marks_of(change_kind::backward),
                           .notes = marks_of(change_kind::note)});
    return units == units_after && links == links_after && heads == heads_after &&
           std::ranges::equal(marks, marks_after);
}

std::string find_place(const edit_step& step, int t, int z)
{
    constexpr std::size_t shortest_key = 9;
    std::string first;
    for (const std::string_view line : lines_of(step.changes())) {
        const std::optional<change> c = read_change(line);
        if (!c)
            continue;
        const std::string key = c->kind == change_kind::roi
                                    ? keygen({c->number(0), c->number(1), c->number(2), c->number(3)})
                                    : key_in(*c);
        if (key.size() < shortest_key || !is_roi_key(key))
            continue;
        const pos4i at = decode(key);
        if (at.t() == t && at.z() == z)
            return key;
        if (first.empty())
            first = key;
    }
    return first;
}
