// Undo and redo in the window: its keys, its page, and the offer to take up what was not saved.
#include "../support/captured_lines.h"
#include "../support/curation_probe.h"
#include "../support/editing.h"
#include "history_page.h"
#include "message_line.h"
#include "pages.h"
#include "tree_window.h"

#include <QTimer>

namespace {

const std::string square = "000020010005";    // of time point 0
const std::string point = "000020030025";

void control(QWidget* to, int key, Qt::KeyboardModifiers more = {})
{
    QTest::keyClick(to, Qt::Key(key), Qt::ControlModifier | more);
}

}    // namespace

class TestGuiHistory : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        for (const char* name : {"XDG_RUNTIME_DIR", "XDG_STATE_HOME"})
            qputenv(name, folder.path("").c_str());
    }

    void eachThingAPersonDoesIsOneStep()
    {
        const SmallRecording recording;
        OpenWindow w(recording);
        const CapturedLines lines(std::cout);
        const std::pair<const char*, std::function<void()>> things[] = {
            {"select all", [&] { w.pushButton_select_all->click(); }},
            {"deselect", [&] { click(w, 30, 25); }},
            {"false positive", [&] { click(w, 30, 25, Qt::RightButton); }},
            {"forward, to the end",
             [&] {
                 w.pushButton_auto->click();
                 w.pushButton_forward_tracking->click();
             }},
            {"unit", [&] { w.makeLinkage(1), w.curation::make_units(0, 0), w.curation::make_units(1, 0); }},
            {"link", [&] { w.link(square, "001020010005"); }},
            {"elite", [&] { w.setCurrentTimePoint(0), QTest::keyClick(&w, 'e'), click(w, 11, 6); }},
            {"unlink", [&] { w.setCurrentTimePoint(1), QTest::keyClick(&w, 'r'), click(w, 11, 6); }},
            {"drop", [&] { w.pushButton_drop_false_positive->click(); }},
            {"reset", [&] { w.pushButton_reset->click(); }}};
        std::vector<decltype(state_of(w))> states{state_of(w)};
        for (const auto& [what, act] : things) {
            act();
            QVERIFY2(w.can_undo() && !w.can_redo(), what);
            states.push_back(state_of(w));
        }
        QCOMPARE(w.work().history().position(), std::size(things) + 1);    // the units of two time points
        QTest::keyClick(&w, 'l'), click(w, 11, 6);                         // choosing alone is none
        w.pushButton_stop->click(), w.setCurrentTimePoint(3), w.pushButton_reset->click();
        QCOMPARE(w.work().history().position(), std::size(things) + 1);
        for (std::size_t i = states.size() - 1; i-- > 0;) {
            control(&w, Qt::Key_Z);
            if (i == 4)    // the units of two time points
                control(&w, Qt::Key_Z);
            QVERIFY2(state_of(w) == states[i], things[i].first);
        }
        QVERIFY(!w.can_undo() && w.unsaved_edits() == 0);
        while (w.can_redo())
            control(&w, Qt::Key_Y);
        QVERIFY(state_of(w) == states.back());
    }

    void theKeysBelongToUndoWhereverTheyArePressed()
    {
        const SmallRecording recording;
        OpenWindow w(recording);
        const CapturedLines lines(std::cout);
        w.m_lineage_mode_roi_set = {square};
        control(&w, Qt::Key_Z), control(&w, Qt::Key_S), control(&w, Qt::Key_Y);    // nothing to do
        QVERIFY(!w.m_split_mode && w.m_selected_roi_set.empty());
        click(w, 11, 6);
        w.lineEdit_time_point->setFocus();
        w.lineEdit_time_point->selectAll();
        QTest::keyClicks(w.lineEdit_time_point, "3");
        control(w.lineEdit_time_point, Qt::Key_Z);
        QVERIFY(w.m_selected_roi_set.empty() && w.m_time_point == 0 && w.can_redo());    // shown where it is
        control(w.pushButton_exit, Qt::Key_Z, Qt::ShiftModifier);
        QCOMPARE(w.m_selected_roi_set, keys({square}));
        control(&w, Qt::Key_Z);
        TreeWindow tree(w);
        control(&tree, Qt::Key_Y);
        QCOMPARE(w.m_selected_roi_set, keys({square}));
        bool was_swallowed = false;
        QTimer::singleShot(0, &w, [&] {
            control(&w, Qt::Key_Z);
            was_swallowed = !w.can_undo() && w.m_selected_roi_set.contains(square);
        });
        w.pushButton_z->click();
        QVERIFY(was_swallowed && w.can_undo());
        control(&w, Qt::Key_S);
        QVERIFY(w.unsaved_edits() == 0 && QFile::exists(recording.path("file.info")));
    }

    void thePageListsTheStepsAndOffersWhatWasNotSaved()
    {
        const SmallRecording recording;
        QString offer;
        {
            OpenWindow w(recording);
            add_pages(w);
            auto* const page = w.findChild<HistoryPage*>();
            const CapturedLines lines(std::cout);
            click(w, 11, 6);
            click(w, 30, 25);
            QTRY_COMPARE(page->unsaved->text(), "2 edits are unsaved");
            const auto title = [page](int row) {
                return page->history->model()->index(row, 0).data().toString();
            };
            QVERIFY(title(0) == "Opened" && title(2) == QString("Select ") + point.c_str());
            w.tabWidget_control_panel->setCurrentWidget(page);
            w.setCurrentTimePoint(3);
            emit page->history->clicked(page->history->model()->index(0, 0));
            QVERIFY(w.m_selected_roi_set.empty() && w.m_time_point == 0);
            QCOMPARE(MessageLine::of(w)->text(), QString("Undone: Select ") + square.c_str());
            QTRY_VERIFY(page->redo->isEnabled());
            page->redo->click();
            QCOMPARE(w.m_selected_roi_set, keys({square}));
            QTRY_COMPARE(page->unsaved->text(), "1 edit is unsaved");
            QVERIFY(!page->take_up->isEnabled());
        }
        OpenWindow w(recording);
        add_pages(w);
        QVERIFY(w.openRoiFile(recording.file));
        auto* const page = w.findChild<HistoryPage*>();
        QVERIFY(MessageLine::of(w)->text().startsWith("1 edit of ") &&
                MessageLine::of(w)->text().contains("not saved"));
        QTRY_VERIFY(page->take_up->isEnabled());
        page->take_up->click();
        QVERIFY(w.m_selected_roi_set == keys({square}) && w.can_undo() && w.can_redo());
        QVERIFY(w.shown(10, 5) == w.color[31]);
        page->save_all->click();
        QTRY_COMPARE(page->unsaved->text(), "Nothing is unsaved");
        QVERIFY(recording.folder.contents("file.info").find(square) != std::string::npos);
    }

private:
    const temp_folder folder;
};

QTEST_MAIN(TestGuiHistory)
#include "test_gui_history.moc"
