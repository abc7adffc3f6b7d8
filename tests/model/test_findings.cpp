// The rules for findings, on units made of rectangles; a pixel and a focal plane are 1 um.
#include "../support/curation_probe.h"
#include "../support/rectangles.h"
#include "finding_rules.h"
#include "keygen.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

constexpr int all_planes = -1;

// A stack of rectangles of one time point, one on each plane from z on.
struct stack {
    int t, x, y, z;
    int width = 10, height = 10, planes = 8;
    int missing = all_planes;    // the plane that is
    int shift_above = 0;    // pixels to the right, from the missing plane on; of the upper half if none is
};

using links = std::vector<std::pair<std::size_t, std::size_t>>;
using texts = std::vector<std::string>;

class findings : public testing::Test {
protected:
    void add(const std::vector<stack>& stacks, const links& linked)
    {
        auto rois = std::make_unique<roidb_plus>("rules");
        lineage units;
        _heads.clear();
        for (const stack& s : stacks) {
            std::string& head = _heads.emplace_back();
            for (int z = s.z; z < s.z + s.planes; ++z) {
                const int middle = s.missing == all_planes ? s.z + s.planes / 2 : s.missing;
                const int x = s.x + (z >= middle ? s.shift_above : 0);
                const roi r = rectangle_roi({x, s.y, z, s.width, s.height}, s.t);
                if (z == s.missing)
                    continue;
                head = head.empty() ? keygen(r) : head;
                rois->entry_plus(r);
                units.head_members.emplace(head, keygen(r));
            }
        }
        for (const auto& [child, parent] : linked)
            units.links.emplace(_heads[child], _heads[parent]);
        model.open_rois(std::move(rois));
        model.take_info({.scale = {1, 1}});
        model.replace_lineage(units);
    }

    // "two_nuclei cut 0 1": kind, proposal, and the numbers of the others; the best first.
    [[nodiscard]] texts of(std::size_t unit)
    {
        unit_scene scene(model);
        scene.begin();
        while (scene.load_next()) {
        }
        texts found;
        for (const finding& f : findings_of(scene, *scene.find(_heads[unit]))) {
            std::string& text = found.emplace_back(std::string(word_of(f.kind)) + ' ' + word_of(f.proposal));
            for (const std::string& other : f.with)
                text += ' ' + std::to_string(std::ranges::find(_heads, other) - _heads.begin());
        }
        return found;
    }

    [[nodiscard]] const std::string& head(std::size_t unit) const { return _heads[unit]; }

    CurationProbe model;

private:
    std::vector<std::string> _heads;
};

TEST_F(findings, are_of_their_kinds_with_one_proposal_each)
{
    const struct {
        const char* why;
        std::vector<stack> stacks;
        links linked;      // child, parent
        texts expected;    // of the last unit
    } cases[] = {
        {"the nearest free unit", {{0, 5, 5, 0}, {0, 30, 5, 0}, {1, 8, 5, 0}}, {}, {"unlinked link 0"}},
        {"none free", {{0, 5, 5, 0}, {1, 5, 5, 0}, {1, 5, 18, 0}}, {{1, 0}}, {"unlinked none"}},
        {"opposite an only child",
         {{0, 12, 5, 0}, {1, 5, 5, 0}, {1, 19, 5, 0}},
         {{1, 0}},
         {"unlinked link 0"}},
        {"no child", {{1, 5, 5, 0}, {0, 5, 60, 0}, {0, 6, 5, 0}}, {}, {"dead_end link 0"}},
        {"two of the time point before lie in it",
         {{0, 5, 5, 0, 10, 10, 6}, {0, 19, 5, 6, 10, 10, 6}, {1, 5, 5, 0, 10, 10, 12, all_planes, 14}},
         {{2, 0}},
         {"two_nuclei cut 0 1", "waist cut_between"}},
        {"two of the time point after",
         {{1, 5, 5, 0, 10, 10, 6}, {1, 19, 5, 6, 10, 10, 6}, {0, 5, 5, 0, 10, 10, 12, all_planes, 14}},
         {{0, 2}},
         {"two_nuclei cut 0 1", "waist cut_between"}},
        {"they are its daughters",
         {{1, 5, 5, 0, 10, 10, 6}, {1, 19, 5, 6, 10, 10, 6}, {0, 5, 5, 0, 10, 10, 12, all_planes, 14}},
         {{0, 2}, {1, 2}},
         {"waist cut_between"}},
        {"two parents that are none",
         {{0, 5, 5, 0}, {0, 16, 5, 0}, {1, 5, 5, 0}},
         {{2, 0}, {2, 1}},
         {"doubtful unlink 1"}},
        {"two parents that lie in it",
         {{0, 5, 5, 0, 10, 10, 6}, {0, 19, 5, 6, 10, 10, 6}, {1, 5, 5, 0, 10, 10, 12, all_planes, 14}},
         {{2, 0}, {2, 1}},
         {"doubtful cut 0 1", "two_nuclei cut 0 1", "waist cut_between"}},
        {"three children",
         {{1, 5, 5, 0}, {1, 5, 17, 0}, {1, 5, 40, 0}, {0, 5, 10, 0}},
         {{0, 3}, {1, 3}, {2, 3}},
         {"many_children unlink 2"}},
        {"a plane is missing, and it goes on beside",
         {{0, 5, 5, 0, 10, 10, 9, 4, 7}},
         {},
         {"missing_plane cut_between", "waist cut_between"}},
        {"a plane is missing, no more", {{0, 5, 5, 0, 10, 10, 9, 4, 1}}, {}, {}},
        {"narrow where it steps", {{0, 5, 5, 0, 10, 10, 8, all_planes, 5}}, {}, {"waist cut_between"}},
        {"half of what was one, above it",
         {{0, 5, 5, 0, 10, 10, 10}, {1, 5, 5, 0, 10, 10, 6}, {1, 5, 5, 7, 10, 10, 3}},
         {{1, 0}},
         {"unlinked merge 1"}},
        {"a link to far away and of another size",
         {{0, 5, 5, 0}, {1, 17, 5, 0, 5, 5, 4}},
         {{1, 0}},
         {"far_link unlink 0"}},
        {"one small ROI of two time points",
         {{0, 50, 50, 0}, {1, 50, 50, 0}, {1, 5, 5, 0, 3, 3, 1}, {0, 5, 5, 0, 3, 3, 1}},
         {{1, 0}, {2, 3}},
         {"lone_roi false_positive 2"}},
        {"one ROI alone is set aside", {{0, 50, 50, 0}, {1, 5, 5, 0, 3, 3, 1}}, {}, {}},
    };
    for (const auto& c : cases) {
        add(c.stacks, c.linked);
        EXPECT_EQ(of(c.stacks.size() - 1), c.expected) << c.why;
    }
}

TEST_F(findings, of_an_outline_that_covers_a_neighbours_gap)
{
    add({{0, 5, 5, 0, 10, 10, 4}, {0, 15, 5, 0, 10, 10, 4, 2}}, {});
    EXPECT_EQ(of(0), texts());
    const roi wide = rectangle_roi({5, 5, 2, 20, 10});
    model.m_roidb->remove(keygen(wide));
    model.m_roidb->entry_plus(wide);
    EXPECT_EQ(of(0), (texts{"joined_outline cut_outline 1"}));
}

// What a person has looked at is not to be changed; where a link is missing, one may be added.
TEST_F(findings, never_propose_to_undo_what_a_person_decided)
{
    add({{0, 5, 5, 0, 10, 10, 6}, {0, 19, 5, 6, 10, 10, 6}, {1, 5, 5, 0, 10, 10, 12, all_planes, 14}},
        {{2, 0}});
    EXPECT_EQ(of(2).front(), "two_nuclei cut 0 1");
    model.set_reviewed(head(2), true);
    EXPECT_EQ(of(2), texts());
    model.set_reviewed(head(2), false);
    model.toggle_elite(head(2));
    EXPECT_EQ(of(2), texts());

    add({{0, 5, 5, 0}, {1, 7, 5, 0}}, {});    // parted by a person, or one of them before a gap
    ASSERT_EQ(of(1).front(), "unlinked link 0");
    model.set_reviewed(head(1), true);
    EXPECT_EQ(of(1).front(), "unlinked link 0");
    model.set_reviewed(head(0), true);
    EXPECT_EQ(of(1), (texts{"unlinked none"}));
    model.set_reviewed(head(0), false);
    model.set_gap(head(0), head(1), true);
    EXPECT_EQ(of(1), (texts{"unlinked none"}));

    add({{0, 5, 5, 0}, {1, 17, 5, 0, 5, 5, 4}}, {{1, 0}});
    model.set_reviewed(head(0), true);
    EXPECT_EQ(of(1), texts()) << "nor the link to it";

    add({{0, 5, 5, 0}, {1, 8, 5, 0}}, {});
    model.set_reviewed(head(0), true);
    EXPECT_EQ(of(1), (texts{"unlinked link 0"}));
    model.set_false_positives(model.member(head(0)), true);
    EXPECT_EQ(of(1), (texts{"unlinked none"})) << "a false one is no parent";
    EXPECT_EQ(of(0), texts());
}

TEST_F(findings, offer_no_cuts_where_there_is_one_plane)
{
    add({{0, 5, 5, 0, 20, 20, 1}, {0, 25, 5, 0, 20, 20, 1}, {1, 5, 5, 0, 39, 20, 1}}, {{2, 0}});
    EXPECT_EQ(of(2), texts());
    add({{0, 5, 5, 0, 30, 20, 1}, {1, 5, 5, 0, 20, 20, 1}, {1, 25, 5, 0, 10, 20, 1}}, {{1, 0}});
    EXPECT_EQ(of(2).front(), "unlinked merge 1") << "but merges";
}

}    // namespace
