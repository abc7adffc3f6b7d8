// tree_layout.h - where the branches of a lineage tree stand, once it is known what hangs under what.
#pragma once
#include "lineage_tree.h"

#include <cstddef>
#include <vector>

// Fills `order`: roots one after the other, each followed by all that hangs under it.
void order_nodes(lineage_tree& tree, const std::vector<std::size_t>& roots);

// Leaves get the columns in order; a node stands above the middle of what hangs under it. Those without any
// link share the last columns, staggered so that they do not look like a branch.
// REQUIRES: `slanted` holds the links to further parents, and no other
void set_columns(lineage_tree& tree);

// Fills `rows`, not in order yet, and adds to `slanted` the links that do not run straight down.
void set_rows(lineage_tree& tree);

void sort_row(lineage_tree& tree, std::size_t row);
