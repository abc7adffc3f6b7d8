#include "tree_layout.h"

#include <algorithm>
#include <map>

namespace {

constexpr double between_roots = 0.5;    // columns, beside the one that every branch has

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

}    // namespace

void order_nodes(lineage_tree& tree, const std::vector<std::size_t>& roots)
{
    tree.order.reserve(tree.nodes.size());
    std::vector<std::size_t> to_visit(roots.rbegin(), roots.rend());
    while (!to_visit.empty()) {
        const std::size_t i = to_visit.back();
        to_visit.pop_back();
        tree.order.push_back(i);
        const auto& children = tree.nodes[i].children;
        to_visit.insert(to_visit.end(), children.rbegin(), children.rend());
    }
}

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
    std::ranges::stable_sort(tree.slanted, {}, &tree_link::child);
}

void sort_row(lineage_tree& tree, std::size_t row)
{
    std::ranges::sort(tree.rows[row], {}, [&](std::size_t i) { return tree.nodes[i].column; });
}
