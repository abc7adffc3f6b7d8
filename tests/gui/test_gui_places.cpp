// Going somewhere and back, what is pointed out there, corrections in few inputs.
#include "../support/captured_lines.h"
#include "../support/mother_and_daughters.h"
#include "../support/paged_window.h"

#include <QPushButton>
#include <QScrollBar>

namespace {

QLineEdit* field_of_go_to(PagedWindow& w) { return w.findChild<QLineEdit*>("go_to"); }

}    // namespace

class TestGuiPlaces : public QObject {
    Q_OBJECT
private slots:
    void keysLeadToPlanesWithRois()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        put_roi(w, {1, 1, 3, 0});
        put_roi(w, {1, 1, 30, 0});
        const struct {
            int key, modifiers;
            place there;
        } steps[] = {
            {Qt::Key_PageDown, 0, {0, 30}},
            {Qt::Key_PageDown, 0, {0, 30}},
            {Qt::Key_PageUp, 0, {0, 20}},
            {Qt::Key_PageUp, 0, {0, 3}},
            {Qt::Key_PageUp, 0, {0, 3}},
            {Qt::Key_Home, 0, {0, 20}},
            {Qt::Key_Right, Qt::ControlModifier, {4, 20}},
            {Qt::Key_Left, Qt::ControlModifier, {0, 20}},
            {Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier, {1, 20}},    // as without
            {Qt::Key_Left, 0, {0, 20}},
            {Qt::Key_Home, Qt::ShiftModifier, {0, 20}},
            {Qt::Key_PageDown, Qt::ControlModifier, {0, 20}},
            {Qt::Key_Backspace, 0, {4, 20}},
            {Qt::Key_Backspace, 0, {0, 20}},
            {Qt::Key_Backspace, 0, {0, 3}},
        };
        for (const auto& step : steps) {
            w.press(step.key, step.modifiers);
            QCOMPARE(w.here(), step.there);
        }
        QTest::mouseClick(&w, Qt::ForwardButton, {}, {300, 300});
        QCOMPARE(w.here(), (place{0, 20}));
        QTest::mouseClick(&w, Qt::BackButton, {}, {300, 300});
        QCOMPARE(w.here(), (place{0, 3}));
        w.m_auto = true;
        w.pushButton_auto->setChecked(true);
        w.press(Qt::Key_Right, Qt::ControlModifier);
        QCOMPARE(w.here(), (place{0, 3}));
    }

    void theWayBackBeginsWhereTheRecordingOpened()
    {
        const SmallRecording recording;
        (void)recording.folder.with("file.recording.json", R"({"focal_planes": [25, 30]})");
        PagedWindow w(recording);
        QCOMPARE(w.here(), (place{0, 25}));
        w.press(Qt::Key_Right, Qt::ControlModifier);
        w.press(Qt::Key_Backspace);
        QCOMPARE(w.here(), (place{0, 25}));
        w.press(Qt::Key_Backspace);
        QCOMPARE(w.here(), (place{0, 25}));
    }

    void undoShowsWhatItChanged()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        const Family family(w);
        const std::string far = put_unit(
            w, {put_roi(w, {900, 800, 39, 2}), put_roi(w, {900, 800, 40, 2}), put_roi(w, {900, 800, 41, 2})});
        const CapturedLines out(std::cout), err(std::cerr);
        w.set_elite({far}, true);
        w.undo();
        QCOMPARE(w.here(), (place{2, 40}));
        QVERIFY(w.frame_canvas->rect().contains(w.shown_by().screen_area({900, 800, 4, 4})));
        QCOMPARE(w.marks().ringed(), far);
        w.press(Qt::Key_Up);
        w.redo();
        QCOMPARE(w.here(), (place{2, 39}));    // what changed was on view
        w.press(Qt::Key_Backspace);
        QCOMPARE(w.here(), (place{0, 20}));
    }

    void goesToWhatIsTyped()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        const Family family(w);
        const auto go = [&w](const QString& text, int key = Qt::Key_Return) {
            w.press(Qt::Key_G);
            QVERIFY(field_of_go_to(w)->isVisible());
            QTest::keyClicks(field_of_go_to(w), text);
            QTest::keyClick(field_of_go_to(w), Qt::Key(key));
            QVERIFY(!field_of_go_to(w)->isVisible());
        };
        go("3 12");
        QCOMPARE(w.here(), (place{3, 12}));
        go(QString::number(w.ID(family.large)));
        QCOMPARE(w.here(), (place{1, 21}));
        QCOMPARE(w.marks().ringed(), family.large);
        w.call(family.mother, "AB");
        go(" ABa ");
        QCOMPARE(w.marks().ringed(), family.large);
        go("001022010005");    // of the same unit
        QCOMPARE(w.here(), (place{1, 22}));
        QCOMPARE(w.marks().ringed(), family.large);
        go("004020030025");    // in no unit
        QCOMPARE(w.here(), (place{4, 20}));
        go("1 1", Qt::Key_Escape);
        QCOMPARE(w.here(), (place{4, 20}));
        move_pointer(w, 11, 6);
        go("1 20");
        QVERIFY2(w.said().contains("ROI 001020010005"), qPrintable(w.said()));
        go("4 20");
        for (const char* nowhere : {"77", "nonsense", "999999999999", "4 20 7"}) {
            go(nowhere);
            QCOMPARE(w.here(), (place{4, 20}));
            QVERIFY(w.said().contains(nowhere));
        }
        go("99 99");
        QCOMPARE(w.here(), (place{4, 55}));
        w.press(Qt::Key_G);
        QKeyEvent held(QEvent::KeyPress, Qt::Key_G, {}, "g", true);
        QCoreApplication::sendEvent(field_of_go_to(w), &held);
        QVERIFY(field_of_go_to(w)->text().isEmpty());
        for (const Qt::FocusReason reason : {Qt::PopupFocusReason, Qt::ActiveWindowFocusReason}) {
            QFocusEvent lost(QEvent::FocusOut, reason);
            QCoreApplication::sendEvent(field_of_go_to(w), &lost);
            QCOMPARE(field_of_go_to(w)->isVisible(), reason == Qt::PopupFocusReason);
        }
        QVERIFY(w.frame_canvas->hasFocus());
    }

    void walksShowTheUnitInTheMiddleAndRingIt()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        const Family family(w);
        const std::string far = put_unit(w, {put_roi(w, {900, 800, 40, 2}), put_roi(w, {900, 800, 41, 2})});
        const CapturedLines out(std::cout);
        w.findChild<QPushButton*>("unlinked")->click();
        QCOMPARE(w.here(), (place{2, 40}));
        QVERIFY(w.frame_canvas->rect().contains(w.shown_by().screen_area({900, 800, 4, 4})));
        QCOMPARE(w.marks().ringed(), far);
        w.press(Qt::Key_Up);
        QCOMPARE(w.marks().ringed(), far);
        w.press(Qt::Key_Backspace);
        QCOMPARE(w.here(), (place{0, 20}));
        QCOMPARE(w.marks().ringed(), std::string());
        w.hide();    // as where work is taken up at start
        w.canvas().fit();
        w.press(Qt::Key_0);
        Places::of(w)->show_unit(far);
        w.show();
        QVERIFY(w.frame_canvas->rect().contains(w.shown_by().screen_area({900, 800, 4, 4})));
        w.press(Qt::Key_Backspace);
        w.press(Qt::Key_0);
        const QImage before = w.seen();
        w.findChild<QPushButton*>("dead_end")->click();
        QCOMPARE(w.here(), (place{1, 21}));    // of the large daughter
        QCOMPARE(w.shown_by(), view_transform());
        QVERIFY(w.seen() != before);
    }

    void chosenNucleusIsSteppedAlongItsTrack()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        const Family family(w);
        w.press(Qt::Key_BracketRight);
        QVERIFY(w.said().startsWith("No nucleus is chosen"));
        w.click_with(Qt::ControlModifier, {11, 6});
        QCOMPARE(w.chosen(), family.mother);
        QVERIFY(w.m_selected_roi_set.empty());
        w.press(Qt::Key_BracketRight);
        QCOMPARE(w.chosen(), family.large);
        QCOMPARE(w.here(), (place{1, 21}));
        w.press(Qt::Key_BracketRight);
        QCOMPARE(w.chosen(), family.large);
        w.press(Qt::Key_BracketLeft, Qt::AltModifier);
        QCOMPARE(w.chosen(), family.large);
        w.press(Qt::Key_BracketLeft);
        QCOMPARE(w.chosen(), family.mother);
        w.click_with(Qt::ControlModifier, {30, 25});    // in no unit
        QCOMPARE(w.chosen(), family.mother);
    }

    void wholeUnitsAreMarkedWithOneClick()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        const Family family(w);
        w.click_with(Qt::ShiftModifier, {11, 6}, Qt::RightButton);
        QCOMPARE(w.m_removed_roi_set, keys{family.mother});
        w.click_with(Qt::ShiftModifier, {11, 6}, Qt::RightButton);
        QVERIFY(w.m_removed_roi_set.empty());
        w.click_with(Qt::ShiftModifier | Qt::ControlModifier, {11, 6}, Qt::RightButton);
        QCOMPARE(w.m_removed_roi_set.size(), std::size_t(5));
        w.press(Qt::Key_E);    // in a mode the modifiers mean nothing
        w.click_with(Qt::ShiftModifier, {11, 6}, Qt::RightButton);
        QCOMPARE(w.m_removed_roi_set.size(), std::size_t(5));
        w.press(Qt::Key_Escape);
        w.setCurrentTimePoint(3);
        const std::string lone = "003020010005";
        const keys column{lone, put_roi(w, {10, 5, 21, 3}), put_roi(w, {10, 6, 22, 3})};
        put_roi(w, {13, 8, 23, 3});    // shares too little
        w.m_removed_roi_set.clear();
        for (const bool on : {true, false}) {
            w.click_with(Qt::ShiftModifier, {11, 6}, Qt::RightButton);
            QCOMPARE(w.m_removed_roi_set, on ? column : keys());
        }
        w.m_removed_roi_set = {"003021010005"};    // which z tracking does not pass
        w.click_with(Qt::ShiftModifier, {11, 6}, Qt::RightButton);
        QCOMPARE(w.m_removed_roi_set, (keys{lone, "003021010005"}));
    }

    void oneLinkIsRemovedAlone()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        const Family family(w);
        w.press(Qt::Key_U);
        QVERIFY(w.said().startsWith("No nucleus is chosen"));
        w.click_with(Qt::ControlModifier, {11, 6});
        w.setCurrentTimePoint(1);
        w.press(Qt::Key_U);
        QVERIFY(w.said().startsWith("Remove a link"));
        w.press(Qt::Key_Escape);
        QVERIFY(!w.said().startsWith("Remove a link"));
        w.m_linkage_multimap.emplace(family.small, family.mother);    // stored twice
        w.press(Qt::Key_U);
        const QCursor hand = w.frame_canvas->cursor();
        QTest::keyPress(&w, Qt::Key_Space);
        drag(w, Qt::LeftButton, {100, 100}, {120, 120});
        QTest::keyRelease(&w, Qt::Key_Space);
        w.press(Qt::Key_0);
        QCOMPARE(w.frame_canvas->cursor().shape(), hand.shape());
        for (const int held : {0, int(Qt::ShiftModifier)})
            w.click_with(held, {11, 6}, Qt::RightButton);
        QVERIFY(w.m_removed_roi_set.empty());
        click(w, 41, 21);
        QCOMPARE(w.said(), QString("Removed links: %1 %2").arg(w.ID(family.mother)).arg(w.ID(family.small)));
        QVERIFY(!w.isLink(family.mother, family.small));
        QVERIFY(w.isLink(family.mother, family.large));
        w.press(Qt::Key_U);
        click(w, 41, 21);
        QVERIFY(w.said().startsWith("There is no link"));
        QVERIFY(w.m_selected_roi_set.empty());
        click(w, 41, 21);
        QCOMPARE(w.m_selected_roi_set, keys{family.small});
    }

    // As in the main window, wherever the key is let go.
    void keysOfTheTreeAreLetGoToo()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        w.findChild<QPushButton*>("tree")->click();
        QWidget* tree = nullptr;
        for (QWidget* const window : QApplication::topLevelWidgets())
            if (window->objectName() == "treeWindow")
                tree = window;
        QVERIFY(tree && QTest::qWaitForWindowExposed(tree));
        tree->activateWindow();
        tree->setFocus();
        const QImage before = w.seen();
        QTest::keyPress(tree, Qt::Key_H);
        QVERIFY(w.seen() != before);
        QTest::keyRelease(tree, Qt::Key_H);
        QCOMPARE(w.seen(), before);
        QTest::keyClick(tree, Qt::Key_G);
        QTRY_COMPARE(QApplication::focusWidget(), static_cast<QWidget*>(field_of_go_to(w)));
    }
};

QTEST_MAIN(TestGuiPlaces)
#include "test_gui_places.moc"
