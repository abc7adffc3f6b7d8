// The review of a whole recording: the list that follows the curation, and what a person decides.
#include "../support/curation_probe.h"
#include "demo_files.h"
#include "demo_presets.h"
#include "edit_scope.h"
#include "keygen.h"
#include "review.h"

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
            return decide_of(proposal_kind::link);
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
    for (unsigned seed = 1; seed <= 50; ++seed) {
        open(seed);
        editor e(model, all, seed);
        for (int i = 0; i < edits_of_a_seed; ++i) {
            e.edit();
            all.finish();
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

}    // namespace
