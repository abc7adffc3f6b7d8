#include "unit_names.h"

#include "keygen.h"

#include <algorithm>
#include <charconv>
#include <map>
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

std::vector<std::string> heirs_of(const curation& model, const std::string& unit)
{
    std::vector<std::string> heirs;
    const auto [first, last] = at_time_point(model.links(), decode(unit).t() + 1);
    for (auto link = first; link != last; ++link)
        if (link->second == unit && namesake_of(model, link->first) == unit)
            heirs.push_back(link->first);
    for (const auto& gap : notes_of_kind(model.notes(), "GAP", unit))
        if (namesake_of(model, gap.second) == unit)
            heirs.push_back(gap.second);
    std::ranges::sort(heirs);
    heirs.erase(std::unique(heirs.begin(), heirs.end()), heirs.end());
    return heirs;
}

// What the heir of this number, from 0, adds where there are so many of them.
std::string suffix(std::size_t number, std::size_t heirs)
{
    constexpr std::size_t letters = 26;
    if (heirs < 2)
        return {};
    return number < letters ? std::string(1, static_cast<char>('a' + number)) : std::to_string(number + 1);
}

// By heir: what namesake_of() answers for each, all at once.
std::map<std::string, std::string> all_namesakes(const curation& model)
{
    std::map<std::string, std::string> namesakes;
    const auto add = [&](const std::string& unit, const std::string& earlier) {
        const auto [entry, is_first] = namesakes.try_emplace(unit, earlier);
        if (!is_first && earlier < entry->second)
            entry->second = earlier;
    };
    for (const auto& [child, parent] : model.links())
        add(child, parent);
    for (const auto& [earlier, later] : notes_of_kind(model.notes(), "GAP"))
        if (!model.links().contains(later))
            add(later, earlier);
    std::erase_if(namesakes, [](const auto& entry) { return entry.second >= entry.first; });
    return namesakes;
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
    if (!has_names(model) || !is_roi_key(unit))
        return {};
    std::string suffixes;
    std::string at = unit;
    for (;;) {
        if (const std::string own = own_name(model, at); !own.empty())
            return own + suffixes;
        const std::string from = namesake_of(model, at);
        if (!is_roi_key(from))
            return {};
        const std::vector<std::string> heirs = heirs_of(model, from);
        const auto number = std::ranges::find(heirs, at) - heirs.begin();
        suffixes.insert(0, suffix(static_cast<std::size_t>(number), heirs.size()));
        at = from;
    }
}

std::unordered_map<std::string, std::string> names_of_all(const curation& model)
{
    std::unordered_map<std::string, std::string> names;
    for (auto& [unit, name] : notes_of_kind(model.notes(), "CALLED"))
        names.emplace(unit, std::move(name));
    if (names.empty())
        return names;
    const std::map<std::string, std::string> namesakes = all_namesakes(model);
    std::unordered_map<std::string, std::pair<std::size_t, std::size_t>> heirs;    // met so far, and in all
    for (const auto& entry : namesakes)
        ++heirs[entry.second].second;
    // Ascending by unit, so by time point: whoever passes its name on has got it before.
    for (const auto& [unit, from] : namesakes) {
        auto& [met, all] = heirs[from];
        if (const auto name = names.find(from); name != names.end())
            names.try_emplace(unit, name->second + suffix(met, all));
        ++met;
    }
    return names;
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
