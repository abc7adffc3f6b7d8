#include "lineage_comparison.h"

#include "keygen.h"

#include <algorithm>
#include <tuple>

namespace {

using unit_table = std::map<std::string, std::set<std::string>>;    // head to members

unit_table table_of(const lineage& units)
{
    unit_table table;
    for (const auto& [head, member] : units.head_members)
        table[head].insert(member);
    return table;
}

// The heads of a by those of the units of b that stand for them.
std::map<std::string, std::string> counterparts(const unit_table& a, const unit_table& b)
{
    std::map<std::string, std::string> heads_of_a;
    for (const auto& [head, members] : a)
        for (const std::string& member : members)
            heads_of_a.emplace(member, head);
    std::map<std::string, std::string> found;
    for (const auto& [head, members] : b) {
        std::map<std::string, std::size_t> shared;
        for (const std::string& member : members)
            if (const auto of_a = heads_of_a.find(member); of_a != heads_of_a.end())
                ++shared[of_a->second];
        for (const auto& [other, count] : shared)
            if (2 * count > members.size() && 2 * count > a.at(other).size())
                found.emplace(head, other);
    }
    return found;
}

// One thing that a lineage says, told by heads of a: what both say is equal.
struct statement {
    std::string kind;
    std::string first;     // the unit
    std::string second;    // another unit, or a text

    auto operator<=>(const statement&) const = default;
};

class statements {
public:
    explicit statements(const std::map<std::string, std::string>* names = nullptr) : _names(names) {}

    void add_all(const lineage& units)
    {
        for (const auto& [child, parent] : units.links)
            add("link", child, name(parent));
        for (const auto& [earlier, later] : units.gaps)
            add("gap", later, name(earlier));
        for (const std::string& head : units.elite)
            add("elite", head, "");
        for (const auto& [head, text] : units.called)
            add("name", head, text);
    }

    // With the head in its own lineage.
    [[nodiscard]] const std::map<statement, std::string>& all() const noexcept { return _all; }

private:
    // What stands for nothing in a keeps its own head, marked so that it is like none there.
    [[nodiscard]] std::string name(const std::string& head) const
    {
        if (!_names)
            return head;
        const auto found = _names->find(head);
        return found == _names->end() ? "b " + head : found->second;
    }

    void add(const char* kind, const std::string& head, const std::string& second)
    {
        _all.emplace(statement{kind, name(head), second}, head);
    }

    const std::map<std::string, std::string>* _names;
    std::map<statement, std::string> _all;
};

double agreement(std::size_t common, std::size_t a, std::size_t b)
{
    return a + b == 0 ? 1 : 2.0 * static_cast<double>(common) / static_cast<double>(a + b);
}

class comparison {
public:
    lineage_comparison run(const lineage& a, const lineage& b)
    {
        const unit_table units_a = table_of(a);
        const unit_table units_b = table_of(b);
        compare_units(units_a, units_b);
        const auto names = counterparts(units_a, units_b);
        statements of_a;
        statements of_b(&names);
        of_a.add_all(a);
        of_b.add_all(b);
        compare_statements(of_a.all(), of_b.all());
        for (const lineage_difference& d : _result.differences)
            ++(d.in == 'a' ? _result.only_a : _result.only_b);
        std::ranges::sort(_result.differences, {},
                          [](const lineage_difference& d) { return std::tuple(d.t, d.unit, d.kind, d.in); });
        return std::move(_result);
    }

private:
    void differ(const std::string& kind, const std::string& head, char in)
    {
        _result.differences.push_back({kind, decode(head).t(), head, in});
    }

    void compare_units(const unit_table& a, const unit_table& b)
    {
        std::map<std::set<std::string>, std::string> by_members;
        for (const auto& [head, members] : b)
            by_members.emplace(members, head);
        std::size_t common = 0;
        for (const auto& [head, members] : a)
            if (by_members.erase(members) > 0)
                ++common;
            else
                differ("unit", head, 'a');
        for (const auto& [members, head] : by_members)
            differ("unit", head, 'b');
        _result.units_f = agreement(common, a.size(), b.size());
    }

    void compare_statements(const std::map<statement, std::string>& a,
                            const std::map<statement, std::string>& b)
    {
        std::size_t links[3] = {};    // common, in a, in b
        for (const auto& [said, head] : a) {
            links[1] += said.kind == "link";
            if (!b.contains(said))
                differ(said.kind, head, 'a');
            else
                links[0] += said.kind == "link";
        }
        for (const auto& [said, head] : b) {
            links[2] += said.kind == "link";
            if (!a.contains(said))
                differ(said.kind, head, 'b');
        }
        _result.links_f = agreement(links[0], links[1], links[2]);
    }

    lineage_comparison _result;
};

}    // namespace

lineage_comparison compare_lineages(const lineage& a, const lineage& b) { return comparison().run(a, b); }
