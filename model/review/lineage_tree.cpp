#include "lineage_tree.h"

#include "branch_order.h"
#include "finding.h"
#include "keygen.h"
#include "lineage_file.h"
#include "unit_names.h"
#include "unit_notes.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace {

constexpr double between_roots = 0.5;    // columns, beside the one that every branch has

using key_set = std::set<std::string>;

// The chosen unit, its ancestors and its descendants.
key_set related_units(curation& model, const std::string& chosen)
{
    key_set related{chosen};
    // Links are in the order of their children's time points: one pass finds all descendants.
    for (auto link = model.links().lower_bound(chosen); link != model.links().end(); ++link)
        if (related.contains(link->second))
            related.insert(link->first);
    related.merge(model.subset_of_unit_from(chosen));
    return related;
}

std::vector<tree_node> make_nodes(curation& model, const std::string& chosen)
{
    const bool is_whole = !model.head_members().contains(chosen);
    const key_set related = is_whole ? key_set() : related_units(model, chosen);
    std::vector<tree_node> nodes;
    for (const auto& [unit, member] : model.head_members()) {
        const bool is_new = nodes.empty() || nodes.back().unit != unit;
        if (!is_new || !is_roi_key(unit) || (!is_whole && !related.contains(unit)))
            continue;
        tree_node node;
        node.unit = unit;
        node.t = decode(unit).t();
        node.is_elite = model.elite().contains(unit);
        const bool counts = !model.is_false(unit);
        node.is_doubtful = counts && model.links().count(unit) > 1;
        node.is_unlinked = counts && node.t > model.min_time_point() && !model.links().contains(unit);
        node.is_dead_end = counts && node.t < model.max_time_point();    // until a link says otherwise
        node.is_small = model.head_members().count(unit) == 1;
        nodes.push_back(std::move(node));
    }
    return nodes;
}

void hang_children(lineage_tree& tree, const curation& model)
{
    for (std::size_t i = 0; i < tree.nodes.size(); ++i)
        tree.nodes[i].parent = i;
    for (const auto& [child, parent] : in_order(model.links())) {
        const std::size_t c = tree.find(child);
        const std::size_t p = tree.find(parent);
        if (p < tree.nodes.size())
            tree.nodes[p].is_dead_end = false;
        if (p >= tree.nodes.size() || c >= tree.nodes.size() || tree.nodes[p].t >= tree.nodes[c].t)
            continue;
        if (tree.nodes[c].parent == c) {
            tree.nodes[c].parent = p;
            tree.nodes[p].children.push_back(c);
        } else {
            tree.slanted.push_back({c, p});
        }
    }
}

// Units of one ROI without a link are set aside.
void set_lone_ones_aside(lineage_tree& tree)
{
    for (std::size_t i = 0; i < tree.nodes.size(); ++i) {
        tree_node& node = tree.nodes[i];
        if (node.is_small && node.children.empty() && node.parent == i)
            node.is_dead_end = node.is_unlinked = false;
    }
}

// A finding that a person has dismissed is none, nor is one on either side of a gap.
void take_notes(lineage_tree& tree, const unit_notes& notes)
{
    tree_node of_no_unit;
    const auto node = [&](const std::string& unit) -> tree_node& {
        const std::size_t i = tree.find(unit);
        return i < tree.nodes.size() ? tree.nodes[i] : of_no_unit;
    };
    for (const auto& [unit, rest] : notes_of_kind(notes, "REVIEWED"))
        node(unit).is_reviewed = true;
    for (const auto& [earlier, later] : notes_of_kind(notes, "GAP")) {
        node(earlier).is_dead_end = false;
        node(later).is_unlinked = false;
    }
    for (const auto& [kind, is] : {std::pair(finding_kind::doubtful, &tree_node::is_doubtful),
                                   {finding_kind::dead_end, &tree_node::is_dead_end},
                                   {finding_kind::unlinked, &tree_node::is_unlinked}})
        for (const auto& [word, unit] : notes_of_kind(notes, "DISMISSED", word_of(kind)))
            node(unit.substr(0, unit.find(' '))).*is = false;
}

void name_nodes(lineage_tree& tree, const curation& model)
{
    const auto names = names_of_all(model);
    const auto name_of_node = [&](const tree_node& node) {
        const auto name = names.find(node.unit);
        return name == names.end() ? std::string() : name->second;
    };
    for (std::size_t i = 0; !names.empty() && i < tree.nodes.size(); ++i) {
        tree_node& node = tree.nodes[i];
        const std::string name = name_of_node(node);
        if (node.parent == i || name != name_of_node(tree.nodes[node.parent]))
            node.name = name;
    }
}

void order_nodes(lineage_tree& tree)
{
    std::vector<std::size_t> roots;
    for (std::size_t i = 0; i < tree.nodes.size(); ++i)
        if (tree.nodes[i].parent == i)
            roots.push_back(i);
    order_branches(tree, roots);
    std::vector<std::size_t> to_visit(roots.rbegin(), roots.rend());
    while (!to_visit.empty()) {
        const std::size_t i = to_visit.back();
        to_visit.pop_back();
        tree.order.push_back(i);
        const auto& children = tree.nodes[i].children;
        to_visit.insert(to_visit.end(), children.rbegin(), children.rend());
    }
}

// Without any link.
std::vector<bool> lone_nodes(const lineage_tree& tree)
{
    std::vector<bool> is_lone(tree.nodes.size());
    for (std::size_t i = 0; i < tree.nodes.size(); ++i)
        is_lone[i] = tree.nodes[i].parent == i && tree.nodes[i].children.empty();
    for (const tree_link& link : tree.slanted)
        is_lone[link.parent] = false;
    return is_lone;
}

// Leaves get the columns in order; a node stands above the middle of what hangs under it. Those without any
// link share the last columns, staggered so that they do not look like a branch.
void set_columns(lineage_tree& tree)
{
    const std::vector<bool> is_lone = lone_nodes(tree);
    for (const std::size_t i : tree.order) {
        if (tree.nodes[i].parent == i && !is_lone[i] && tree.columns > 0)
            tree.columns += between_roots;
        if (tree.nodes[i].children.empty() && !is_lone[i])
            tree.nodes[i].column = tree.columns++;
    }
    for (auto i = tree.order.rbegin(); i != tree.order.rend(); ++i) {
        tree_node& node = tree.nodes[*i];
        if (!node.children.empty())
            node.column =
                (tree.nodes[node.children.front()].column + tree.nodes[node.children.back()].column) / 2;
    }
    const double first = tree.columns > 0 ? tree.columns + between_roots : 0;
    std::map<int, int> met;    // of each time point
    for (std::size_t i = 0; i < tree.nodes.size(); ++i)
        if (tree_node& node = tree.nodes[i]; is_lone[i]) {
            node.column = first + met[node.t]++ + (node.t % 2 == 0 ? 0 : 0.5);
            tree.columns = std::max(tree.columns, node.column + 1);
        }
}

void set_rows(lineage_tree& tree)
{
    if (tree.nodes.empty())
        return;
    tree.first_t = tree.nodes.front().t;
    tree.rows.resize(static_cast<std::size_t>(tree.nodes.back().t - tree.first_t) + 1);
    for (std::size_t i = 0; i < tree.nodes.size(); ++i) {
        const tree_node& node = tree.nodes[i];
        tree.rows[static_cast<std::size_t>(node.t - tree.first_t)].push_back(i);
        const tree_node& parent = tree.nodes[node.parent];
        if (parent.column != node.column || node.t > parent.t + 1)
            tree.slanted.push_back({i, node.parent});
    }
    std::sort(tree.slanted.begin(), tree.slanted.end(),
              [](const tree_link& a, const tree_link& b) { return a.child < b.child; });
    for (auto& row : tree.rows)
        std::sort(row.begin(), row.end(),
                  [&](std::size_t a, std::size_t b) { return tree.nodes[a].column < tree.nodes[b].column; });
}

}    // namespace

std::size_t lineage_tree::find(const std::string& unit) const
{
    const auto node = std::lower_bound(nodes.begin(), nodes.end(), unit,
                                       [](const tree_node& n, const std::string& u) { return n.unit < u; });
    return node != nodes.end() && node->unit == unit ? static_cast<std::size_t>(node - nodes.begin())
                                                     : nodes.size();
}

lineage_tree make_tree(curation& model, const std::string& chosen)
{
    lineage_tree tree;
    tree.nodes = make_nodes(model, chosen);
    hang_children(tree, model);
    set_lone_ones_aside(tree);
    take_notes(tree, model.notes());
    name_nodes(tree, model);
    order_nodes(tree);
    set_columns(tree);
    set_rows(tree);
    return tree;
}

std::string newick(const lineage_tree& tree)
{
    // From the last node to the first, what hangs under a node is complete when its turn comes.
    std::vector<std::string> texts(tree.nodes.size());
    std::string roots;
    for (auto i = tree.order.rbegin(); i != tree.order.rend(); ++i) {
        const tree_node& node = tree.nodes[*i];
        std::string& text = texts[*i];
        for (const std::size_t child : node.children) {
            text += text.empty() ? '(' : ',';
            text += std::exchange(texts[child], {});
        }
        if (!node.children.empty())
            text += ')';
        text += '\'' + node.unit + '\'';    // quoted, so that no reader takes digits for a number
        if (node.parent != *i)
            text += ':' + std::to_string(node.t - tree.nodes[node.parent].t);
    }
    for (const std::size_t i : tree.order)
        if (tree.nodes[i].parent == i)
            roots += texts[i] + ";\n";
    return roots;
}
