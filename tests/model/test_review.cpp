// The review of a whole recording: what a person decides, and making the list.
#include "../support/reviewed_recording.h"
#include "../support/temp_folder.h"
#include "keygen.h"

#include <gtest/gtest.h>

namespace {

TEST_F(review_of_a_recording, takes_each_accepted_proposal_as_one_step_that_loses_no_roi)
{
    std::map<proposal_kind, int> accepted;
    for (unsigned seed = 1; seed <= 12; ++seed) {
        open(seed);
        while (!all.ranked().empty()) {
            const finding f = *all.ranked().front();
            const auto before = state_of(model);
            const std::size_t open = all.counts().open;
            const long long pixels = pixels_at(f.t);
            if (!all.accept(f)) {
                EXPECT_EQ(state_of(model), before) << proposal_of(f);
                all.dismiss(f);
                continue;
            }
            ++accepted[f.proposal];
            EXPECT_GE(pixels_at(f.t), pixels) << proposal_of(f);
            EXPECT_NE(all.of(f.unit) ? *all.of(f.unit) : finding(), f) << proposal_of(f);
            ASSERT_TRUE(model.work.undo());
            EXPECT_EQ(state_of(model), before) << proposal_of(f);
            EXPECT_EQ(all.counts().open, open);
            ASSERT_TRUE(model.work.redo());
        }
        EXPECT_EQ(all.counts().open, 0U);
    }
    for (const auto proposal :
         {proposal_kind::link, proposal_kind::merge, proposal_kind::cut, proposal_kind::none})
        EXPECT_GT(accepted[proposal], 0) << word_of(proposal);
}

TEST_F(review_of_a_recording, keeps_a_dismissal_as_long_as_the_unit_has_its_rois)
{
    open(2);
    const auto f = first(proposal_kind::none);
    ASSERT_TRUE(f);
    all.dismiss(*f);
    const auto is_open = [&] { return all.units_with(f->kind).contains(f->unit); };
    EXPECT_FALSE(is_open());
    EXPECT_EQ(all.counts().total, all.counts().open + 1);
    const lineage saved = model.current_lineage();
    ASSERT_EQ(saved.dismissed.size(), 1U);
    model.replace_lineage(saved);
    all.finish();
    EXPECT_FALSE(is_open()) << "read again";
    all.take_back(*f);
    EXPECT_TRUE(is_open());
    ASSERT_TRUE(model.work.undo());
    EXPECT_FALSE(is_open());

    std::set<std::string> others = model.units(f->t);
    others.erase(f->unit);
    const std::string other = *others.begin();
    model.mergeUnits(f->unit, other);
    EXPECT_TRUE(model.current_lineage().dismissed.empty()) << "it has other ROIs now";
    ASSERT_TRUE(model.work.undo());
    EXPECT_EQ(model.current_lineage().dismissed.size(), 1U);
    model.set_false_positives(model.member(f->unit), true);
    model.drop_false_positives();
    EXPECT_TRUE(model.current_lineage().dismissed.empty()) << "it is gone";
}

TEST_F(review_of_a_recording, comes_back_with_work_that_is_taken_up)
{
    temp_folder folder;
    const std::string file = folder.path("small.roi");
    ASSERT_TRUE(small_demo(2)->write(file));
    std::vector<finding> left;
    {
        CurationProbe crashed;
        ASSERT_TRUE(crashed.work.open(file));
        review r(crashed);
        for (int t = 0; t <= crashed.max_time_point(); ++t)
            crashed.make_units(t, making());
        r.finish();
        for (int i = 0; i < 3; ++i)
            r.dismiss(*r.ranked().front());
        crashed.set_reviewed(*crashed.units(1).begin(), true);
        left = copied(r);
    }
    ASSERT_TRUE(model.work.open(file));
    all.finish();
    EXPECT_NE(copied(all), left);
    ASSERT_TRUE(model.work.take_up());
    all.finish();
    EXPECT_EQ(copied(all), left);
    EXPECT_EQ(all.counts().reviewed, 1U);
}

TEST_F(review_of_a_recording, has_looked_at_what_a_person_decided_until_a_machine_changes_it)
{
    open(3);
    const std::string a = *model.units(1).begin();
    const std::string b = *model.units(2).rbegin();
    const auto is_reviewed = [&](const std::string& unit) {
        return model.current_lineage().reviewed.contains(unit);
    };
    model.note_edited(a);
    all.set_reviewed(b, true);
    EXPECT_TRUE(is_reviewed(a) && is_reviewed(b));
    EXPECT_EQ(all.counts().reviewed, 2U);
    model.link(a, b);
    EXPECT_TRUE(is_reviewed(a) && is_reviewed(b)) << "by hand";
    model.make_units(1, making{.spares = spared::what_is});
    EXPECT_TRUE(is_reviewed(a)) << "not touched";
    model.drop_links_into(2);
    link_making links(model, making{.spares = spared::what_is});
    links.step(2);
    EXPECT_FALSE(is_reviewed(b) && !model.parents(b).empty()) << "linked by a machine";
    model.make_units(1, making{.spares = spared::nothing});
    EXPECT_FALSE(is_reviewed(a));
}

TEST_F(review_of_a_recording, dismisses_both_ends_of_a_gap)
{
    open(4);
    std::string earlier, later;
    for (const std::string& end : all.units_with(finding_kind::dead_end))
        for (const std::string& begin : all.units_with(finding_kind::unlinked))
            if (decode(begin).t() >= decode(end).t() + 2)
                std::tie(earlier, later) = std::tie(end, begin);
    if (earlier.empty()) {    // make one
        earlier = *model.units(0).begin();
        later = *model.units(3).begin();
        for (const std::string& child : model.children(earlier))
            model.release_child(earlier, child);
        model.release_parents(later);
    }
    EXPECT_FALSE(all.acknowledge_gap(later, earlier));
    ASSERT_TRUE(all.acknowledge_gap(earlier, later));
    EXPECT_FALSE(all.units_with(finding_kind::dead_end).contains(earlier));
    EXPECT_FALSE(all.units_with(finding_kind::unlinked).contains(later));
    EXPECT_EQ(model.current_lineage().gaps.size(), 1U);
    ASSERT_TRUE(model.work.undo());
    EXPECT_TRUE(all.units_with(finding_kind::dead_end).contains(earlier));
}

TEST_F(review_of_a_recording, accepts_all_of_a_rule_in_one_step)
{
    for (unsigned seed = 1; seed <= 30; ++seed) {
        open(seed);
        const auto cut = first(proposal_kind::cut);
        if (!cut || all.all_like(*cut, all.ranked()).number < 2 || cut->rule != finding_rule::inner_cut)
            continue;
        EXPECT_TRUE(all.all_like(*cut, all.ranked()).is_offered());
        const std::size_t number = all.all_like(*cut, all.ranked()).number;
        const auto before = state_of(model);
        const review_summary summary = all.accept_all_like(*cut, all.ranked());
        EXPECT_EQ(summary.accepted + summary.left, number);
        EXPECT_GT(summary.accepted, 1U);
        ASSERT_TRUE(model.work.undo());
        EXPECT_EQ(state_of(model), before);
        return;
    }
    FAIL() << "no recording with two cuts";
}

TEST_F(review_of_a_recording, is_made_in_slices_and_empty_until_then)
{
    open(5);
    const std::vector<finding> whole = copied(all);
    review slowly(model);
    int slices = 1;
    for (; slowly.advance(0); ++slices) {
        EXPECT_TRUE(slowly.ranked().empty());
        EXPECT_LT(slowly.progress(), 1);
    }
    EXPECT_GT(slices, 4);
    EXPECT_EQ(copied(slowly), whole);
    model.close_rois();
    EXPECT_FALSE(slowly.advance(0));
    EXPECT_TRUE(slowly.ranked().empty() && all.ranked().empty());
}

}    // namespace
