// Units, the links between them, what is drawn and reported of both, and merging.
#include "../support/captured_lines.h"
#include "../support/editing.h"

namespace {

using keys = std::set<std::string>;
using links = std::multimap<std::string, std::string>;

// A unit of one ROI of 3 x 3 pixels.
std::string one_roi(WindowProbe& w, int x, int z, int t)
{
    return put_unit(w, {put_roi(w, {x, 30, z, t}, 3, 3)});
}

}    // namespace

class TestGuiUnits : public QObject {
    Q_OBJECT
    const SmallRecording recording;

private slots:
    void unitsAreThoseOfTheirTimePoint()
    {
        const SmallRecording end("tiny", 998, 999);
        OpenWindow w(end);
        const std::string last = one_roi(w, 5, 20, 999);
        const std::string before = put_unit(w, {one_roi(w, 5, 20, 998), put_roi(w, {5, 30, 19, 998})});
        for (const char* head : {"005000000000", "005000000001", "006000000000"})
            put_unit(w, {head});    // the first sorts with the time point itself
        QVERIFY(w.units(999) == keys({last}) && w.units(998) == keys({before}) && w.units(997).empty());
        QVERIFY(w.units(5) == keys({"005000000001"}) && w.z_min(before) == 19 && w.z_max(before) == 20);
        QVERIFY(w.head(before) == before && w.head("004000000000") == "N/A" && w.member("N/A").empty());
        w.makeLinkage(999);
        w.makeLinkage(999);
        QCOMPARE(w.m_linkage_multimap, links({{last, before}, {last, before}}));
        QVERIFY(w.ID("012000001001") == 12000 && w.ID("012000000000") == 12001);
        QVERIFY(w.ID("013000000000") == 13000 && w.ID("012000001001") == 12000);
    }

    void unitsAreLinkedWhereAPixelOfAPlaneIsShared()
    {
        OpenWindow w(recording);
        const std::string gone = put_roi(w, {40, 40, 6, 0});
        const std::string parent =
            put_unit(w, {put_roi(w, {20, 20, 3, 0}), put_roi(w, {20, 20, 6, 0}), gone});
        w.m_roidb->remove(gone);
        links expected;
        const std::tuple<int, int, bool> cases[] = {{20, 7, false}, {23, 6, true},  {24, 6, false},
                                                    {17, 3, true},  {16, 3, false}, {40, 6, false}};
        for (const auto& [x, z, is_linked] : cases) {
            const std::string child = put_unit(w, {put_roi(w, {x, x, z, 1}), keygen({60, 60, z, 1})});
            QCOMPARE(w.isLink(parent, child), is_linked);
            if (is_linked)
                expected.emplace(child, parent);
        }
        w.makeLinkage(1);
        QCOMPARE(w.m_linkage_multimap, expected);
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
        w.release_child("N/A", "N/A");
        w.release_child(a, b);    // one of the two
        QCOMPARE(w.m_linkage_multimap.size(), 1U);
    }

    void thePictureColorsWhatTheLineageHeadReaches()
    {
        OpenWindow w(recording);
        const std::string top = one_roi(w, 5, 20, 0), a = one_roi(w, 5, 20, 1), b = one_roi(w, 20, 20, 1),
                          k = one_roi(w, 5, 20, 2), l = one_roi(w, 20, 20, 2);
        w.m_linkage_multimap = {{a, top}, {b, top}, {k, a}, {k, b}, {k, a}, {l, a}};
        const std::pair<std::string, const char*> cases[] = {{top, "43333"}, {a, "34033"}, {b, "30430"},
                                                             {k, "33340"},   {l, "33004"}, {"N/A", "00000"}};
        for (const auto& [head, states] : cases) {
            w.m_lineage_mode_roi_set = {head};
            std::string seen;
            for (const auto& [x, t] : {std::pair(5, 0), {5, 1}, {20, 1}, {5, 2}, {20, 2}}) {
                w.setCurrentTimePoint(t);
                const auto shown = w.shown(x, 30);
                seen += shown == w.color[4] ? '4' : shown == w.color[3] ? '3' : '0';
            }
            QCOMPARE(seen.c_str(), states);
        }
    }

    void theOverlayShowsCentroidsAndWhoDescendsFromWhom()
    {
        OpenWindow w(recording);
        const auto pair_of_rois = [&w](int x, int t, int z_min, int z_max) {
            return put_unit(w, {put_roi(w, {x, 10, z_min, t}, 3, 3), put_roi(w, {x, 10, z_max, t}, 3, 3)});
        };
        const std::string parent = pair_of_rois(10, 1, 4, 5), child = pair_of_rois(40, 2, 5, 7);
        const auto drawn = [&w](int t, int z, QPoint at) {
            w.m_time_point = t;
            w.m_focal_plane = z;
            QPixmap pix(60, 40);
            pix.fill(Qt::black);
            w.drawLineage(pix);
            return pix.toImage().pixelColor(at).name();
        };
        const QPoint of_parent(9, 11), of_child(43, 11), of_line(25, 11);    // outer ends of the circles
        w.link(parent, child);
        const std::tuple<int, int, QPoint, const char*> cases[] = {
            {2, 5, of_child, "#ff0000"}, {2, 7, of_child, "#ff0000"},  {2, 4, of_child, "#990000"},
            {2, 8, of_child, "#990000"}, {2, 4, of_parent, "#4444ff"}, {2, 6, of_parent, "#222299"},
            {2, 7, of_line, "#ffffff"},  {2, 4, of_line, "#999999"},   {1, 4, of_parent, "#ff0000"},
            {1, 4, of_line, "#000000"},  {3, 5, of_child, "#4444ff"},  {3, 5, of_parent, "#000000"}};
        for (const auto& [t, z, at, color] : cases)
            QCOMPARE(drawn(t, z, at), color);
        const std::string heavy =
            put_unit(w, {put_roi(w, {10, 10, 2, 0}, 3, 3), put_roi(w, {31, 21, 3, 0}, 1, 1), "000004000000"});
        const pos3d g = w.E_g(heavy);    // weighted by area: plane 2.1; what is no ROI has no weight
        QVERIFY(qFuzzyCompare(g.x(), 13.0) && qFuzzyCompare(g.y(), 12.0) && qFuzzyCompare(g.z(), 10.0));
        w.setMinTimePoint(2);
        QVERIFY(drawn(2, 5, of_parent) == "#000000" && drawn(2, 5, of_child) == "#ff0000");
    }

    void reportsNameTheFirstFindingAndShowIt()
    {
        OpenWindow w(recording);
        CapturedLines lines(std::cout);
        const auto report = [&](void (ORVBrowser::*slot)()) {
            (w.*slot)();
            return lines.take().join('|') + QString(" %1 %2").arg(w.m_time_point).arg(w.m_focal_plane);
        };
        const auto dead_end = &ORVBrowser::pushButton_dead_end_clicked;
        const auto unlinked = &ORVBrowser::pushButton_unlinked_unit_clicked;
        std::string line[5];
        for (int t = 0; t < 5; ++t)
            line[t] = one_roi(w, 5, 21, t);
        for (int t = 1; t < 5; ++t)
            w.link(line[t - 1], line[t]);
        QCOMPARE(report(dead_end) + report(unlinked), "Dead-end branch: none 0 20Unlinked unit: none 0 20");
        const std::string side = one_roi(w, 20, 19, 1);
        one_roi(w, 20, 22, 3);
        w.link(line[0], side);
        QCOMPARE(report(unlinked), "Unlinked unit: 003022020030 3 22");
        QCOMPARE(report(dead_end), "Dead-end branch: 001019020030 1 19");
        w.link(side, line[2]);
        w.m_linkage_multimap.emplace(line[4], line[3]);    // twice
        w.m_falsely_grouped_units_candidates = {"old"};
        w.search_doubt_units();
        QCOMPARE(w.m_falsely_grouped_units_candidates, keys({line[2], line[4]}));
    }

    void aMergedUnitTakesOverTheLinksOfBoth()
    {
        OpenWindow w(recording);
        CapturedLines lines(std::cout);
        const std::string p = one_roi(w, 1, 20, 0), q = one_roi(w, 9, 20, 0);
        const std::string c = one_roi(w, 1, 20, 2), d = one_roi(w, 9, 20, 2);
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
        QVERIFY(w.head(b) == low && w.head(top) == low && w.m_elite_head_roi_set == keys({c}));
        w.mergeUnits(low, c);
        w.mergeUnits("N/A", low);
        const QString refusals = "mergeUnits: %1 %2|Cannot merge units in different time points: %1 %2|"
                                 "mergeUnits: N/A %1|Cannot merge N/A and %1: not two units";
        QCOMPARE(lines.take().join('|'), refusals.arg(low.c_str(), c.c_str()));
        QVERIFY(w.m_linkage_multimap.size() == 4 && w.member(low) == members && w.head(c) == c);
    }
};

QTEST_MAIN(TestGuiUnits)
#include "test_gui_units.moc"
