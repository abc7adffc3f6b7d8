#include "branch_order.h"

#include <algorithm>

namespace {

using indices = std::vector<std::size_t>;

// From its root down to the node.
indices way_to(const lineage_tree& tree, std::size_t node)
{
    indices way{node};
    while (tree.nodes[node].parent != node)
        way.push_back(node = tree.nodes[node].parent);
    std::reverse(way.begin(), way.end());
    return way;
}

void move_to(indices::iterator from, indices::iterator before)
{
    if (from < before)
        std::rotate(from, from + 1, before);
    else
        std::rotate(before, from, from + 1);
}

// Below branch `i` of the way, everything on it stands at one edge of what hangs beside it.
void move_to_edge(lineage_tree& tree, const indices& way, std::size_t i, bool is_right)
{
    for (++i; i < way.size(); ++i) {
        indices& branches = tree.nodes[way[i - 1]].children;
        move_to(std::ranges::find(branches, way[i]), is_right ? branches.end() : branches.begin());
    }
}

}    // namespace

void join_branches_of(const tree_link& link, lineage_tree& tree, indices& roots)
{
    const indices one = way_to(tree, link.child);
    const indices other = way_to(tree, link.parent);
    const auto fork = std::mismatch(one.begin(), one.end(), other.begin(), other.end());
    if (fork.first == one.end() || fork.second == other.end())
        return;
    const auto i = static_cast<std::size_t>(fork.first - one.begin());
    indices& branches = i == 0 ? roots : tree.nodes[one[i - 1]].children;
    const auto stays = std::ranges::find(branches, *fork.first);
    const auto moves = std::ranges::find(branches, *fork.second);
    const bool is_right = moves > stays;
    move_to(moves, is_right ? stays + 1 : stays);
    move_to_edge(tree, one, i, is_right);
    move_to_edge(tree, other, i, !is_right);
}
