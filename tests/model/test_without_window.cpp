// A day's work in a program that has no window and needs no display: it links the model alone.
#include "../support/kept_history.h"
#include "lineage_file.h"
#include "link_making.h"

#include <QCoreApplication>

namespace {

void make_all(CurationProbe& c)
{
    for (int t = c.min_time_point(); t <= c.max_time_point(); ++t)
        c.make_units(t, {});
    link_making links(c, {});
    for (int t = c.min_time_point() + 1; t <= c.max_time_point(); ++t)
        ASSERT_TRUE(links.step(t));
}

// A unit with a parent and two neighbours of its time point.
struct Scene {
    std::string unit, parent, neighbour;
};

Scene any_scene(CurationProbe& c)
{
    for (const auto& [child, parent] : c.links())
        for (const std::string& other : c.units(decode(parent).t()))
            if (other != parent && c.member(child).size() > 2)
                return {child, parent, other};
    return {};
}

}    // namespace

TEST_F(History, a_recording_is_corrected_and_saved_without_a_window)
{
    int count = 1;
    char name[] = "without_window";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(count, arguments);
    CurationProbe c;
    ASSERT_TRUE(c.work.open(file));
    const state fresh = state_of(c);
    make_all(c);
    const auto [unit, parent, neighbour] = any_scene(c);
    ASSERT_FALSE(unit.empty());

    const std::size_t units = c.units(decode(parent).t()).size();
    c.mergeUnits(parent, neighbour);
    EXPECT_EQ(c.units(decode(parent).t()).size(), units - 1);
    EXPECT_TRUE(c.work.undo());
    EXPECT_EQ(c.units(decode(parent).t()).size(), units);

    c.link(neighbour, unit);
    ASSERT_EQ(c.parents(unit), (keys{parent, neighbour}));
    const pos3d at = c.g(unit);
    const std::size_t before = c.units(decode(unit).t()).size();
    c.manualSplit(unit, {parent, neighbour}, static_cast<int>(at.x()), static_cast<int>(at.y()),
                  static_cast<int>(at.z()));
    EXPECT_EQ(c.units(decode(unit).t()).size(), before + 1) << quiet.out.str();

    const std::string target = folder.path("out.lineage");
    ASSERT_TRUE(write_lineage(target, c.dataset(), c.current_lineage()));
    const std::optional<lineage> written = read_lineage(target, c.dataset(), c.rois());
    ASSERT_TRUE(written);
    EXPECT_EQ(written->head_members, c.head_members());
    EXPECT_EQ(written->links, c.links());
    while (c.work.undo())
        ;
    EXPECT_EQ(state_of(c), fresh);
}
