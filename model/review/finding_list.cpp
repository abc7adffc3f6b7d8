#include "finding_list.h"

#include <algorithm>

namespace {

constexpr auto comes_first = [](const finding* a, const finding* b) { return ranks_before(*a, *b); };

}    // namespace

void finding_list::clear() { *this = {}; }

void finding_list::set(const std::string& unit, std::vector<finding> open, std::size_t dismissed)
{
    const auto known = _entries.find(unit);
    if (known != _entries.end()) {
        if (known->second.open == open && known->second.dismissed == dismissed)
            return;
        leave(known->second);
        _entries.erase(known);
    }
    if (open.empty() && dismissed == 0)
        return;
    enter(_entries.emplace(unit, entry{std::move(open), dismissed}).first->second);
}

void finding_list::keep_ranked()
{
    std::ranges::sort(_ranked, comes_first);
    _is_ranked = true;
}

void finding_list::enter(const entry& e)
{
    _dismissed += e.dismissed;
    for (const finding& f : e.open)
        _units[f.kind].insert(f.unit);
    if (e.open.empty())
        return;
    ++_listed[e.open.front().kind];
    const finding* const best = &e.open.front();
    _ranked.insert(_is_ranked ? std::ranges::lower_bound(_ranked, best, comes_first) : _ranked.end(), best);
}

void finding_list::leave(const entry& e)
{
    _dismissed -= e.dismissed;
    for (const finding& f : e.open)
        _units[f.kind].erase(f.unit);
    if (e.open.empty())
        return;
    --_listed[e.open.front().kind];
    const finding* const best = &e.open.front();
    _ranked.erase(_is_ranked ? std::ranges::lower_bound(_ranked, best, comes_first)
                             : std::ranges::find(_ranked, best));
}

const std::vector<finding>& finding_list::all_of(const std::string& unit) const
{
    static const std::vector<finding> none;
    const auto found = _entries.find(unit);
    return found == _entries.end() ? none : found->second.open;
}

const std::set<std::string>& finding_list::units_with(finding_kind kind) const
{
    static const std::set<std::string> none;
    const auto found = _units.find(kind);
    return found == _units.end() ? none : found->second;
}

std::size_t finding_list::listed(finding_kind kind) const
{
    const auto found = _listed.find(kind);
    return found == _listed.end() ? 0 : found->second;
}
