// lineage_tree.h - units and links laid out as a tree: time runs down, one column per branch.
#pragma once
#include "curation.h"

#include <cstddef>
#include <string>
#include <vector>

struct tree_node {
    std::string unit;     // its head
    int t = 0;            // time point
    double column = 0;    // between those of its branches where it has any
    std::string name;     // where what it is called begins: inherited names stand on the first unit alone
    bool is_elite = false;
    bool is_doubtful = false;
    bool is_dead_end = false;
    bool is_unlinked = false;
    bool is_reviewed = false;
    bool is_false = false;     // all of its ROIs are false positives
    bool is_small = false;     // one ROI alone
    std::size_t parent = 0;    // the parent with the smallest key, under which it hangs; itself for a root
    std::vector<std::size_t> children;    // those that hang under it

    bool operator==(const tree_node&) const = default;
};

// A link that does not follow a branch straight down: to a further parent, or from a division.
struct tree_link {
    std::size_t child;
    std::size_t parent;

    bool operator==(const tree_link&) const = default;
};

struct lineage_tree {
    std::vector<tree_node> nodes;                  // ascending by unit, so by time point
    std::vector<std::size_t> order;                // indices of nodes: each before those that hang under it
    std::vector<std::vector<std::size_t>> rows;    // by time point from first_t: indices of nodes, by column
    std::vector<tree_link> slanted;                // by child, so by time point
    int first_t = 0;
    double columns = 0;    // its width

    // The node of a unit, or nodes.size().
    [[nodiscard]] std::size_t find(const std::string& unit) const;

    bool operator==(const lineage_tree&) const = default;
};

// The tree of all units; with `chosen`, of its ancestors, itself and its descendants.
[[nodiscard]] lineage_tree make_tree(curation& model, const std::string& chosen);

// The tree in Newick format, one line per root. Branch lengths are time points.
[[nodiscard]] std::string newick(const lineage_tree& tree);
