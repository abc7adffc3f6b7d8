// Scores of lineages whose mistakes are known, in a recording of seven nuclei and one false detection.
#include "../support/captured_lines.h"
#include "../support/rectangles.h"
#include "../support/temp_folder.h"
#include "keygen.h"
#include "scoring.h"

#include <gtest/gtest.h>

namespace {

// ROIs by name; all have as many pixels. 1 divides into 3 and 4 between t 1 and t 2.
struct named_roi {
    char name;
    int t, z, x;
    int label;
};
constexpr named_roi all_rois[] = {
    {'a', 0, 0, 0, 1},  {'A', 0, 1, 0, 1}, {'b', 0, 0, 20, 2}, {'c', 1, 0, 0, 1},  {'d', 1, 0, 20, 2},
    {'f', 1, 0, 40, 0}, {'g', 2, 0, 0, 3}, {'G', 2, 1, 0, 3},  {'h', 2, 0, 10, 4}, {'i', 2, 0, 20, 2},
};
constexpr const char* tracks = "TRACK 1 0 1 0\nTRACK 2 0 2 0\nTRACK 3 2 2 1\nTRACK 4 2 2 1\n";

std::string key_of(char name)
{
    const auto found = std::ranges::find(all_rois, name, &named_roi::name);
    return keygen({found->x, 5, found->z, found->t});
}

roidb recording()
{
    roidb rois("d");
    for (const named_roi& r : all_rois)
        rois.entry(rectangle_roi({r.x, 5, r.z, 6, 4}, r.t));
    return rois;
}

std::string truth_text()
{
    std::string text = "NAME d\n";
    for (const named_roi& r : all_rois)
        text += "ROI " + key_of(r.name) + ' ' + std::to_string(r.label) + '\n';
    return text + tracks;
}

// "aA b c" are units, each named by its first ROI; "ca" is the link from child c to parent a.
lineage made_of(const std::string& units, const std::string& links)
{
    lineage made;
    std::istringstream words(units);
    for (std::string unit; words >> unit;)
        for (const char member : unit)
            made.head_members.emplace(key_of(unit[0]), key_of(member));
    std::istringstream pairs(links);
    for (std::string pair; pairs >> pair;)
        made.links.emplace(key_of(pair[0]), key_of(pair[1]));
    return made;
}

lineage_score score_of(const lineage& made, const std::string& known, const roidb& rois)
{
    const temp_folder folder;
    const auto read = read_truth(folder.with("d.truth", known));
    EXPECT_TRUE(read) << known;
    return read ? score_lineage(made, *read, rois) : lineage_score();
}

std::vector<std::size_t> counts(const share_score& s) { return {s.made, s.right, s.real, s.found}; }

TEST(score_lineage, charges_each_kind_of_mistake)
{
    using numbers = std::vector<std::size_t>;    // made, right, real, found
    // From nothing: 7 nuclei of 10 and 5 links of 1.5.
    constexpr double nodes = 70;
    constexpr double all = 77.5;
    const struct {
        const char* why;
        const char *units, *links;
        numbers of_units, of_links, of_divisions;
        double det_cost, tra_cost;
    } cases[] = {
        {"all right", "aA b c d gG h i", "ca db gc hc id", {7, 7, 7, 7}, {5, 5, 5, 5}, {1, 1, 1, 1}, 0, 0},
        {"nothing", "", "", {0, 0, 7, 0}, {0, 0, 5, 0}, {0, 0, 1, 0}, nodes, all},
        {"two in one", "aA b cd gG h i", "ca cb gc hc ic", {6, 5, 7, 5}, {5, 3, 5, 3}, {1, 0, 1, 0}, 5, 12.5},
        {"one missing", "aA b c d gG h", "ca db gc hc", {6, 6, 7, 6}, {4, 4, 5, 4}, {1, 1, 1, 1}, 10, 11.5},
        {"one of none",
         "aA b c d f gG h i",
         "ca db gc hc id",
         {8, 7, 7, 7},
         {5, 5, 5, 5},
         {1, 1, 1, 1},
         1,
         1},
        {"one in two",
         "a A b c d gG h i",
         "ca db gc hc id",
         {8, 6, 7, 6},
         {5, 5, 5, 5},
         {1, 1, 1, 1},
         12,
         13.5},
        {"a daughter in two",
         "aA b c d g G h i",
         "ca db gc Gc hc id",
         {8, 6, 7, 6},
         {6, 6, 5, 5},
         {1, 0, 1, 0},
         12,
         13.5},
        {"a link too many",
         "aA b c d gG h i",
         "ca cb db gc hc id",
         {7, 7, 7, 7},
         {6, 5, 5, 5},
         {2, 1, 1, 1},
         0,
         2},
        {"no division", "aA b c d gG h i", "ca db gc id", {7, 7, 7, 7}, {4, 4, 5, 4}, {0, 0, 1, 0}, 0, 2.5},
        {"stored twice",
         "aA b c d gG h i",
         "ca ca db gc hc id",
         {7, 7, 7, 7},
         {5, 5, 5, 5},
         {1, 1, 1, 1},
         0,
         0},
    };
    const roidb rois = recording();
    for (const auto& c : cases) {
        const lineage_score s = score_of(made_of(c.units, c.links), truth_text(), rois);
        EXPECT_EQ(counts(s.units), c.of_units) << c.why;
        EXPECT_EQ(counts(s.links), c.of_links) << c.why;
        EXPECT_EQ(counts(s.divisions), c.of_divisions) << c.why;
        EXPECT_NEAR(s.det, 1 - c.det_cost / nodes, 1e-12) << c.why;
        EXPECT_NEAR(s.tra, 1 - c.tra_cost / all, 1e-12) << c.why;
    }
}

TEST(share_score, has_a_value_where_there_is_nothing)
{
    EXPECT_EQ((share_score{.made = 0, .real = 0}.f()), 1) << "nothing to find, nothing made";
    EXPECT_EQ((share_score{.made = 3, .real = 0}.f()), 0);
    EXPECT_DOUBLE_EQ((share_score{.made = 4, .right = 2, .real = 3, .found = 3}.f()), 2 * 0.5 / 1.5);
}

// A joined outline of 12 x 4 pixels: 5 columns are of one nucleus, 6 of the other, one is the neck.
TEST(score_lineage, knows_the_halves_of_a_joined_outline)
{
    const std::string key = keygen({0, 5, 0, 0});
    const std::string join = "NAME d\nJOIN " + key + " 1 2\n";
    const auto part = [&](int label, const rectangle& r) {
        return "PART " + key + ' ' + std::to_string(label) + ' ' + std::to_string(r.x) + " 5 " +
               rectangle_roi(r).outline() + '\n';
    };
    const std::string parts = part(1, {0, 5, 0, 5, 4}) + part(2, {6, 5, 0, 6, 4});
    const struct {
        const char* why;
        std::string known;
        std::vector<rectangle> rois;
        std::size_t right;
        double det_cost;
    } cases[] = {
        {"joined, parts unknown", join, {{0, 5, 0, 12, 4}}, 0, 5},
        {"joined", join + parts, {{0, 5, 0, 12, 4}}, 0, 5},
        {"cut", join + parts, {{0, 5, 0, 6, 4}, {6, 5, 0, 6, 4}}, 2, 0},
        {"cut a column beside", join + parts, {{0, 5, 0, 4, 4}, {4, 5, 0, 8, 4}}, 2, 0},
        {"cut, one half gone", join + parts, {{6, 5, 0, 6, 4}}, 1, 10},
        {"cut at the wrong place", join + parts, {{0, 5, 0, 2, 4}, {2, 5, 0, 10, 4}}, 0, 6},
    };
    for (const auto& c : cases) {
        roidb rois("d");
        lineage made;
        for (const rectangle& r : c.rois) {
            rois.entry(rectangle_roi(r));
            made.head_members.emplace(keygen({r.x, r.y, 0, 0}), keygen({r.x, r.y, 0, 0}));
        }
        const lineage_score s = score_of(made, c.known, rois);
        EXPECT_EQ(s.units.right, c.right) << c.why;
        EXPECT_EQ(s.units.real, 2u) << c.why;
        EXPECT_NEAR(s.det, 1 - c.det_cost / 20, 1e-12) << c.why;
    }
}

TEST(read_truth, refuses_what_is_wrong_with_one_line)
{
    const temp_folder folder;
    const struct {
        const char* text;
        const char* fault;    // after the file name
    } cases[] = {
        {"", ":0: no NAME line before the others"},
        {"ROI 000000000000 1\n", ":1: no NAME line before the others"},
        {"NAME d\n\nROI 00 1\n", ":3: no ROI key"},
        {"NAME d\nROI 000000000000 x\n", ":2: no label"},
        {"NAME d\nJOIN 000000000000 1\n", ":2: no label"},
        {"NAME d\nROI 000000000000 1\nROI 000000000000 2\n", ":3: an ROI that has a line already"},
        {"NAME d\nROI 000000000000 1\nPART 000000000000 1 0 0 2301\n", ":3: a part of no joined outline"},
        {"NAME d\nJOIN 000000000000 1 2\nPART 000000000000 1 0\n", ":3: no key, label, x, y and outline"},
        {"NAME d\nTRACK 1 2 3\n", ":2: no label, first, last and parent"},
        {"NAME d\nUNIT a b\n", ":2: no ROI, JOIN, PART or TRACK line"},
    };
    for (const auto& c : cases) {
        const std::string file = folder.with("d.truth", c.text);
        CapturedLines lines(std::cerr);
        EXPECT_FALSE(read_truth(file)) << c.text;
        EXPECT_EQ(lines.take().join("|").toStdString(), file + c.fault);
    }
}

}    // namespace
