// The review of a whole recording: the list that follows the curation, and what a person decides.
#include "../support/curation_probe.h"
#include "../support/temp_folder.h"
#include "../support/units.h"
#include "demo_files.h"
#include "demo_presets.h"
#include "edit_scope.h"
#include "following_tree.h"
#include "keygen.h"
#include "link_making.h"
#include "review.h"

#include "ORV_outline.h"

#include <gtest/gtest.h>

#include <iostream>
#include <random>

namespace {

std::unique_ptr<roidb_plus> small_demo(std::uint64_t seed)
{
    demo_options o;
    (void)apply_preset("packed", o);
    o.seed = seed;
    o.time_points = 4;
    o.planes = 20;
    o.nuclei = 10;
    o.width = o.height = 110;
    o.joined_rate = 0.1;
    o.false_rate = 0.1;
    o.missing_rate = 0.08;
    auto rois = std::make_unique<roidb_plus>(o.name);
    for (const demo_detection& d : make_recording(o).detections)
        rois->entry_plus(d.outline);
    return rois;
}

struct written_nuclei {
    std::unique_ptr<roidb_plus> m_roidb = std::make_unique<roidb_plus>("written");
    std::vector<std::vector<std::string>> units;    // their members; the first names them
};

// Blocks of very different sizes, beside each other rather than within: what lies near matters, and how large
// the others are.
constexpr std::size_t scattered_at_once = 7;

written_nuclei scattered(unsigned seed)
{
    std::mt19937 random(seed);
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    written_nuclei made;
    for (int t = 0; t < 5; ++t)
        for (int i = 0; i < static_cast<int>(scattered_at_once); ++i) {
            const int size = 2 + below(4) * below(3);
            const pos4i at(5 + 6 * i + below(6), 5 + below(20), 5 + below(2), t);
            std::vector<std::string>& members = made.units.emplace_back();
            for (int plane = size > 3 ? below(3) : 0; plane >= 0; --plane)
                members.push_back(put_roi(made, {at.x(), at.y(), at.z() + plane, t}, size, size));
        }
    return made;
}

class review_of_a_recording : public testing::Test {
protected:
    review_of_a_recording() : _cout(std::cout.rdbuf(nullptr)) {}
    ~review_of_a_recording() override { std::cout.rdbuf(_cout); }

    void open(std::uint64_t seed = 1)
    {
        model.open_rois(small_demo(seed));
        make();
        all.finish();
    }

    // The heads of its units.
    std::vector<std::string> open(written_nuclei made)
    {
        model.open_rois(std::move(made.m_roidb));
        std::vector<std::string> heads;
        for (const auto& members : made.units)
            heads.push_back(put_unit(model, members));
        return heads;
    }

    void open_scattered(unsigned seed)
    {
        const auto units = open(scattered(seed));
        for (std::size_t i = scattered_at_once; i < units.size(); ++i)
            if ((i * seed) % 4 > 0)
                model.link(units[i], units[i - scattered_at_once]);
        all.finish();
    }

    void make()
    {
        const EditScope step(model, "Make");
        for (int t = 0; t <= model.max_time_point(); ++t)
            model.make_units(t, making{.spares = spared::nothing});
        link_making links(model, making{.spares = spared::nothing});
        for (int t = 1; t <= model.max_time_point(); ++t)
            links.step(t);
    }

    // The first listed finding with this proposal.
    [[nodiscard]] std::optional<finding> first(proposal_kind proposal)
    {
        for (const finding* const f : all.ranked())
            if (f->proposal == proposal)
                return *f;
        return std::nullopt;
    }

    [[nodiscard]] long long pixels_at(int t) const
    {
        long long pixels = 0;
        for (const auto& [key, r] : model.rois().db)
            pixels += r.t() == t ? enclosed_pixels(r.outline()) : 0;
        return pixels;
    }

    CurationProbe model;
    review all{model};

private:
    std::streambuf* _cout;
};

// What the list tells, entry by entry.
std::vector<finding> copied(review& r)
{
    std::vector<finding> found;
    for (const finding* const f : r.ranked())
        for (const finding& g : r.all_of(f->unit))
            found.push_back(g);
    return found;
}

class editor {
public:
    editor(CurationProbe& model, review& all, unsigned seed) : _model(model), _all(all), _random(seed) {}

    void edit()
    {
        const std::string a = any(_model.m_head_members);
        const std::string b = any(_model.m_head_members);
        const std::string r = any(_model.m_roidb->db);
        switch (pick(17)) {
        case 0:
            return _model.link(a, b);
        case 1:
            return _model.m_linkage_multimap.empty() ? void() : _model.release_parents(a);
        case 2:
            return pick(3) == 0 ? _model.mergeUnits(a, near(a)) : _model.release_parents(a);
        case 3:
            return _model.toggle_false_positive(r);
        case 4:
            return _model.toggle_elite(a);
        case 5:
            return _model.set_reviewed(a, pick(2) == 0);
        case 6:
            _model.set_false_positives({r}, true);
            return _model.drop_false_positives();
        case 7:
            return _model.make_units(static_cast<int>(pick(4)), making{.spares = spared::touched});
        case 8:
            return pick(8) == 0 ? _model.set_info({.scale = {0.1, 0.1 * static_cast<double>(1 + pick(9))}})
                                : void();
        case 9:
            return (void)_all.acknowledge_gap(a, b);
        case 10:
            return (void)_all.accept(_all.cut_by_hand(a));
        case 11:
        case 12:
            return decide();
        case 13:
            return pick(2) == 0 ? (void)_model.call(a, pick(3) == 0 ? "" : "AB")
                                : decide_of(proposal_kind::link);
        case 14:
            return (void)_model.work.redo();
        default:
            return (void)_model.work.undo();
        }
    }

private:
    std::size_t pick(std::size_t n) { return n > 0 ? _random() % n : 0; }

    template <class Keys>
    std::string any(const Keys& keys)
    {
        return keys.empty() ? "" : std::next(keys.begin(), static_cast<long>(pick(keys.size())))->first;
    }

    std::string near(const std::string& unit)
    {
        const std::set<std::string> units =
            unit.empty() ? std::set<std::string>() : _model.units(decode(unit).t());
        return units.empty() ? "" : *std::next(units.begin(), static_cast<long>(pick(units.size())));
    }

    void decide_of(proposal_kind proposal)
    {
        for (const finding* const f : _all.ranked())
            if (f->proposal == proposal && pick(3) == 0)
                return (void)_all.accept(finding(*f));
    }

    void decide()
    {
        if (_all.ranked().empty())
            return;
        const finding f = *_all.ranked()[pick(_all.ranked().size())];
        if (pick(3) == 0)
            _all.dismiss(f);
        else if (pick(8) == 0)
            (void)_all.accept_all_like(f);
        else
            (void)_all.accept(f, pick(4) == 0 ? 2.0 : 0.0);
    }

    CurationProbe& _model;
    review& _all;
    std::mt19937 _random;
};

TEST_F(review_of_a_recording, follows_every_edit_undo_and_redo_to_the_entry)
{
    constexpr int edits_of_a_seed = 100;
    int listed = 0;
    for (unsigned seed = 1; seed <= 90; ++seed) {
        seed % 3 == 0 ? open(seed) : open_scattered(seed);
        editor e(model, all, seed);
        following_tree tree(model);
        for (int i = 0; i < edits_of_a_seed; ++i) {
            for (int slices = i % 16; slices > 0 && tree.advance(0); --slices)
                continue;    // the edit comes in the middle
            e.edit();
            all.finish();
            tree.finish();
            ASSERT_EQ(tree.tree(), make_tree(model, "")) << "seed " << seed << " edit " << i;
            review anew(model);
            anew.finish();
            ASSERT_EQ(copied(all), copied(anew)) << "seed " << seed << " edit " << i;
            ASSERT_EQ(all.counts().units, anew.counts().units);
            ASSERT_EQ(all.counts().reviewed, anew.counts().reviewed);
            listed += !all.ranked().empty();
        }
    }
    EXPECT_GT(listed, 2000) << "there was something to compare";
}

struct block {
    int t, x, size, planes;
    int lowest = 5;
    int further_x = 0;    // of one more ROI on the next plane, not 0
};

// Where nothing but this leads from what is changed to the unit whose finding is another then.
TEST_F(review_of_a_recording, follows_what_a_finding_looks_at_from_afar)
{
    const struct {
        const char* why;
        std::vector<block> blocks;
        std::vector<std::pair<std::size_t, std::size_t>> links;    // parent, child
        std::size_t changed;                                       // loses its last ROI
        std::size_t looking;
    } cases[] = {
        {"a sister's place", {{0, 40, 12, 3}, {1, 36, 6, 1, 5, 90}, {1, 50, 6, 2}}, {{0, 1}}, 1, 2},
        {"the other half of a nucleus", {{0, 40, 10, 4}, {1, 40, 10, 2}, {1, 40, 10, 2, 7}}, {}, 2, 1},
        {"the median volume, less one unit",
         {{0, 10, 2, 1}, {1, 10, 2, 1}, {0, 40, 3, 1}, {0, 70, 10, 3}},
         {{0, 1}},
         2,
         0},
    };
    for (const auto& c : cases) {
        written_nuclei made;
        for (const block& b : c.blocks) {
            std::vector<std::string>& members = made.units.emplace_back();
            for (int plane = 0; plane < b.planes; ++plane)
                members.push_back(put_roi(made, {b.x, 40, b.lowest + plane, b.t}, b.size, b.size));
            if (b.further_x > 0)
                members.push_back(put_roi(made, {b.further_x, 40, b.lowest + b.planes, b.t}, b.size, b.size));
        }
        const std::string goes = made.units[c.changed].back();
        const auto units = open(std::move(made));
        for (const auto& [parent, child] : c.links)
            model.link(units[child], units[parent]);
        all.finish();
        const auto before = all.all_of(units[c.looking]);
        model.set_false_positives({goes}, true);
        model.drop_false_positives();
        EXPECT_NE(all.all_of(units[c.looking]), before) << c.why;
        review anew(model);
        anew.finish();
        EXPECT_EQ(copied(all), copied(anew)) << c.why;
        ASSERT_TRUE(model.work.undo() && model.work.undo());
        EXPECT_EQ(all.all_of(units[c.looking]), before) << c.why << ", and back";
    }
}

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
        if (!cut || all.all_like(*cut).number < 2 || cut->rule != finding_rule::inner_cut)
            continue;
        EXPECT_TRUE(all.all_like(*cut).is_offered());
        const std::size_t number = all.all_like(*cut).number;
        const auto before = state_of(model);
        const review_summary summary = all.accept_all_like(*cut);
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
