// Units, the links between them, what is drawn and reported of both, and merging.
#include "../support/captured_lines.h"
#include "../support/editing.h"

#include <random>

namespace {

using keys = std::set<std::string>;
using links = std::multimap<std::string, std::string>;

// A unit of one ROI of 3 x 3 pixels.
std::string one_roi(WindowProbe& w, int x, int z, int t)
{
    return put_unit(w, {put_roi(w, {x, 30, z, t}, 3, 3)});
}

// Units of one to three ROIs anywhere on few planes; now and then a member is no ROI.
void random_units(WindowProbe& w, int t, std::minstd_rand& random)
{
    const auto below = [&random](unsigned n) { return static_cast<int>(random() % n); };
    for (int unit = 0; unit < 12; ++unit) {
        std::vector<std::string> members;
        for (int m = 0; m <= below(3); ++m)
            members.push_back(put_roi(w, {below(30), below(30), below(3), t}, 1 + below(9), 1 + below(9)));
        if (below(4) == 0)
            w.m_roidb->remove(members.back());
        put_unit(w, members);
    }
}

}    // namespace

class TestGuiUnits : public QObject {
    Q_OBJECT
private slots:
    void unitsAreThoseOfTheirTimePoint()
    {
        const SmallRecording recording("tiny", 998, 999);
        OpenWindow w(recording);
        const std::string last = one_roi(w, 5, 20, 999);
        const std::string before = put_unit(w, {one_roi(w, 5, 20, 998), put_roi(w, {5, 30, 19, 998})});
        put_unit(w, {"005000000000"});    // sorts with the time point itself
        put_unit(w, {"005000000001"});
        put_unit(w, {"006000000000"});
        QCOMPARE(w.units(999), keys({last}));
        QVERIFY(w.units(998) == keys({before}) && w.units(997).empty());
        QCOMPARE(w.units(5), keys({"005000000001"}));
        QVERIFY(w.head(before) == before && w.head("004000000000") == "N/A" && w.member("N/A").empty());
        QVERIFY(w.z_min(before) == 19 && w.z_max(before) == 20);
        w.makeLinkage(999);
        w.makeLinkage(999);
        QCOMPARE(w.m_linkage_multimap, links({{last, before}, {last, before}}));
        QCOMPARE(w.children(before), keys({last}));
        const unsigned first = w.ID("012000001001");
        QVERIFY(first == 12000 && w.ID("012000000000") == 12001 && w.ID("013000000000") == 13000);
        QCOMPARE(w.ID("012000001001"), first);
    }

    void unitsAreLinkedWhereAPixelOfAPlaneIsShared()
    {
        const SmallRecording recording;
        std::minstd_rand random(4);
        std::size_t linked = 0;
        for (int round = 0; round < 10; ++round) {
            OpenWindow w(recording);
            random_units(w, 0, random);
            random_units(w, 1, random);
            links expected;
            for (const std::string& child : w.units(1))
                for (const std::string& parent : w.units(0))
                    if (w.isLink(parent, child))
                        expected.emplace(child, parent);
            w.makeLinkage(1);
            QCOMPARE(w.m_linkage_multimap, expected);
            linked += expected.size();
        }
        QVERIFY(linked > 50);
        OpenWindow w(recording);
        const std::string parent = put_unit(w, {put_roi(w, {20, 20, 3, 0}), put_roi(w, {20, 20, 6, 0})});
        for (const auto& [x, z, is_linked] :
             {std::tuple(20, 7, false), {23, 6, true}, {24, 6, false}, {17, 3, true}})
            QCOMPARE(w.isLink(parent, put_unit(w, {put_roi(w, {x, x, z, 1})})), is_linked);
    }

    void linksJoinSuccessiveTimePointsOnce()
    {
        const std::string a = "004001002003", b = "005001002003";
        WindowProbe w;
        CapturedLines lines(std::cout);
        w.link(a, b);
        w.link(b, a);
        QCOMPARE(w.m_linkage_multimap, links({{b, a}}));
        for (const auto& [one, two] :
             {std::pair(a, "006001002003"), {a, "004009009009"}, {a, "N/A"}, {"N/A", "N/A"}}) {
            w.link(one, two);
            QCOMPARE(lines.take(), {QString::fromStdString("Cannot link " + one + " and " + two)});
        }
        w.m_linkage_multimap.emplace(b, a);
        for (const unsigned left : {1, 0, 0}) {
            w.release_child(a, b);
            w.release_child("N/A", "N/A");
            QVERIFY(w.m_linkage_multimap.size() == left && w.children("N/A").empty());
        }
    }

    void ancestorsAreFoundOverEveryWay()
    {
        const std::string top = "002000000009", c = "003000000009", a = "004000000001", b = "004000000002",
                          k = "005000000001";
        WindowProbe w;
        w.m_linkage_multimap = {{k, a}, {k, b}, {k, a}, {a, c}, {b, c}, {c, top}, {"005000000002", a}};
        w.m_elite_head_roi_set = {k, b, top, "005000000002"};
        w.setMinTimePoint(3);
        QVERIFY(w.upstream_units(k, 5).empty() && w.upstream_units("N/A", 0).empty());
        QVERIFY(w.upstream_units(k, 4) == keys({a, b}) && w.upstream_units(k, 4) == w.parents(k));
        QCOMPARE(w.subset_of_unit_from(k), keys({a, b, c}));
        QCOMPARE(w.subset_of_elite_unit_from(k), keys({b, k}));
        QCOMPARE(w.subset_of_elite_unit_from(c), keys());
        QCOMPARE(w.children(a), keys({k, "005000000002"}));
        QVERIFY(w.reach(k, top) && w.reach(c, k) && !w.reach("005000000002", b) && !w.reach(a, b) &&
                !w.reach(a, a));
        QVERIFY(!w.reach(k, "N/A") && !w.reach("N/A", k));
    }

    void thePictureColorsWhatTheLineageHeadReaches()
    {
        const SmallRecording recording;
        OpenWindow w(recording);
        std::minstd_rand random(2);
        std::vector<std::string> all;
        for (int t = 0; t < 5; ++t)
            for (int x = 0; x < 60; x += 5) {
                all.push_back(one_roi(w, x, 20, t));
                if (t > 0)
                    for (auto n = random() % 4; n > 0; --n)
                        w.link(all.back(), keygen({static_cast<int>(random() % 12) * 5, 30, 20, t - 1}));
            }
        int reached = 0;
        for (const std::string& head : {all[3], all[16], all[30], all[57], std::string("N/A")}) {
            w.m_lineage_mode_roi_set = {head};
            for (int t = 0; t < 5; ++t) {
                w.setCurrentTimePoint(t);
                for (int x = 0; x < 60; x += 5) {
                    const std::string unit = keygen({x, 30, 20, t});
                    const int state = unit == head ? 4 : w.reach(unit, head) ? 3 : 0;
                    QVERIFY2(w.shown(x, 30) == w.color[state], unit.c_str());
                    reached += state == 3;
                }
            }
        }
        QVERIFY(reached > 20);
    }

    void theOverlayShowsCentroidsAndWhoDescendsFromWhom()
    {
        const SmallRecording recording;
        OpenWindow w(recording);
        const std::string parent =
            put_unit(w, {put_roi(w, {10, 10, 4, 1}, 3, 3), put_roi(w, {10, 10, 5, 1}, 3, 3)});
        const std::string child =
            put_unit(w, {put_roi(w, {40, 10, 5, 2}, 3, 3), put_roi(w, {40, 10, 7, 2}, 3, 3)});
        const auto drawn = [&w](int t, int z, QPoint at) {
            w.m_time_point = t;
            w.m_focal_plane = z;
            QPixmap pix(60, 40);
            pix.fill(Qt::black);
            w.drawLineage(pix);
            return pix.toImage().pixelColor(at).name();
        };
        const QPoint of_parent(9, 11), of_child(43, 11), of_line(25, 11);    // outer ends of the circles
        QCOMPARE(drawn(2, 5, of_child), "#000000");                          // no links at all
        w.link(parent, child);
        const struct {
            int t, z;
            QPoint at;
            const char* color;
        } cases[] = {{2, 5, of_child, "#ff0000"},  {2, 6, of_child, "#ff0000"},  {2, 7, of_child, "#ff0000"},
                     {2, 4, of_child, "#990000"},  {2, 8, of_child, "#990000"},  {2, 4, of_parent, "#4444ff"},
                     {2, 5, of_parent, "#4444ff"}, {2, 6, of_parent, "#222299"}, {2, 5, of_line, "#ffffff"},
                     {2, 7, of_line, "#ffffff"},   {2, 4, of_line, "#999999"},   {1, 4, of_parent, "#ff0000"},
                     {1, 4, of_line, "#000000"},   {3, 5, of_child, "#4444ff"},  {3, 5, of_parent, "#000000"},
                     {2, 5, {11, 11}, "#ffffff"}};
        for (const auto& c : cases)
            QVERIFY2(drawn(c.t, c.z, c.at) == c.color, c.color);
        const std::string heavy =
            put_unit(w, {put_roi(w, {10, 10, 2, 0}, 3, 3), put_roi(w, {31, 21, 3, 0}, 1, 1), "000004000000"});
        const pos3d g = w.E_g(heavy);    // weighted by area: plane 2.1; what is no ROI has no weight
        QVERIFY(qFuzzyCompare(g.x(), 13.0) && qFuzzyCompare(g.y(), 12.0) && qFuzzyCompare(g.z(), 10.0));
        w.setMinTimePoint(2);
        QVERIFY(drawn(2, 5, of_parent) == "#000000" && drawn(2, 5, of_child) == "#ff0000");
    }

    void reportsNameTheFirstFindingAndShowIt()
    {
        const SmallRecording recording;
        OpenWindow w(recording);
        CapturedLines lines(std::cout);
        const auto report = [&](void (ORVBrowser::*slot)()) {
            (w.*slot)();
            return lines.take().join('|') + QString(" %1 %2").arg(w.m_time_point).arg(w.m_focal_plane);
        };
        const auto dead_end = &ORVBrowser::pushButton_dead_end_clicked;
        const auto unlinked = &ORVBrowser::pushButton_unlinked_unit_clicked;
        QCOMPARE(report(dead_end) + report(unlinked), "Dead-end branch: none 0 20Unlinked unit: none 0 20");
        std::string line[5], side[5];
        for (int t = 0; t < 5; ++t) {
            line[t] = one_roi(w, 5, 21, t);
            if (t > 0)
                w.link(line[t - 1], line[t]);
        }
        QCOMPARE(report(dead_end) + report(unlinked), "Dead-end branch: none 0 20Unlinked unit: none 0 20");
        side[1] = one_roi(w, 20, 19, 1);
        side[3] = one_roi(w, 20, 22, 3);
        QCOMPARE(report(dead_end), "Dead-end branch: 001019020030 1 19");
        w.setCurrentTimePoint(0);
        QCOMPARE(report(unlinked), "Unlinked unit: 001019020030 1 19");
        w.link(side[1], line[2]);
        w.link(side[1], line[0]);
        QCOMPARE(report(dead_end), "Dead-end branch: 003022020030 3 22");
        QCOMPARE(report(unlinked), "Unlinked unit: 003022020030 3 22");
        w.m_linkage_multimap.emplace(line[4], line[3]);    // twice
        w.m_falsely_grouped_units_candidates = {"old"};
        w.search_doubt_units();
        QCOMPARE(w.m_falsely_grouped_units_candidates, keys({line[2], line[4]}));
    }

    void aMergedUnitTakesOverTheLinksOfBoth()
    {
        const SmallRecording recording;
        OpenWindow w(recording);
        CapturedLines lines(std::cout);
        const std::string p = one_roi(w, 1, 20, 0), q = one_roi(w, 9, 20, 0), c = one_roi(w, 1, 20, 2),
                          d = one_roi(w, 9, 20, 2);
        const std::string low = put_roi(w, {1, 30, 5, 1}), top = put_roi(w, {1, 30, 8, 1});
        const std::string a = put_unit(w, {top, low});
        const std::string b = put_unit(w, {put_roi(w, {9, 30, 2, 1}), put_roi(w, {9, 30, 4, 1})});
        const keys members = {low, top, b, keygen({9, 30, 4, 1})};
        w.m_linkage_multimap = {{a, p}, {a, p}, {b, p}, {b, q}, {c, a}, {d, b}, {d, b}};
        w.m_elite_head_roi_set = {a, b, c};
        w.mergeUnits(a, b);
        QCOMPARE(lines.take(), {QString::fromStdString("mergeUnits: " + a + " " + b)});
        QCOMPARE(w.m_linkage_multimap, links({{low, p}, {low, q}, {c, low}, {d, low}}));
        QVERIFY(w.units(1) == keys({low}) && w.member(low) == members && w.m_head_members.size() == 4 + 4);
        for (const std::string& key : members)
            QCOMPARE(w.head(key), low);
        QCOMPARE(w.m_elite_head_roi_set, keys({c}));

        w.mergeUnits(low, low);    // of its own members, that of b lies lowest
        QVERIFY(w.member(b) == members && w.member(low).empty());
        (void)lines.take();
        const links before = w.m_linkage_multimap;
        for (const auto& [one, two, refusal] :
             {std::tuple(b, c, QString("Cannot merge units in different time points: %1 %2")),
              {b, "N/A", "Cannot merge %1 and %2: not two units"},
              {"N/A", b, "Cannot merge %1 and %2: not two units"}}) {
            w.mergeUnits(one, two);
            QCOMPARE(lines.take().value(1), refusal.arg(one.c_str(), two.c_str()));
            QVERIFY(w.m_linkage_multimap == before && w.member(b) == members && w.head(c) == c);
        }
        w.setMaxTimePoint(2);
        w.mergeUnits(p, q);    // at the ends of the recording
        w.mergeUnits(c, d);
        QCOMPARE(w.m_linkage_multimap, links({{b, p}, {c, b}}));
        w.m_linkage_multimap = {{b, p}, {b, p}, {c, b}, {c, b}};
        w.setMinTimePoint(1);
        w.setMaxTimePoint(1);
        w.mergeUnits(b, b);    // links that lead out of it are not touched
        QCOMPARE(w.m_linkage_multimap.size(), 4U);
    }
};

QTEST_MAIN(TestGuiUnits)
#include "test_gui_units.moc"
