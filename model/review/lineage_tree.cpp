#include "lineage_tree.h"

#include "tree_making.h"

#include <algorithm>
#include <utility>

std::size_t lineage_tree::find(const std::string& unit) const
{
    const auto node = std::lower_bound(nodes.begin(), nodes.end(), unit,
                                       [](const tree_node& n, const std::string& u) { return n.unit < u; });
    return node != nodes.end() && node->unit == unit ? static_cast<std::size_t>(node - nodes.begin())
                                                     : nodes.size();
}

lineage_tree make_tree(curation& model, const std::string& chosen)
{
    tree_making making(model, chosen);
    while (making.advance(1000)) {
    }
    return making.take();
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
