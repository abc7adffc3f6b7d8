// branch_order.h - which branch of a lineage tree stands beside which.
#pragma once
#include "lineage_tree.h"

#include <cstddef>
#include <vector>

// Puts the roots, and what hangs under each node, in an order in which those that the slanted links of the
// tree join (a child and its further parents) are neighbours, so that such a link crosses no branch where it
// need not. One link after the other: a later one may part what an earlier one has joined.
void order_branches(lineage_tree& tree, std::vector<std::size_t>& roots);
