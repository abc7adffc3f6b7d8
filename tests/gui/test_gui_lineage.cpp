// The lineage page, its tree and its help, in the real window.
#include "../support/captured_lines.h"
#include "../support/editing.h"
#include "../support/scripted_dialogs.h"
#include "help_window.h"
#include "lineage_page.h"
#include "tree_window.h"

#include <QSignalSpy>

namespace {

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

    void make_all()
    {
        page->make_units->click();
        page->make_links->click();
    }
};

}    // namespace

class TestGuiLineage : public QObject {
    Q_OBJECT

private slots:
    void makesUnitsAndLinksOfTheWholeRecording();
    void makesUnitsOnlyOfWhatIsInNone();
    void asksBeforeItReplacesLinks();
    void stopLeavesWhatIsDone();
    void marksAllUnitsOfTheTimePointElite();
    void walksThroughTheDoubtfulUnits();
    void countsWhatThereIs();
    void controlsFollowTheRecording();
    void lineageSurvivesAFile();
    void treeFollowsEditsAndMovesTheWindow();
    void exportsTheTree();
    void nothingTakesTheKeyboard();
};

void TestGuiLineage::makesUnitsAndLinksOfTheWholeRecording()
{
    TwoNuclei s;
    QCOMPARE(s.page->overlap->value(), 0.0);    // the best by docs/units.md
    s.make_all();
    QCOMPARE(s.w.units(1), (std::set<std::string>{"001020101050", "001020121050"}));
    QCOMPARE(s.w.member("001020101050"), (std::set<std::string>{"001020101050", "001021101050"}));
    QCOMPARE(s.w.m_members_head.size(), std::size_t(12));
    QCOMPARE(s.w.m_linkage_multimap.size(), std::size_t(4));
    QCOMPARE(s.w.parents("002020122050"), (std::set<std::string>{"001020121050"}));
    QVERIFY(!s.w.m_make_units);
    QVERIFY(s.w.m_make_unit_roi_set.empty());
    QCOMPARE(s.w.cursor().shape(), Qt::ArrowCursor);
}

void TestGuiLineage::makesUnitsOnlyOfWhatIsInNone()
{
    TwoNuclei s;
    s.w.m_removed_roi_set = {"000021120050"};
    s.page->overlap->setValue(0.5);
    s.page->make_units->click();
    const auto units = s.w.m_head_members;
    QCOMPARE(s.w.head("000021120050"), "N/A");
    s.page->make_units->click();    // the second time there is nothing to do
    QCOMPARE(s.w.m_head_members, units);
    s.w.m_removed_roi_set.clear();
    s.page->make_units->click();
    QCOMPARE(s.w.head("000021120050"), "000021120050");
}

void TestGuiLineage::asksBeforeItReplacesLinks()
{
    TwoNuclei s;
    s.make_all();
    s.w.link("000020100050", "001020121050");
    const auto links = s.w.m_linkage_multimap;
    ScriptedDialogs user({"&No", "&Yes"});
    s.page->make_links->click();
    QCOMPARE(s.w.m_linkage_multimap, links);
    s.page->make_links->click();
    QCOMPARE(user.seen.size(), 2);
    QCOMPARE(s.w.m_linkage_multimap.size(), links.size() - 1);
}

void TestGuiLineage::stopLeavesWhatIsDone()
{
    TwoNuclei s;
    QMetaObject::invokeMethod(s.page->stop, "click", Qt::QueuedConnection);
    s.page->make_units->click();
    QCOMPARE(s.w.units(0).size(), std::size_t(2));
    QVERIFY(s.w.units(2).empty());
    QVERIFY(s.page->make_units->isEnabled());
}

void TestGuiLineage::marksAllUnitsOfTheTimePointElite()
{
    TwoNuclei s;
    s.make_all();
    s.w.m_elite_head_roi_set = {"000020100050", "002020122050"};
    s.page->elite->click();    // one of two is: both become
    QCOMPARE(s.w.m_elite_head_roi_set.size(), std::size_t(3));
    s.page->elite->click();
    QCOMPARE(s.w.m_elite_head_roi_set, (std::set<std::string>{"002020122050"}));
}

void TestGuiLineage::walksThroughTheDoubtfulUnits()
{
    TwoNuclei s;
    CapturedLines out(std::cout);
    s.page->doubtful->click();
    QCOMPARE(out.take(), QStringList{"Doubt units: none"});
    s.make_all();
    s.w.link("000020100050", "001020121050");
    s.w.link("001020101050", "002020122050");
    for (const char* unit : {"001020121050", "002020122050", "001020121050"}) {    // and around
        s.page->doubtful->click();
        QCOMPARE(out.take(), QStringList{QString("Doubt unit: ") + unit});
        QCOMPARE(s.w.m_time_point, decode(unit).t());
    }
}

void TestGuiLineage::countsWhatThereIs()
{
    TwoNuclei s;
    s.make_all();
    s.w.link("000020100050", "001020121050");
    s.w.release_child("001020101050", "002020102050");
    s.w.setCurrentTimePoint(1);
    QTRY_COMPARE(s.page->numbers->text(),
                 QString("Recording: 12 ROIs, 6 units, 4 links, 1 doubtful, 1 dead ends, 1 unlinked\n"
                         "Time point 1: 4 ROIs, 2 units, 3 links, 1 doubtful, 1 dead ends, 0 unlinked"));
    s.w.setCurrentTimePoint(2);
    QTRY_VERIFY(s.page->numbers->text().endsWith(
        "Time point 2: 4 ROIs, 2 units, 1 links, 0 doubtful, 0 dead ends, 1 unlinked"));
}

void TestGuiLineage::controlsFollowTheRecording()
{
    TwoNuclei s;
    QVERIFY(s.page->make_units->isEnabled() && s.page->auto_split->isEnabled() && !s.page->stop->isEnabled());
    bool was_enabled_inside = true;
    bool could_stop_inside = false;
    QTimer::singleShot(0, s.page, [&] {
        was_enabled_inside = s.page->make_links->isEnabled();
        could_stop_inside = s.page->stop->isEnabled();
    });
    s.page->make_units->click();
    QVERIFY(!was_enabled_inside && could_stop_inside);
    QVERIFY(s.page->make_links->isEnabled() && !s.page->stop->isEnabled());
    s.page->close_recording->click();
    QCoreApplication::processEvents();
    QVERIFY(!s.w.m_roidb && !s.page->make_units->isEnabled() && s.page->help->isEnabled());
    QVERIFY(!s.page->stop->isEnabled());
}

void TestGuiLineage::lineageSurvivesAFile()
{
    TwoNuclei s;
    s.make_all();
    s.w.m_elite_head_roi_set = {"000020100050"};
    const auto members = s.w.m_head_members;
    const auto heads = s.w.m_members_head;
    const auto links = s.w.m_linkage_multimap;
    ScriptedDialogs user({s.recording.path("a.lineage"), s.recording.path("a.lineage"),
                          s.recording.path("b.lineage"), s.recording.path("a.lineage")});
    s.page->save_lineage_file->click();
    s.w.pushButton_reset_clicked();
    s.page->read_lineage_file->click();
    QVERIFY(in_order(s.w.m_head_members) == in_order(members) && s.w.m_members_head == heads);
    QVERIFY(in_order(s.w.m_linkage_multimap) == in_order(links));
    QCOMPARE(s.w.m_elite_head_roi_set, (std::set<std::string>{"000020100050"}));
    QCOMPARE(user.seen.first(),
             "save lineage-file|Choose a filename to save under|lineage file (*.lineage)|" +
                 s.recording.path("tiny.lineage"));

    // What was dropped is left out, so that the file reads back.
    s.w.m_removed_roi_set = {"001020101050", "001021101050"};
    s.w.pushButton_drop_false_positive_clicked();
    s.page->save_lineage_file->click();
    CapturedLines err(std::cerr);
    QVERIFY(read_lineage(s.recording.folder.path("b.lineage"), "tiny", *s.w.m_roidb));
    s.page->read_lineage_file->click();    // names ROIs that are gone: refused, nothing changed
    QCOMPARE(err.take().size(), 1);
    QVERIFY(!s.w.m_head_members.contains("001020101050"));    // nor does any map name them
}

void TestGuiLineage::treeFollowsEditsAndMovesTheWindow()
{
    TwoNuclei s;
    s.make_all();
    s.page->tree->click();
    auto* const tree = s.w.findChild<TreeWindow*>();
    QVERIFY(tree && QTest::qWaitForWindowExposed(tree));
    QCOMPARE(tree->tree().nodes.size(), std::size_t(6));
    QCOMPARE(tree->tree().columns, 2);
    const std::size_t node = tree->tree().find("002020122050");
    const QPoint at = tree->view().place(tree->tree(), tree->tree().nodes[node]).toPoint();
    QTest::mouseClick(tree, Qt::LeftButton, {}, at);
    QCOMPARE(s.w.m_time_point, 2);
    QCOMPARE(s.w.m_mouse_over_roi_set, s.w.member("002020122050"));

    s.w.m_lineage_mode_roi_set = {"000020100050"};    // from now on the tree of one nucleus
    s.w.mergeUnits("002020102050", "002020122050");
    s.page->elite->click();
    QTRY_COMPARE(tree->tree().nodes.size(), std::size_t(3));    // itself, its child, and the merged unit
    QVERIFY(tree->tree().nodes[tree->tree().find("002020102050")].is_doubtful);

    const QPointF before = tree->view().place(tree->tree(), tree->tree().nodes[0]);
    QWheelEvent zoom(before, before, {}, {0, 120}, {}, {}, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(tree, &zoom);
    const QPointF after = tree->view().place(tree->tree(), tree->tree().nodes[0]);
    QVERIFY((after - before).manhattanLength() < 1e-6);    // about the pointer
    QVERIFY(tree->view().row_height > tree_view().row_height / 5);
}

void TestGuiLineage::exportsTheTree()
{
    TwoNuclei s;
    s.make_all();
    s.w.link("001020101050", "002020122050");
    QCOMPARE(QString::fromStdString(newick(make_tree(LineageAccess(s.w), ""))),
             "(('002020102050':1,'002020122050':1)'001020101050':1)'000020100050';\n"
             "('001020121050':1)'000020120050';\n");
    s.page->tree->click();
    auto* const tree = s.w.findChild<TreeWindow*>();
    ScriptedDialogs user({s.recording.path("t.svg"), s.recording.path("t.png"), s.recording.path("t.nwk")});
    for (QPushButton* button : {tree->save_svg, tree->save_png, tree->save_newick})
        button->click();
    QCOMPARE(QString::fromStdString(s.recording.folder.contents("t.svg")).count("<circle") +
                 QString::fromStdString(s.recording.folder.contents("t.svg")).count("<ellipse"),
             6 + 5);    // the units and the legend
    QVERIFY(!QImage(s.recording.path("t.png")).isNull());
    QCOMPARE(s.recording.folder.contents("t.nwk"), newick(tree->tree()));
}

void TestGuiLineage::nothingTakesTheKeyboard()
{
    TwoNuclei s;
    for (const QWidget* control : s.page->findChildren<QWidget*>())
        QCOMPARE(control->focusPolicy(), Qt::NoFocus);
    s.page->help->click();
    auto* const help = s.w.findChild<HelpWindow*>();
    QVERIFY(help && help->toHtml().contains(s.w.color[31].name()));
    s.w.color[31] = QColor("#123456");
    s.page->help->click();
    QVERIFY(help->toHtml().contains("#123456"));
}

QTEST_MAIN(TestGuiLineage)
#include "test_gui_lineage.moc"
