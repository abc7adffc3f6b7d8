// Splitting: what is done with a suspect, and what a cut leaves behind.
#include "../support/captured_lines.h"
#include "../support/family.h"
#include "../support/open_curation.h"
#include "../support/temp_folder.h"
#include "ORV_outline.h"
#include "cutting_plane.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>

namespace {

using Family = FamilyIn<OpenCuration>;

// Nothing names what is not there.
bool is_consistent(CurationProbe& w)
{
    bool good = !broken_state_rule(w);
    for (const auto* marks : {&w.m_selected_roi_set, &w.m_removed_roi_set, &w.m_mouse_over_roi_set,
                              &w.m_lineage_mode_roi_set, &w.m_split_parents})
        for (const std::string& key : *marks)
            good = good && w.m_roidb->db.contains(key);
    return good;
}

// The search for a cutting plane in its plainest form: looks at every pixel afresh for each plane.
// REQUIRES: some plane with this normal divides the unit
pos3d literal_search(CurationProbe& w, const std::string& doubt, pos3d E_normal, pos3d E_pos, int width)
{
    const pos3d nom = E_normal / E_normal.size();
    unsigned int min_size = 65535;
    pos3d min_pos = E_pos;
    for (int step = -width; step <= width; ++step) {
        const pos3d point = E_pos + nom * step;
        bool plus = false;
        bool minus = false;
        unsigned int s = 0;
        for (const std::string& key : w.member(doubt)) {
            const q_roiimg* const qrimg = w.m_q_roiimgdb->qrimg(w.m_roidb->find_plus(key));
            const pos2i corner = qrimg->top_left();
            for (int j = 0; j < qrimg->height(); ++j)
                for (int i = 0; i < qrimg->width(); ++i) {
                    if (qrimg->value(i, j) == 0)
                        continue;
                    const double z = qrimg->z() * (100.0 / 21.0);
                    const double next_z = (qrimg->z() + 1) * (100.0 / 21.0);
                    const double cos1 = inner_product(pos3d(corner.x() + i, corner.y() + j, z) - point, nom);
                    const double cos2 =
                        inner_product(pos3d(corner.x() + i, corner.y() + j, next_z) - point, nom);
                    s += cos1 * cos2 < 0;
                    (cos1 < 0 ? minus : plus) = true;
                }
        }
        std::cout << "s=" << s << " (" << point << ")" << std::endl;
        if (s < min_size && plus && minus) {
            min_size = s;
            min_pos = point;
        }
    }
    const bool found = min_size < 65535;
    return found ? min_pos : literal_search(w, doubt, E_normal, (E_pos + w.E_g(doubt)) / 2, width);
}

const QString merged = "Merge units: A B|mergeUnits: A B";
const QString one_child = "Falsely grouped unit: D|p1(A): sisters: D|p2(B): sisters: D";
const QString case_3 = one_child + "|split: case 3";

// Links, elite units, what is printed, links after it.
const std::tuple<const char*, const char*, QString, const char*> suspect_table[] = {
    {"AD", "", "Doubt units: none", "AD"},
    {"AD AD BS", "", "Doubled link released: A D", "AD BS"},
    {"AD BD DC", "", merged, "AD DC"},
    {"AD BD DC", "A", merged, "AD DC"},        // cut down to none
    {"KA KB AD BD", "AK", merged, "KA AD"},    // the later one goes
    {"AD BD DC DE", "ABD", one_child, "AD BD DC DE"},
    {"AD BD BS DC", "AB", one_child + " S|split: case 1", "BD BS DC"},
    {"AD AS BD DC", "ABD", "Falsely grouped unit: D|p1(A): sisters: D S|p2(B): sisters: D|split: case 1",
     "AD AS DC"},
    {"AD BD BS FS DC", "AB", one_child + " S|split: case 1|split: case 3", "AD BM BS FS DC"},
    {"AD AS BD BS DC", "AB", "Falsely grouped unit: D|p1(A): sisters: D S|p2(B): sisters: D S|split: case 2",
     "AD BS DC"},
    {"AD AT BD BT DC", "AB",    // a tie
     "Falsely grouped unit: D|p1(A): sisters: D T|p2(B): sisters: D T|split: case 2", "BD AT DC"},
    {"KA LB AD BD", "KL", case_3, "KA LB AD BM"},
    {"AD BD FD DC", "AB", case_3, "AD BD FM DC"},    // by their sides
    {"AD BD DC DE", "AB", case_3, "AD BM DC ME"},    // the nearer to the lone half
    {"AD BD DW", "AB", case_3, "AD BM DW MW"},       // what overlaps the lone half
};

}    // namespace

// An elite one, too. Other marks stay on their planes.
TEST(split, a_manual_split_always_cuts)
{
    Family w("AD BD DC DE", "DS");
    const std::string lower = *w.member(w.at('D')).rbegin();
    w.m_selected_roi_set = w.m_mouse_over_roi_set = {lower};
    w.m_removed_roi_set = w.m_lineage_mode_roi_set = {w.at('D')};
    CapturedLines out(std::cout);
    w.manualSplit(w.at('D'), {w.at('A'), w.at('B'), w.at('F')}, 21, 13, 20);
    QStringList lines = out.take();
    EXPECT_EQ(lines.removeIf([](const QString& line) { return line.startsWith("s="); }), 41);
    const QString rois = QString("|roi_plus: 11 10 %1 2 %2|roi_minus: 32 10 %1 2 %3")
                             .arg("%1", outline_of_box(21, 8), outline_of_box(1, 8));
    EXPECT_EQ(w.named(lines.join('|')), "manual split mode:|    doubt: D  parents: A B F| E_normal: (-1,0,0)|"
                                        "      E_m: (21,13,95.2381)" +
                                            rois.arg(20) + rois.arg(21));
    EXPECT_EQ(w.links(), "AD BM DC ME");
    EXPECT_EQ(w.m_elite_head_roi_set, keys{w.at('S')});
    EXPECT_EQ(w.m_selected_roi_set, (keys{lower, keygen({32, 10, 21, 2})}));
    EXPECT_EQ(w.m_removed_roi_set, (keys{w.at('D'), w.at('M')}));
    EXPECT_TRUE(w.m_mouse_over_roi_set.empty() && is_consistent(w));
    EXPECT_EQ(w.m_lineage_mode_roi_set, keys{w.at('D')});    // the half that keeps its name
}

// What cannot stand for the halves, too; a member without pixels is passed over.
TEST(split, a_split_appends_and_prints_whatever_roimaker_answers)
{
    Family w("AD BD DC DE", "");
    const std::string empty = keygen({12, 10, 19, 2});
    w.m_roidb->entry_plus({12, 10, 19, 2, "x"});
    w.m_head_members.emplace(w.at('D'), empty);
    w.m_members_head.emplace(empty, w.at('D'));
    const temp_folder folder;
    answer_for_roimaker(folder, "1\\n\\nr 1 0 2301");
    CapturedLines out(std::cout);
    std::list<roi> plus, minus;
    w.splitROI(w.at('D'), {-1, 0, 0}, {21, 13, 0}, plus, minus);
    qunsetenv("ORVBROWSER_ROIMAKER");
    EXPECT_EQ(out.take().join('|'), "roi_plus: 12 10 20 2 2301|roi_minus: 12 10 20 2 2301|"
                                    "roi_plus: 12 10 21 2 2301|roi_minus: 12 10 21 2 2301");
    EXPECT_TRUE(plus.size() == 2 && minus.size() == 2);
    const std::string beside = put_roi(w, {13, 12, 20, 2}, 22, 8);    // another one on that plane
    w.m_head_members.emplace(w.at('D'), beside);
    w.m_members_head.emplace(beside, w.at('D'));
    w.manualSplit(w.at('D'), {w.at('A'), w.at('B')}, 21, 13, 20);
    EXPECT_EQ(w.units(2).size(), 5U);
    EXPECT_TRUE(!w.m_roidb->db.contains(empty) && is_consistent(w));
}

// From near the unit, and from so far away that the start has to move.
TEST(split, the_search_is_exact_and_the_cut_loses_no_pixel)
{
    std::mt19937 random(5);
    const auto up_to = [&random](int n) { return static_cast<int>(random() % n); };
    for (int i = 0; i < 20; ++i) {
        OpenCuration w;
        std::vector<std::string> members;
        for (int z = 20; z < 24; ++z)
            members.push_back(
                put_roi(w, {110 + up_to(20), 10 + up_to(20), z, 2}, 1 + up_to(40), 1 + up_to(40)));
        const std::string unit = put_unit(w, members);
        keys parents;
        while (parents.size() < 2)
            parents.insert(put_unit(w, {put_roi(w, {100 + up_to(70), up_to(70), 10 + up_to(20), 1})}));
        const pos3d normal = w.E_g(*parents.begin()) - w.E_g(*parents.rbegin());
        const pos3d start(130 + up_to(20), i % 2 ? 40 : 400, 21 * focal_plane_step);
        CapturedLines out(std::cout);
        const pos3d expected = literal_search(w, unit, normal, start, 20);
        const QStringList lines = out.take();
        const pos3d found = w.search_cutting_position(unit, normal, start, 20);
        EXPECT_EQ(out.take(), lines);
        EXPECT_TRUE(found.x() == expected.x() && found.y() == expected.y() && found.z() == expected.z());

        const auto pixels = [&w] {
            return std::accumulate(w.m_roidb->db.lower_bound(time_key(2)),
                                   w.m_roidb->db.lower_bound(time_key(3)), 0LL,
                                   [](long long sum, const auto& entry) {
                                       return sum + enclosed_pixels(entry.second.outline());
                                   });
        };
        const long long before = pixels();
        w.manualSplit(unit, parents, 140, 40, 21);
        EXPECT_EQ(w.units(2).size(), 2u);
        EXPECT_EQ(pixels(), before);
        EXPECT_TRUE(is_consistent(w));
    }
}

TEST(split, a_manual_split_needs_a_unit_and_two_parents)
{
    Family w("", "");
    const auto before = state_of(w);
    const std::string a = w.at('A'), b = w.at('B'), d = w.at('D'), none = w.at('M');
    for (const auto& [doubt, parents] :
         {std::pair(d, keys{a}), {d, {}}, {none, {a, b}}, {d, {a, none}}, {"N/A", {a, b}}}) {
        CapturedLines out(std::cout);
        w.manualSplit(doubt, parents, 21, 13, 20);
        EXPECT_TRUE(out.take().last().endsWith(": not a unit and two parent units") && state_of(w) == before);
    }
}

TEST(split, a_suspect_is_merged_repaired_or_cut)
{
    for (const auto& [links, elite, printed, links_after] : suspect_table) {
        Family w(links, elite);
        CapturedLines out(std::cout);
        (void)w.split_first_suspect();
        QStringList lines = out.take();
        lines.removeIf([](const QString& line) { return line.startsWith("s=") || line.startsWith("roi_"); });
        EXPECT_EQ(w.named(lines.join('|')), printed);
        EXPECT_EQ(w.links(), links_after);
        EXPECT_TRUE(is_consistent(w));
    }
}
