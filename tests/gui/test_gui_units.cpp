// Units, their links, what is drawn and reported of both, and merging; the lineage page and its tree.
#include "../support/captured_lines.h"
#include "../support/editing.h"
#include "../support/scripted_dialogs.h"
#include "lineage_page.h"
#include "tree_window.h"
#include "typed_field.h"

namespace {

using links = std::multimap<std::string, std::string>;

// A unit of one ROI of 3 x 3 pixels.
std::string one_roi(WindowProbe& w, int x, int z, int t)
{
    return put_unit(w, {put_roi(w, {x, 30, z, t}, 3, 3)});
}

// Two nuclei of two planes each at time points 0 to 2 that move a pixel a time point and touch nothing.
struct TwoNuclei {
    SmallRecording recording{"tiny", 0, 2};
    OpenWindow w{recording};
    LineagePage* page = new LineagePage(w);

    TwoNuclei()
    {
        w.m_roidb = std::make_unique<roidb_plus>("tiny");
        for (int t = 0; t < 3; ++t)
            for (int z = 20; z < 22; ++z)
                for (const int x : {100, 120})
                    put_roi(w, {x + t, 50, z, t}, 10, 10);
        w.tabWidget_control_panel->addTab(page, "Lineage");
        w.tabWidget_control_panel->setCurrentWidget(page);
    }

    void make_all() { page->make_units->click(), page->make_links->click(); }
};

struct LinkedNuclei : TwoNuclei {
    LinkedNuclei() { make_all(); }
};

}    // namespace

class TestGuiUnits : public QObject {
    Q_OBJECT
    const SmallRecording recording;

private slots:
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

    void makesUnitsAndLinksOfTheWholeRecording()
    {
        TwoNuclei s;
        QVERIFY(s.page->rule->currentText() == "Nearest" &&
                s.page->overlap->value() == 0.3);    // docs/units.md
        ScriptedDialogs user({"Only ROIs in no unit", "", "All anew", "Untouched", "All anew"});
        s.w.m_removed_roi_set = {"000021120050"};
        s.page->make_units->click();
        QCOMPARE(s.w.head("000021120050"), "N/A");
        s.w.m_removed_roi_set.clear();
        s.make_all();    // of what is in no unit yet
        QCOMPARE(s.w.head("000021120050"), "000021120050");
        s.w.mergeUnits("000020120050", "000021120050");
        QCOMPARE(s.w.units(1), (keys{"001020101050", "001020121050"}));
        QCOMPARE(s.w.member("001020101050"), (keys{"001020101050", "001021101050"}));
        QCOMPARE(s.w.m_members_head.size(), 12U);
        QCOMPARE(s.w.m_linkage_multimap.size(), 4U);
        QCOMPARE(s.w.parents("002020122050"), (keys{"001020121050"}));
        QVERIFY(!s.w.m_auto_make_units);
        s.w.link("000020100050", "001020121050");
        const auto links = s.w.m_linkage_multimap;
        s.page->make_links->click();
        QCOMPARE(s.w.m_linkage_multimap, links);
        s.page->make_links->click();
        QCOMPARE(user.seen.size(), 3);
        QCOMPARE(s.w.m_linkage_multimap.size(), links.size() - 1);
        QVERIFY(user.seen[2].contains("All anew: 5 links -> 4"));
        // What a person has made stays: the merged unit of time point 0, or nothing.
        s.w.note_edited("000020120050");
        const auto merged = s.w.member("000020120050");
        s.w.mergeUnits("001020101050", "001020121050");
        s.page->make_units->click();
        QVERIFY(user.seen[3].contains("Untouched: 5 units -> 6"));
        QVERIFY(s.w.member("000020120050") == merged && s.w.units(1).size() == 2);
        s.page->make_units->click();
        QVERIFY(s.w.units(0).size() == 2 && s.w.m_linkage_multimap.empty());
        s.w.undo();    // all of it
        s.w.undo();
        s.w.undo();
        QCOMPARE(s.w.m_linkage_multimap.size(), links.size() - 1);
        s.w.setCurrentTimePoint(0);
        s.w.m_elite_head_roi_set = {"000020100050", "002020122050"};
        s.page->elite->click();    // of the time point on view one of two is: both become
        QCOMPARE(s.w.m_elite_head_roi_set.size(), 3U);
        s.page->elite->click();
        QCOMPARE(s.w.m_elite_head_roi_set, (keys{"002020122050"}));
    }

    void stopLeavesWhatIsDone()
    {
        TwoNuclei s;
        bool is_locked_inside = false;
        QTimer::singleShot(0, s.page, [&] {
            is_locked_inside = !s.page->make_links->isEnabled();
            s.page->stop->click();    // does nothing unless it is enabled
        });
        s.page->make_units->click();
        QCOMPARE(s.w.units(0).size(), 2U);
        QVERIFY(is_locked_inside && s.w.units(2).empty());
        QVERIFY(s.page->make_units->isEnabled() && !s.page->stop->isEnabled());
        s.page->close_recording->click();
        QCoreApplication::processEvents();
        QVERIFY(!s.w.m_roidb && !s.page->make_units->isEnabled() && s.page->help->isEnabled());
    }

    void countsTheUnits()
    {
        TwoNuclei s;
        s.make_all();
        s.w.link("000020100050", "001020121050");
        s.w.link("001020101050", "002020122050");
        s.w.release_child("001020101050", "002020122050");
        s.w.release_child("001020101050", "002020102050");
        s.w.setCurrentTimePoint(1);
        QTRY_COMPARE(s.page->numbers->text(),
                     QString("Recording: 12 ROIs, 6 units, 4 links, 1 doubtful, 1 dead ends, 1 unlinked\n"
                             "Time point 1: 4 ROIs, 2 units, 3 links, 1 doubtful, 1 dead ends, 0 unlinked"));
    }

    void lineageSurvivesAFile()
    {
        LinkedNuclei s;
        s.w.m_elite_head_roi_set = {"000020100050"};
        const auto members = s.w.m_head_members;
        const auto links = s.w.m_linkage_multimap;
        ScriptedDialogs user({s.recording.path("a.lineage"), s.recording.path("a.lineage"),
                              s.recording.path("b.lineage"), s.recording.path("a.lineage")});
        s.page->save_lineage_file->click();
        s.w.pushButton_reset_clicked();
        s.page->read_lineage_file->click();
        QVERIFY(in_order(s.w.m_head_members) == in_order(members) &&
                s.w.m_members_head.size() == members.size());
        QVERIFY(in_order(s.w.m_linkage_multimap) == in_order(links));
        QCOMPARE(s.w.m_elite_head_roi_set, (keys{"000020100050"}));
        QCOMPARE(user.seen.first(),
                 "save lineage-file|Choose a filename to save under|lineage file (*.lineage)|" +
                     s.recording.path("tiny.lineage"));

        // What was dropped is left out, so that the file reads back.
        s.w.m_removed_roi_set = {"001020101050", "001021101050", "002020102050"};
        s.w.m_lineage_mode_roi_set = {"002020102050"};
        s.w.pushButton_drop_false_positive_clicked();
        QCOMPARE(s.w.m_lineage_mode_roi_set,
                 (keys{"002021102050"}));    // the chosen nucleus under its new name
        s.page->save_lineage_file->click();
        CapturedLines err(std::cerr);
        QVERIFY(read_lineage(s.recording.folder.path("b.lineage"), "tiny", *s.w.m_roidb));
        s.page->read_lineage_file->click();    // names ROIs that are gone: refused, nothing changed
        QCOMPARE(err.take().size(), 1);
        QVERIFY(!s.w.m_head_members.contains("001020101050"));    // nor does any map name them
    }

    void treeFollowsEditsMovesTheWindowAndIsExported()
    {
        LinkedNuclei s;
        s.page->tree->click();
        auto* const tree = s.w.findChild<TreeWindow*>();
        QVERIFY(tree && QTest::qWaitForWindowExposed(tree));
        QTRY_COMPARE(tree->tree().nodes.size(), 6U);
        const auto& node = tree->tree().nodes[tree->tree().find("002020122050")];
        QTest::mouseClick(tree, Qt::LeftButton, {}, tree->view().place(tree->tree(), node).toPoint());
        QCOMPARE(s.w.m_time_point, 2);
        QCOMPARE(s.w.m_mouse_over_roi_set, s.w.member("002020122050"));
        ScriptedDialogs user(
            {s.recording.path("t.svg"), s.recording.path("t.png"), s.recording.path("t.nwk")});
        for (QPushButton* button : {tree->save_svg, tree->save_png, tree->save_newick})
            button->click();
        const QString svg = QString::fromStdString(s.recording.folder.contents("t.svg"));
        QCOMPARE(svg.count("<circle") + svg.count("<ellipse"), 6 + 1 + 6);    // units, the chosen one, legend
        QVERIFY(!QImage(s.recording.path("t.png")).isNull());
        QCOMPARE(s.recording.folder.contents("t.nwk"), newick(tree->tree()));

        s.w.link("001020101050", "002020122050");
        QCOMPARE(QString::fromStdString(newick(make_tree(s.w, ""))),
                 "(('002020102050':1,'002020122050':1)'001020101050':1)'000020100050';\n"
                 "('001020121050':1)'000020120050';\n");
        s.w.release_child("001020101050", "002020122050");
        s.w.m_lineage_mode_roi_set = {"000020100050"};
        tree->one_lineage->click();    // from now on the tree of one nucleus
        s.w.mergeUnits("002020102050", "002020122050");
        s.page->elite->click();
        QTRY_VERIFY(tree->tree().nodes[tree->tree().find("002020102050")].is_doubtful);
        QCOMPARE(tree->tree().nodes.size(), 3U);    // itself, its child, and the merged unit
    }

    void treeNamesAndFindsUnits()
    {
        LinkedNuclei s;
        s.page->tree->click();
        auto* const tree = s.w.findChild<TreeWindow*>();
        QVERIFY(tree && QTest::qWaitForWindowExposed(tree));
        const auto type = [](QLineEdit* field, const QString& text, Qt::Key end = Qt::Key_Return) {
            field->setFocus();
            field->selectAll();
            QTest::keyClicks(field, text);
            QTest::keyClick(field, end);
        };
        type(tree->find, QString::number(s.w.ID("000020100050")));
        QCOMPARE(s.w.chosen(), "000020100050");
        s.w.release_child("001020121050", "002020122050");
        s.w.link("001020101050", "002020122050");    // now the root has two granddaughters
        type(tree->name, "never", Qt::Key_Escape);
        type(tree->name, " AB ");
        QCOMPARE(s.w.notes(), (keys{"CALLED 000020100050 AB"}));
        type(tree->find, "none such");
        QCOMPARE(s.w.chosen(), "000020100050");
        const auto node = [&](const char* unit) { return tree->tree().nodes[tree->tree().find(unit)]; };
        QTRY_COMPARE(node("000020100050").name, "AB");
        QCOMPARE(node("001020101050").name, "");    // called the same, which need not be told again
        QCOMPARE(node("002020122050").name, "ABb");
        type(tree->find, "ABb");
        QCOMPARE(s.w.chosen(), "002020122050");
        QCOMPARE(tree->name->text(), "");
        QVERIFY(tree->name->placeholderText().endsWith("ABb"));

        QVERIFY(node("001020121050").is_dead_end && !node("001020121050").is_reviewed);
        s.w.set_dismissed({"dead_end", "001020121050", ""}, true);
        s.w.set_reviewed("001020121050", true);
        QTRY_VERIFY(!node("001020121050").is_dead_end && node("001020121050").is_reviewed);
        s.w.undo();
        QTRY_VERIFY(!node("001020121050").is_reviewed);

        QWheelEvent zoom({5, 690}, tree->mapToGlobal(QPointF(5, 690)), {}, {0, 1200}, Qt::NoButton,
                         Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(tree, &zoom);    // what was in the middle is out of view
        s.w.choose("000020100050");
        const auto place = [&] { return tree->view().place(tree->tree(), node("000020100050")).toPoint(); };
        QTRY_VERIFY(tree->rect().contains(place()));
        tree->fit->click();
        for (const tree_node& each : tree->tree().nodes)
            QVERIFY(tree->rect().contains(tree->view().place(tree->tree(), each).toPoint()));
    }
};

QTEST_MAIN(TestGuiUnits)
#include "test_gui_units.moc"
