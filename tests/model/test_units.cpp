// Units, the links between them, and merging.
#include "../support/captured_lines.h"
#include "../support/open_curation.h"
#include "link_making.h"

#include <gtest/gtest.h>

namespace {

using links = std::multimap<std::string, std::string>;

// A unit of one ROI of 3 x 3 pixels.
std::string one_roi(CurationProbe& w, int x, int z, int t)
{
    return put_unit(w, {put_roi(w, {x, 30, z, t}, 3, 3)});
}

}    // namespace

TEST(units, units_are_those_of_their_time_point)
{
    OpenCuration w;
    const std::string last = one_roi(w, 5, 20, 999);
    const std::string before = put_unit(w, {one_roi(w, 5, 20, 998), put_roi(w, {5, 30, 19, 998})});
    for (const char* head : {"005000000000", "005000000001", "006000000000"})
        put_unit(w, {head});    // the first sorts with the time point itself
    EXPECT_TRUE(w.units(999) == keys({last}) && w.units(998) == keys({before}) && w.units(997).empty());
    EXPECT_TRUE(w.units(5) == keys({"005000000001"}) && w.z_min(before) == 19 && w.z_max(before) == 20);
    EXPECT_TRUE(w.head(before) == before && w.head("004000000000") == "N/A" && w.member("N/A").empty());
    w.makeLinkage(999);
    w.makeLinkage(999);
    EXPECT_EQ(w.m_linkage_multimap, links({{last, before}, {last, before}}));
    EXPECT_TRUE(w.ID("012000001001") == 12000 && w.ID("012000000000") == 12001);
    EXPECT_TRUE(w.ID("013000000000") == 13000 && w.ID("012000001001") == 12000);
    EXPECT_TRUE(w.ID(w.head("nobody")) == w.ID("N/A"));
}

TEST(units, units_are_linked_where_a_pixel_of_a_plane_is_shared)
{
    OpenCuration w;
    const std::string gone = put_roi(w, {40, 40, 6, 0});
    const std::string parent = put_unit(w, {put_roi(w, {20, 20, 3, 0}), put_roi(w, {20, 20, 6, 0}), gone});
    w.m_roidb->remove(gone);
    links expected;
    const std::tuple<int, int, bool> cases[] = {{20, 7, false}, {23, 6, true},  {24, 6, false},
                                                {17, 3, true},  {16, 3, false}, {40, 6, false}};
    for (const auto& [x, z, is_linked] : cases) {
        const std::string child = put_unit(w, {put_roi(w, {x, x, z, 1}), keygen({60, 60, z, 1})});
        EXPECT_EQ(w.isLink(parent, child), is_linked);
        if (is_linked)
            expected.emplace(child, parent);
    }
    w.makeLinkage(1);
    EXPECT_EQ(w.m_linkage_multimap, expected);
}

TEST(units, links_join_successive_time_points_once)
{
    const std::string a = "004001002003", b = "005001002003";
    CurationProbe w;
    CapturedLines lines(std::cout);
    w.link(a, b);
    w.link(b, a);
    EXPECT_EQ(w.m_linkage_multimap, links({{b, a}}));
    for (const auto& [one, two] :
         {std::pair(a, "006001002003"), {a, "004009009009"}, {a, "N/A"}, {"N/A", "N/A"}}) {
        w.link(one, two);
        EXPECT_EQ(lines.take().join('|'), QString::fromStdString("Cannot link " + one + " and " + two));
    }
    w.m_linkage_multimap.emplace(b, a);
    w.release_child("N/A", "N/A");
    w.release_child(a, b);    // one of the two
    EXPECT_EQ(w.m_linkage_multimap.size(), 1U);
}

TEST(units, a_merged_unit_takes_over_the_links_of_both)
{
    OpenCuration w;
    CapturedLines lines(std::cout);
    const std::string p = one_roi(w, 1, 20, 0), q = one_roi(w, 9, 20, 0);
    const std::string c = one_roi(w, 1, 20, 2), d = one_roi(w, 9, 20, 2);
    const std::string low = put_roi(w, {1, 30, 5, 1}), top = put_roi(w, {1, 30, 8, 1});
    const std::string a = put_unit(w, {top, low});
    const std::string b = put_unit(w, {put_roi(w, {9, 30, 2, 1}), put_roi(w, {9, 30, 4, 1})});
    const keys members = {low, top, b, keygen({9, 30, 4, 1})};
    w.m_linkage_multimap = {{a, p}, {a, p}, {b, p}, {b, q}, {c, a}, {d, b}, {d, b}};
    w.m_elite_head_roi_set = {a, b, c};
    w.m_lineage_mode_roi_set = {b};
    w.mergeUnits(a, b);
    EXPECT_EQ(w.m_lineage_mode_roi_set, keys({low}));    // what was chosen is it still
    EXPECT_EQ(lines.take().join('|'), QString::fromStdString("mergeUnits: " + a + " " + b));
    EXPECT_EQ(w.m_linkage_multimap, links({{low, p}, {low, q}, {c, low}, {d, low}}));
    EXPECT_TRUE(w.units(1) == keys({low}) && w.member(low) == members && w.m_head_members.size() == 4 + 4);
    EXPECT_TRUE(w.head(b) == low && w.head(top) == low && w.m_elite_head_roi_set == keys({c}));
    w.mergeUnits(low, c);
    w.mergeUnits("N/A", low);
    const QString refusals = "mergeUnits: %1 %2|Cannot merge units in different time points: %1 %2|"
                             "mergeUnits: N/A %1|Cannot merge N/A and %1: not two units";
    EXPECT_EQ(lines.take().join('|'), refusals.arg(low.c_str(), c.c_str()));
    EXPECT_TRUE(w.m_linkage_multimap.size() == 4 && w.member(low) == members && w.head(c) == c);
}

// Of two planes each; one lies in the corner, where a unit's key is the key of its time point.
TEST(units, made_again_what_is_the_same_stays_with_all_that_is_known_of_it)
{
    OpenCuration w;
    for (const int t : {0, 1})
        for (const int x : {0, 20, 24})
            for (const int z : {0, 1})
                put_roi(w, {x, 0, z, t}, 4, 4);
    const making anew{.spares = spared::nothing};
    const auto make_all = [&](const making& how) {
        for (const int t : {0, 1})
            w.make_units(t, how);
    };
    make_all(anew);
    ASSERT_EQ(w.m_head_members.size(), 12U);
    const std::string corner = "000000000000", left = "000000020000", right = "000000024000";
    ASSERT_TRUE(w.call(left, "AB"));
    w.set_dismissed({"dead_end", left, right}, true);
    for (const int x : {20, 24})
        w.link(keygen({x, 0, 0, 0}), keygen({x, 0, 0, 1}));
    const auto [state, notes] = std::pair(state_of(w), w.notes());
    EXPECT_TRUE(w.units_after_making(0, anew)->gone.empty());
    make_all(anew);
    EXPECT_TRUE(state_of(w) == state && w.notes() == notes);

    // What a person has only named is spared, what is otherwise goes with its links.
    w.mergeUnits(corner, right);
    const auto after = w.units_after_making(0, {.spares = spared::touched});
    EXPECT_TRUE(after && after->number == 3 && after->gone == keys({corner}));
    EXPECT_EQ(w.links_of(after->gone, {}, 1), 1U);
    w.mergeUnits(keygen({0, 0, 0, 1}), keygen({20, 0, 0, 1}));
    make_all({.spares = spared::touched});
    EXPECT_TRUE(w.m_head_members.size() == 12 && w.m_linkage_multimap.empty());
    EXPECT_TRUE(w.notes().contains("CALLED " + left + " AB") &&
                w.notes().contains("DISMISSED dead_end " + left))
        << "the other unit of a dismissal has gone";
    EXPECT_TRUE(broken_state_rule(w) == nullptr);
}

TEST(units, false_positives_are_not_linked_by_the_nearest)
{
    OpenCuration w;
    for (const int t : {0, 1})
        for (const int z : {20, 21})
            put_roi(w, {30, 30, z, t}, 9, 9);
    w.m_removed_roi_set.insert(keygen({30, 30, 20, 0}));
    const auto links_of_all = [&] {
        w.make_units(0, making());
        w.make_units(1, making());
        (void)link_making(w, {.spares = spared::nothing}).step(1);
        return w.m_linkage_multimap.size();
    };
    EXPECT_EQ(links_of_all(), 1U);
    w.m_removed_roi_set.insert(keygen({30, 30, 21, 0}));
    EXPECT_EQ(links_of_all(), 0U);
}
