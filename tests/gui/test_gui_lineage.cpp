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

    void make_all() { page->make_units->click(), page->make_links->click(); }
};

struct LinkedNuclei : TwoNuclei {
    LinkedNuclei() { make_all(); }
};

}    // namespace

class TestGuiLineage : public QObject {
    Q_OBJECT

private slots:
    void makesUnitsAndLinksOfTheWholeRecording()
    {
        TwoNuclei s;
        QCOMPARE(s.page->overlap->value(), 0.0);    // the best by docs/units.md
        s.make_all();
        QCOMPARE(s.w.units(1), (std::set<std::string>{"001020101050", "001020121050"}));
        QCOMPARE(s.w.member("001020101050"), (std::set<std::string>{"001020101050", "001021101050"}));
        QCOMPARE(s.w.m_members_head.size(), std::size_t(12));
        QCOMPARE(s.w.m_linkage_multimap.size(), std::size_t(4));
        QCOMPARE(s.w.parents("002020122050"), (std::set<std::string>{"001020121050"}));
        QVERIFY(!s.w.m_auto_make_units);
        s.w.m_elite_head_roi_set = {"000020100050", "002020122050"};
        s.page->elite->click();    // of the time point on view one of two is: both become
        QCOMPARE(s.w.m_elite_head_roi_set.size(), std::size_t(3));
        s.page->elite->click();
        QCOMPARE(s.w.m_elite_head_roi_set, (std::set<std::string>{"002020122050"}));
    }

    void makesUnitsOnlyOfWhatIsInNone()
    {
        TwoNuclei s;
        s.w.m_removed_roi_set = {"000021120050"};
        s.page->make_units->click();
        QCOMPARE(s.w.head("000021120050"), "N/A");
        s.w.m_removed_roi_set.clear();
        s.page->make_units->click();
        QCOMPARE(s.w.head("000021120050"), "000021120050");
    }

    void asksBeforeItReplacesLinks()
    {
        LinkedNuclei s;
        s.w.link("000020100050", "001020121050");
        const auto links = s.w.m_linkage_multimap;
        ScriptedDialogs user({"&No", "&Yes"});
        s.page->make_links->click();
        QCOMPARE(s.w.m_linkage_multimap, links);
        s.page->make_links->click();
        QCOMPARE(user.seen.size(), 2);
        QCOMPARE(s.w.m_linkage_multimap.size(), links.size() - 1);
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
        QCOMPARE(s.w.units(0).size(), std::size_t(2));
        QVERIFY(is_locked_inside && s.w.units(2).empty());
        QVERIFY(s.page->make_units->isEnabled() && !s.page->stop->isEnabled());
        s.page->close_recording->click();
        QCoreApplication::processEvents();
        QVERIFY(!s.w.m_roidb && !s.page->make_units->isEnabled() && s.page->help->isEnabled());
    }

    void walksThroughTheDoubtfulUnits()
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

    void countsWhatThereIs()
    {
        LinkedNuclei s;
        s.w.link("000020100050", "001020121050");
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

    void treeFollowsEditsAndMovesTheWindow()
    {
        LinkedNuclei s;
        s.page->tree->click();
        auto* const tree = s.w.findChild<TreeWindow*>();
        QVERIFY(tree && QTest::qWaitForWindowExposed(tree));
        QCOMPARE(tree->tree().nodes.size(), std::size_t(6));
        const auto& node = tree->tree().nodes[tree->tree().find("002020122050")];
        QTest::mouseClick(tree, Qt::LeftButton, {}, tree->view().place(tree->tree(), node).toPoint());
        QCOMPARE(s.w.m_time_point, 2);
        QCOMPARE(s.w.m_mouse_over_roi_set, s.w.member("002020122050"));

        s.w.m_lineage_mode_roi_set = {"000020100050"};    // from now on the tree of one nucleus
        s.w.mergeUnits("002020102050", "002020122050");
        s.page->elite->click();
        QTRY_COMPARE(tree->tree().nodes.size(), std::size_t(3));    // itself, its child, and the merged unit
        QVERIFY(tree->tree().nodes[tree->tree().find("002020102050")].is_doubtful);
    }

    void exportsTheTree()
    {
        LinkedNuclei s;
        s.w.link("001020101050", "002020122050");
        QCOMPARE(QString::fromStdString(newick(make_tree(LineageAccess(s.w), ""))),
                 "(('002020102050':1,'002020122050':1)'001020101050':1)'000020100050';\n"
                 "('001020121050':1)'000020120050';\n");
        s.page->tree->click();
        auto* const tree = s.w.findChild<TreeWindow*>();
        ScriptedDialogs user(
            {s.recording.path("t.svg"), s.recording.path("t.png"), s.recording.path("t.nwk")});
        for (QPushButton* button : {tree->save_svg, tree->save_png, tree->save_newick})
            button->click();
        const QString svg = QString::fromStdString(s.recording.folder.contents("t.svg"));
        QCOMPARE(svg.count("<circle") + svg.count("<ellipse"), 6 + 5);    // the units and the legend
        QVERIFY(!QImage(s.recording.path("t.png")).isNull());
        QCOMPARE(s.recording.folder.contents("t.nwk"), newick(tree->tree()));
    }

    void nothingTakesTheKeyboard()
    {
        TwoNuclei s;
        for (const QWidget* control : s.page->findChildren<QWidget*>())
            QCOMPARE(control->focusPolicy(), Qt::NoFocus);
        s.page->help->click();
        QVERIFY(s.w.findChild<HelpWindow*>()->toHtml().contains(s.w.color[31].name()));
    }
};

QTEST_MAIN(TestGuiLineage)
#include "test_gui_lineage.moc"
