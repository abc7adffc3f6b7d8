#include "unit_names.h"

#include "keygen.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

namespace {

bool has_names(const curation& model)
{
    const auto first = model.notes().lower_bound("CALLED ");
    return first != model.notes().end() && first->starts_with("CALLED ");
}

// Whose name a unit inherits, or "". Always one of an earlier time point: walks along it end.
std::string namesake_of(const curation& model, const std::string& unit)
{
    std::string first;
    const auto [link, last] = model.links().equal_range(unit);
    for (auto entry = link; entry != last; ++entry)
        if (first.empty() || entry->second < first)
            first = entry->second;
    if (first.empty())
        for (const auto& [earlier, later] : notes_of_kind(model.notes(), "GAP"))
            if (later == unit && (first.empty() || earlier < first))
                first = earlier;
    return first < unit ? first : std::string();
}

// All units that may inherit the name of this one, ascending: links or gaps lead to them.
std::vector<std::string> next_of(const curation& model, const std::string& unit)
{
    std::vector<std::string> next;
    const auto [first, last] = at_time_point(model.links(), decode(unit).t() + 1);
    for (auto link = first; link != last; ++link)
        if (link->second == unit)
            next.push_back(link->first);
    for (const auto& gap : notes_of_kind(model.notes(), "GAP", unit))
        next.push_back(gap.second);
    std::ranges::sort(next);
    next.erase(std::unique(next.begin(), next.end()), next.end());
    return next;
}

// What the heir of this number, from 0, adds where there are so many of them.
std::string suffix(std::size_t number, std::size_t heirs)
{
    constexpr std::size_t letters = 26;
    if (heirs < 2)
        return {};
    return number < letters ? std::string(1, static_cast<char>('a' + number)) : std::to_string(number + 1);
}

// What an heir adds to the name it inherits.
std::string suffix_of(const curation& model, const std::string& heir, const std::string& from)
{
    std::vector<std::string> heirs = next_of(model, from);
    if (heirs.size() < 2)
        return {};
    std::erase_if(heirs, [&](const std::string& unit) { return namesake_of(model, unit) != from; });
    return suffix(static_cast<std::size_t>(std::ranges::find(heirs, heir) - heirs.begin()), heirs.size());
}

using string_pair = std::pair<std::string, std::string>;

// Heirs, ascending, and what namesake_of() answers for each. They last as long as links and gaps.
std::vector<std::pair<std::string_view, std::string_view>>
all_namesakes(const std::multimap<std::string, std::string>& links, const std::vector<string_pair>& gaps)
{
    std::vector<std::pair<std::string_view, std::string_view>> namesakes;
    for (const auto& [child, parent] : links)
        if (namesakes.empty() || namesakes.back().first != child)
            namesakes.emplace_back(child, parent);
        else
            namesakes.back().second = std::min(namesakes.back().second, std::string_view(parent));
    const auto of_links = std::ssize(namesakes);
    for (const auto& [earlier, later] : gaps)
        if (!links.contains(later))
            namesakes.emplace_back(later, earlier);
    std::sort(namesakes.begin() + of_links, namesakes.end());
    std::inplace_merge(namesakes.begin(), namesakes.begin() + of_links, namesakes.end());
    const auto is_same_heir = [](const auto& a, const auto& b) { return a.first == b.first; };
    namesakes.erase(std::unique(namesakes.begin(), namesakes.end(), is_same_heir), namesakes.end());
    std::erase_if(namesakes, [](const auto& entry) { return entry.second >= entry.first; });
    return namesakes;
}

unit_name_table with_inherited(unit_name_table names, const std::multimap<std::string, std::string>& links,
                               const std::vector<string_pair>& gaps)
{
    if (names.empty())
        return names;
    const auto namesakes = all_namesakes(links, gaps);
    std::unordered_map<std::string_view, std::pair<std::size_t, std::size_t>> heirs;    // met so far, in all
    heirs.reserve(namesakes.size());
    for (const auto& entry : namesakes)
        ++heirs[entry.second].second;
    // Ascending by unit, so by time point: whoever passes its name on has got it before.
    for (const auto& [unit, from] : namesakes) {
        auto& [met, all] = heirs[from];
        if (const auto name = names.find(std::string(from)); name != names.end())
            names.try_emplace(std::string(unit), name->second + suffix(met, all));
        ++met;
    }
    return names;
}

std::optional<std::string> unit_of_typed_number(curation& model, const std::string& text)
{
    constexpr std::size_t most_digits = 8;
    if (text.size() > most_digits)
        return std::nullopt;
    unsigned number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return unit_of_number(model, number);
}

}    // namespace

std::optional<std::string> unit_of_number(curation& model, unsigned number)
{
    for (const std::string& unit : model.units(static_cast<int>(number / curation::numbers_per_time_point)))
        if (model.ID(unit) == number)
            return unit;
    return std::nullopt;
}

std::string own_name(const curation& model, const std::string& unit)
{
    const auto names = notes_of_kind(model.notes(), "CALLED", unit);
    return names.empty() ? std::string() : names.front().second;
}

std::string name_of(const curation& model, const std::string& unit)
{
    unit_name_table known;
    return name_of(model, unit, known);
}

// Who else inherits matters only where somebody was named.
std::string name_of(const curation& model, const std::string& unit, unit_name_table& known)
{
    if (!has_names(model) || !is_roi_key(unit))
        return {};
    std::vector<std::string> way{unit};
    while (!known.contains(way.back())) {
        const std::string& at = way.back();
        std::string from = namesake_of(model, at);
        const std::string own = own_name(model, at);
        if (!own.empty() || !is_roi_key(from))
            known.emplace(at, own);
        else
            way.push_back(std::move(from));
    }
    std::string name = known.at(way.back());
    for (std::size_t i = way.size() - 1; i > 0; --i) {
        if (!name.empty())
            name += suffix_of(model, way[i - 1], way[i]);
        known.emplace(way[i - 1], name);
    }
    return name;
}

unit_name_table names_of_all(const curation& model)
{
    unit_name_table names;
    for (auto& [unit, name] : notes_of_kind(model.notes(), "CALLED"))
        names.emplace(unit, std::move(name));
    return with_inherited(std::move(names), model.links(), notes_of_kind(model.notes(), "GAP"));
}

unit_name_table names_of_all(const lineage& units)
{
    return with_inherited({units.called.begin(), units.called.end()}, units.links,
                          {units.gaps.begin(), units.gaps.end()});
}

std::optional<std::string> find_unit(curation& model, const std::string& text)
{
    if (const std::string unit = model.head(text); is_roi_key(text) && is_roi_key(unit))
        return unit;
    if (const auto unit = unit_of_typed_number(model, text))
        return unit;
    std::optional<std::string> first;
    for (const auto& [unit, name] : names_of_all(model))
        if (name == text && (!first || unit < *first))
            first = unit;
    return first;
}
