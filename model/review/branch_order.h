// branch_order.h - which branch of a lineage tree stands beside which.
#pragma once
#include "lineage_tree.h"

#include <cstddef>
#include <vector>

// Puts the roots, and what hangs under each node, in an order in which those that a slanted link joins (a
// child and a further parent of it) are neighbours, so that the link crosses no branch where it need not. One
// link after the other: a later one may part what an earlier one has joined.
void join_branches_of(const tree_link& link, lineage_tree& tree, std::vector<std::size_t>& roots);
