#include "rest_of_file.h"

#include "curation.h"
#include "keygen.h"

#include <algorithm>
#include <vector>

namespace {

// Runs change(key, values read, values there are) for every key whose values are not the same.
template <class Map, class Change>
void for_each_difference(const Map& read, const Map& present, const Change& change)
{
    auto a = read.begin();
    auto b = present.begin();
    while (a != read.end() || b != present.end()) {
        const bool is_of_a = b == present.end() || (a != read.end() && a->first <= b->first);
        const auto key = is_of_a ? a->first : b->first;
        std::vector<typename Map::mapped_type> from, to;
        for (; a != read.end() && a->first == key; ++a)
            from.push_back(a->second);
        for (; b != present.end() && b->first == key; ++b)
            to.push_back(b->second);
        if (from != to)
            change(key, from, to);
    }
}

void add_difference(edit_step& step, change_kind kind, const std::multimap<std::string, std::string>& read,
                    const std::multimap<std::string, std::string>& present)
{
    for_each_difference(read, present, [&](const std::string& key, const auto& from, const auto& to) {
        for (const std::string& value : from)
            step.remove(kind, key, value);
        for (const std::string& value : to)
            step.add(kind, key, value);
    });
}

// As a file is read: in ascending order.
std::multimap<std::string, std::string> as_read(const std::multimap<std::string, std::string>& pairs)
{
    std::multimap<std::string, std::string> read;
    for (auto& pair : in_order(pairs))
        read.emplace_hint(read.end(), std::move(pair));
    return read;
}

void add_lineage(edit_step& step, const curation& model)
{
    const lineage written = model.current_lineage();
    add_difference(step, change_kind::unit, as_read(written.head_members), model.head_members());
    add_difference(step, change_kind::link, as_read(written.links), model.links());
    const auto heads = heads_of_members(written);
    add_difference(step, change_kind::head, {heads.begin(), heads.end()},
                   {model.members_head().begin(), model.members_head().end()});
    for (const std::string& unit : model.elite())
        if (!written.elite.contains(unit))
            step.add(change_kind::elite, unit);
    const unit_notes noted = notes_of(written);
    for (const std::string& note : model.notes())
        if (!noted.contains(note))
            step.add(change_kind::note, note);
}

void add_index(edit_step& step, const roidb_plus& rois)
{
    std::multimap<std::string, pos2i> read;
    for (const auto& [key, r] : rois.db)
        read.emplace_hint(read.end(), keygen(pos4i(0, 0, r.z(), r.t())), pos2i(r.x(), r.y()));
    for_each_difference(read, rois.tz_xy_db, [&](const std::string& plane, const auto& from, const auto& to) {
        for (const pos2i at : from)
            step.remove_index(plane, at, 0);
        for (const pos2i at : to)
            step.add_index(plane, at);
    });
}

}    // namespace

edit_step rest_of_file(kept_in file, const curation& model)
{
    edit_step step;
    if (file == kept_in::rois) {
        add_index(step, model.rois());
    } else if (file == kept_in::lineage) {
        add_lineage(step, model);
    }
    return step;
}
