// The lineage laid out as a tree: who stands beside whom.
#include "../support/open_curation.h"
#include "lineage_tally.h"
#include "lineage_tree.h"
#include "review.h"

#include <gtest/gtest.h>

namespace {

std::string unit_at(CurationProbe& w, int t, int x) { return put_unit(w, {put_roi(w, {x, 30, 5, t})}); }

double column_of(const lineage_tree& tree, const std::string& unit)
{
    return tree.nodes.at(tree.find(unit)).column;
}

}    // namespace

// Two branches that a wrong link joins, with others between them until it is there.
TEST(lineage_tree, branches_that_a_link_joins_are_neighbours)
{
    OpenCuration w;
    std::vector<std::string> roots, ends;
    for (int i = 0; i < 5; ++i) {
        roots.push_back(unit_at(w, 0, 10 + 10 * i));
        const std::string mother = unit_at(w, 1, 10 + 10 * i);
        w.link(mother, roots.back());
        for (const int aside : {0, 4}) {
            ends.push_back(unit_at(w, 2, 10 + 10 * i + aside));
            w.link(ends.back(), mother);
            const std::string last = unit_at(w, 3, 10 + 10 * i + aside);
            w.link(last, ends.back());
            ends.back() = last;
        }
    }
    const std::string lone = unit_at(w, 1, 200), below = unit_at(w, 2, 200);
    const lineage_tree apart = make_tree(w, "");
    EXPECT_LT(column_of(apart, ends[0]) + 1, column_of(apart, ends[8]));
    EXPECT_EQ(column_of(apart, ends[1]) - column_of(apart, ends[0]), 1) << "daughters are apart";
    EXPECT_EQ(column_of(apart, ends[2]) - column_of(apart, ends[1]), 1.5) << "lineages even more so";
    EXPECT_TRUE(column_of(apart, lone) > column_of(apart, ends[9]) &&
                column_of(apart, below) > column_of(apart, ends[9]));
    EXPECT_LT(apart.columns, 15) << "those without a link share columns";

    const std::string joined = unit_at(w, 4, 10);
    w.m_linkage_multimap.emplace(joined, ends[0]);
    w.m_linkage_multimap.emplace(joined, ends[8]);
    const lineage_tree tree = make_tree(w, "");
    const double left = column_of(tree, ends[0]), right = column_of(tree, ends[8]);
    for (const std::string& end : ends)
        EXPECT_FALSE(left < column_of(tree, end) && column_of(tree, end) < right) << end;
    EXPECT_EQ(right - left, 1.5);
}

// Numbers, tree and list of findings have one rule for it.
TEST(lineage_tree, one_roi_alone_is_set_aside_where_nuclei_show_on_several_planes)
{
    const struct {
        const char* why;
        int other_plane;
        bool is_second_parent;
        int dead_ends, unlinked;
        std::size_t nuclei;
    } cases[] = {{"set aside", 6, false, 0, 1, 2},
                 {"a flat recording", 5, false, 1, 2, 3},
                 {"a link that is no branch", 6, true, 0, 2, 3}};
    for (const auto& c : cases) {
        OpenCuration w;
        const auto nucleus = [&](int t) {
            return put_unit(w, {put_roi(w, {30, 30, 5, t}), put_roi(w, {32, 30, c.other_plane, t})});
        };
        const std::string mother = nucleus(1), child = nucleus(2), lone = unit_at(w, 1, 70);
        w.link(child, mother);
        if (c.is_second_parent)
            w.m_linkage_multimap.emplace(child, lone);
        const tally at = count_lineage(w).at(1);
        EXPECT_TRUE(at.dead_ends == c.dead_ends && at.unlinked == c.unlinked) << c.why;
        const lineage_tree tree = make_tree(w, "");
        const tree_node& node = tree.nodes.at(tree.find(lone));
        EXPECT_TRUE(node.is_dead_end == (c.dead_ends > 0) && node.is_unlinked == (c.unlinked > 1)) << c.why;
        review all(w);
        all.finish();
        EXPECT_EQ(all.counts().units, c.nuclei) << c.why;
    }
}
