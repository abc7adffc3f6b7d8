#include "scoring.h"

#include "shown_nuclei.h"

#include "keygen.h"

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

namespace {

// ---- The lineage that was made

struct unit {
    key_set members;
    nucleus of;                      // the nucleus that most of its ROIs are of
    std::vector<nucleus> matched;    // those of which it covers more than half
};

// The nucleus that most ROIs are of, the lowest label of as many.
int label_of(const key_set& members, const shown_nuclei& shown)
{
    std::map<int, int> votes;
    for (const std::string& key : members)
        for (const claim& c : shown.claims_of(key))
            ++votes[c.label];
    const auto most = std::ranges::max_element(votes, {}, [](const auto& vote) { return vote.second; });
    return most == votes.end() ? 0 : most->first;
}

std::vector<nucleus> matched_by(const unit& u, const shown_nuclei& shown)
{
    std::map<nucleus, double> covered;
    for (const std::string& key : u.members)
        for (const claim& c : shown.claims_of(key))
            covered[{u.of.t, c.label}] += c.pixels;
    std::vector<nucleus> matched;
    for (const auto& [n, pixels] : covered)
        if (pixels > 0.5 * shown.pixels_of(n))
            matched.push_back(n);
    return matched;
}

std::map<std::string, unit> units_of(const lineage& made, const shown_nuclei& shown)
{
    std::map<std::string, unit> units;
    for (const auto& [head, member] : made.head_members)
        units[head].members.insert(member);
    for (auto& [head, u] : units) {
        u.of = {decode(head).t(), label_of(u.members, shown)};
        u.matched = matched_by(u, shown);
    }
    return units;
}

// ---- Comparing

class comparison {
public:
    comparison(const lineage& made, const truth& known, const roidb& rois)
        : _known(known), _shown(known, rois), _units(units_of(made, _shown)),
          _head_of(heads_of_members(made)), _links(made.links.begin(), made.links.end())
    {
        for (const auto& [child, parent] : _links)
            _children[parent].insert(child);
    }

    [[nodiscard]] share_score units() const
    {
        share_score s{.made = _units.size(), .real = _shown.rois().size()};
        for (const auto& [head, u] : _units) {
            const auto rois = _shown.rois().find(u.of);
            s.right += rois != _shown.rois().end() && rois->second == u.members && is_of_one(u);
        }
        s.found = s.right;
        return s;
    }

    [[nodiscard]] std::vector<lineage_error> errors(double part) const
    {
        using kind = lineage_error::kind;
        std::vector<lineage_error> all;
        std::map<nucleus, key_set> heads;
        std::set<nucleus> found;
        for (const auto& [head, u] : _units) {
            heads[u.of].insert(head);
            if (shows_one(u, part))
                found.insert(u.of);
            else
                all.push_back({kind::unit, {head}});
        }
        for (const auto& [n, rois] : _shown.rois())
            if (!found.contains(n))
                all.push_back({kind::missed, heads_with(rois)});
        link_kinds missing = reference_links();
        for (const auto& [child, parent] : _links) {
            const nucleus c = _units.at(child).of;
            const nucleus p = _units.at(parent).of;
            if (!_known.are_related(c.label, p.label))
                all.push_back({kind::link, {child, parent}});
            missing.erase({c, p});
        }
        for (const auto& [link, link_is] : missing) {
            lineage_error& error = all.emplace_back(lineage_error{kind::missing_link, heads[link.first]});
            error.units.insert(heads[link.second].begin(), heads[link.second].end());
        }
        return all;
    }

    [[nodiscard]] share_score links() const
    {
        share_score s{.made = _links.size()};
        std::set<std::pair<nucleus, nucleus>> found;
        for (const auto& [child, parent] : _links) {
            const nucleus c = _units.at(child).of;
            const nucleus p = _units.at(parent).of;
            if (!_known.are_related(c.label, p.label))
                continue;
            ++s.right;
            found.emplace(c, p);
        }
        s.found = found.size();
        for (const auto& [n, rois] : _shown.rois())
            s.real += is_shown({n.t - 1, n.label}) || is_shown({n.t - 1, _known.mother_of(n.label)});
        return s;
    }

    [[nodiscard]] share_score divisions() const
    {
        const auto real = real_divisions();
        share_score s{.real = real.size()};
        std::set<nucleus> found;
        for (const auto& [parent, children] : _children) {
            if (children.size() < 2)
                continue;
            ++s.made;
            const nucleus mother = _units.at(parent).of;
            const auto division = real.find(mother);
            if (division == real.end() || children.size() != 2 || division->second != nuclei_of(children))
                continue;
            ++s.right;
            found.insert(mother);
        }
        s.found = found.size();
        return s;
    }

    // det and tra.
    [[nodiscard]] std::pair<double, double> accuracy() const
    {
        constexpr double add_nucleus = 10;
        constexpr double add_link = 1.5;
        const double nodes = node_cost(add_nucleus);
        const auto true_links = reference_links();
        const double nodes_from_nothing = add_nucleus * static_cast<double>(_shown.rois().size());
        const double all_from_nothing =
            nodes_from_nothing + add_link * static_cast<double>(true_links.size());
        return {accuracy(nodes, nodes_from_nothing),
                accuracy(nodes + link_cost(true_links, add_link), all_from_nothing)};
    }

private:
    enum class link_kind { within, to_daughter };
    using link_kinds = std::map<std::pair<nucleus, nucleus>, link_kind>;    // child and parent

    [[nodiscard]] static double accuracy(double cost, double from_nothing)
    {
        if (from_nothing == 0)
            return cost == 0 ? 1 : 0;
        return 1 - std::min(cost, from_nothing) / from_nothing;
    }

    [[nodiscard]] bool is_shown(const nucleus& n) const { return _shown.rois().contains(n); }

    [[nodiscard]] bool shows_one(const unit& u, double part) const
    {
        double all = 0;
        double own = 0;
        for (const std::string& key : u.members)
            for (const claim& c : _shown.pixels_in(key)) {
                all += c.pixels;
                own += c.label == u.of.label ? c.pixels : 0;
            }
        return u.of.label != 0 && own >= part * all && own >= part * _shown.pixels_of(u.of);
    }

    [[nodiscard]] key_set heads_with(const key_set& rois) const
    {
        key_set heads;
        for (const std::string& key : rois)
            if (const auto head = _head_of.find(key); head != _head_of.end())
                heads.insert(head->second);
        return heads;
    }

    [[nodiscard]] bool is_of_one(const unit& u) const
    {
        return std::ranges::all_of(u.members,
                                   [&](const std::string& key) { return _shown.claims_of(key).size() == 1; });
    }

    [[nodiscard]] std::set<nucleus> nuclei_of(const key_set& heads) const
    {
        std::set<nucleus> nuclei;
        for (const std::string& head : heads)
            nuclei.insert(_units.at(head).of);
        return nuclei;
    }

    // Mothers at their last time point, with their daughters at the next.
    [[nodiscard]] std::map<nucleus, std::set<nucleus>> real_divisions() const
    {
        std::map<nucleus, std::set<nucleus>> found;
        for (const auto& [label, track] : _known.tracks) {
            const nucleus mother{track.first - 1, track.parent};
            if (is_shown(mother) && is_shown({track.first, label}))
                found[mother].insert({track.first, label});
        }
        std::erase_if(found, [](const auto& division) { return division.second.size() != 2; });
        return found;
    }

    [[nodiscard]] double node_cost(double add_nucleus) const
    {
        constexpr double split = 5;
        constexpr double delete_unit = 1;
        double cost = 0;
        std::set<nucleus> matched;
        for (const auto& [head, u] : _units) {
            matched.insert(u.matched.begin(), u.matched.end());
            cost += u.matched.empty() ? delete_unit : split * static_cast<double>(u.matched.size() - 1);
        }
        for (const auto& [n, rois] : _shown.rois())
            cost += matched.contains(n) ? 0 : add_nucleus;
        return cost;
    }

    [[nodiscard]] link_kinds reference_links() const
    {
        link_kinds links;
        for (const auto& [n, rois] : _shown.rois()) {
            const nucleus before{n.t - 1, n.label};
            const nucleus mother{n.t - 1, _known.mother_of(n.label)};
            if (is_shown(before))
                links[{n, before}] = link_kind::within;
            else if (is_shown(mother))
                links[{n, mother}] = link_kind::to_daughter;
        }
        return links;
    }

    // Links count between units that stand for one nucleus each.
    [[nodiscard]] double link_cost(link_kinds missing, double add_link) const
    {
        constexpr double delete_link = 1;
        constexpr double change_kind = 1;
        double cost = 0;
        for (const auto& [child, parent] : _links) {
            const unit& c = _units.at(child);
            const unit& p = _units.at(parent);
            if (c.matched.size() != 1 || p.matched.size() != 1)
                continue;
            const auto link = missing.find({c.matched.front(), p.matched.front()});
            const auto kind = _children.at(parent).size() > 1 ? link_kind::to_daughter : link_kind::within;
            if (link == missing.end()) {
                cost += delete_link;
                continue;
            }
            cost += link->second == kind ? 0 : change_kind;
            missing.erase(link);
        }
        return cost + add_link * static_cast<double>(missing.size());
    }

    const truth& _known;
    shown_nuclei _shown;
    std::map<std::string, unit> _units;
    std::map<std::string, std::string> _head_of;
    std::set<std::pair<std::string, std::string>> _links;    // child and parent
    std::map<std::string, key_set> _children;
};

double share(std::size_t part, std::size_t of, std::size_t other)
{
    if (of == 0)
        return other == 0 ? 1 : 0;
    return static_cast<double>(part) / static_cast<double>(of);
}

}    // namespace

double share_score::precision() const noexcept { return share(right, made, real); }

double share_score::recall() const noexcept { return share(found, real, made); }

double share_score::f() const noexcept
{
    const double p = precision();
    const double r = recall();
    return p + r > 0 ? 2 * p * r / (p + r) : 0;
}

lineage_score score_lineage(const lineage& made, const truth& known, const roidb& rois)
{
    const comparison c(made, known, rois);
    const auto [det, tra] = c.accuracy();
    return {c.units(), c.links(), c.divisions(), det, tra};
}

std::vector<lineage_error> errors_of(const lineage& made, const truth& known, const roidb& rois, double part)
{
    return comparison(made, known, rois).errors(part);
}
