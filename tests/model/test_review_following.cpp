// The list of findings, and the tree, follow the curation: they are what they would be, made anew.
#include "../support/reviewed_recording.h"
#include "following_tree.h"
#include "keygen.h"

#include <gtest/gtest.h>

#include <random>

namespace {

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
            (void)_all.accept_all_like(f, _all.ranked());
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

}    // namespace
