// Names of nuclei: typed, inherited, found again, and undone.
#include "../support/captured_lines.h"
#include "../support/open_curation.h"
#include "unit_names.h"

#include <gtest/gtest.h>

#include <random>

namespace {

std::string unit_at(CurationProbe& w, int t, int x) { return put_unit(w, {put_roi(w, {x, 30, 5, t})}); }

}    // namespace

TEST(unit_names, daughters_inherit_a_name_with_a_letter_each)
{
    OpenCuration w;
    const std::string root = unit_at(w, 0, 50), mother = unit_at(w, 1, 50);
    const std::string left = unit_at(w, 2, 40), right = unit_at(w, 2, 60), other = unit_at(w, 1, 20);
    const std::string on = unit_at(w, 3, 40), late = unit_at(w, 5, 60), lone = unit_at(w, 3, 90);
    for (const auto& [child, parent] : {std::pair(mother, root), {right, mother}, {left, mother}, {on, left}})
        w.link(child, parent);
    w.set_gap(right, late, true);
    EXPECT_EQ(name_of(w, left), "");
    ASSERT_TRUE(w.call(root, "AB"));

    const struct {
        std::string unit, name;
        const char* why;
    } cases[] = {
        {mother, "AB", "an only child"}, {left, "ABa", "the daughter with the smaller key"},
        {right, "ABb", "the other one"}, {on, "ABa", "no division, no letter"},
        {late, "ABb", "behind a gap"},   {other, "", "of another lineage"},
        {lone, "", "without any link"},  {"N/A", "", "no unit"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(name_of(w, c.unit), c.name) << c.why;

    w.link(left, other);    // a second parent, with a smaller key, has no name to give
    EXPECT_TRUE(name_of(w, left).empty() && name_of(w, right) == "AB");
    w.release_child(other, left);
    EXPECT_TRUE(w.call(left, "P1"));
    EXPECT_TRUE(name_of(w, on) == "P1" && name_of(w, right) == "ABb" && own_name(w, on).empty());

    EXPECT_EQ(find_unit(w, right), right);
    EXPECT_EQ(find_unit(w, std::to_string(w.ID(late))), late);
    EXPECT_EQ(find_unit(w, "P1"), left) << "the earliest of those that are called so";
    EXPECT_FALSE(find_unit(w, "P2") || find_unit(w, "999999999999") || find_unit(w, ""));
}

TEST(unit_names, naming_is_a_step_and_refuses_what_a_file_cannot_keep)
{
    OpenCuration w;
    const std::string unit = unit_at(w, 0, 10);
    EXPECT_TRUE(w.call(unit, "AB") && w.call(unit, "AB") && w.call(unit, "P1 (left)"));
    EXPECT_EQ(w.notes(), unit_notes({"CALLED " + unit + " P1 (left)"}));
    CapturedLines err(std::cerr);
    for (const char* bad : {" AB", "AB ", "A\nB"})
        EXPECT_TRUE(!w.call(unit, bad) && err.take().size() == 1) << bad;
    EXPECT_TRUE(!w.call("000000000000", "AB") && err.take().size() == 1);
    EXPECT_TRUE(w.call(unit, "") && w.notes().empty());
    for (const char* name : {"P1 (left)", "AB", ""}) {
        w.work.undo();
        EXPECT_EQ(own_name(w, unit), name);
    }
}

TEST(unit_names, the_names_of_all_are_those_of_each)
{
    OpenCuration w;
    std::mt19937 random(7);
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    std::vector<std::string> units;
    for (int t = 0; t < 8; ++t)
        for (int x = 0; x < 6; ++x)
            units.push_back(unit_at(w, t, 10 + 10 * x));
    for (std::size_t i = 6; i < units.size(); ++i)
        if (below(5) > 0)
            for (int n = 1 + below(2); n > 0; --n)
                w.link(units[i], units[i / 6 * 6 - 6 + static_cast<std::size_t>(below(6))]);
    for (int i = 0; i < 6; ++i) {
        w.set_gap(units[static_cast<std::size_t>(below(18))], units[static_cast<std::size_t>(30 + below(18))],
                  true);
        w.call(units[static_cast<std::size_t>(below(24))], "N" + std::to_string(i));
    }
    const auto all = names_of_all(w);
    EXPECT_GT(all.size(), 20U);
    for (const std::string& unit : units) {
        const auto found = all.find(unit);
        EXPECT_EQ(found == all.end() ? "" : found->second, name_of(w, unit)) << unit;
    }
}
