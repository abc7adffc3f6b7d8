// What the message line and the canvas say, and how long.
#include "../support/captured_lines.h"
#include "../support/mother_and_daughters.h"
#include "../support/paged_window.h"
#include "busy_run.h"

#include <QPushButton>
#include <QSpinBox>
#include <QTabBar>

#include <functional>

namespace {

struct PaintCount : QObject {
    int paints = 0;
    bool eventFilter(QObject*, QEvent* e) override
    {
        paints += e->type() == QEvent::Paint;
        return false;
    }
};

}    // namespace

class TestGuiMessages : public QObject {
    Q_OBJECT
private slots:
    // The first words of what is said after each input.
    void theMessageLineSaysWhatIsGoingOn()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        const Family family(w);
        const CapturedLines out(std::cout), err(std::cerr);
        const auto name = [&w](const std::string& unit) { return QString::number(w.ID(unit)); };
        w.press(Qt::Key_A);
        QVERIFY(w.said().startsWith("No nucleus is chosen"));
        w.click_with(Qt::ControlModifier, {11, 6});
        QCOMPARE(w.said(), "Chosen: " + name(family.mother));
        w.press(Qt::Key_M);
        QVERIFY(w.said().startsWith("Merge:"));
        click(w, 11, 6);
        QVERIFY2(w.said().contains("with itself"), qPrintable(w.said()));
        w.press(Qt::Key_M);
        click(w, 30, 25);
        QVERIFY(w.said().contains("in no unit"));
        w.setCurrentTimePoint(1);
        w.press(Qt::Key_A);
        QVERIFY(w.said().startsWith("Link:"));
        click(w, 41, 21);
        QVERIFY(w.said().startsWith("Not linked"));
        w.release_child(family.mother, family.small);
        w.press(Qt::Key_A);
        click(w, 41, 21);
        QCOMPARE(w.said(), "Linked " + name(family.mother) + " -> " + name(family.small));
        move_pointer(w, 42, 21);    // the same ROI
        QVERIFY(w.said().startsWith("Linked"));
        move_pointer(w, 11, 6);
        QCOMPARE(w.said(), QString("x 11, y 6; grey %1; ROI %2; unit %3; parents %4; children none")
                               .arg(SmallRecording::grey(1, 20))
                               .arg(family.large.c_str(), name(family.large), name(family.mother)));
        w.call(family.mother, "P1 (left)");
        QCOMPARE(w.said(), "Named " + name(family.mother) + " (P1 (left))");
        move_pointer(w, 41, 21);
        move_pointer(w, 11, 6);
        QVERIFY2(w.said().endsWith("unit " + name(family.large) + " (P1 (left)a); parents " +
                                   name(family.mother) + " (P1 (left)); children none"),
                 qPrintable(w.said()));
        w.press(Qt::Key_S);
        click(w, 11, 6);
        QVERIFY(w.said().startsWith("Split: click the second parent."));
        const auto paints = [&w](int key) {
            PaintCount count;
            QCoreApplication::processEvents();
            w.frame_canvas->installEventFilter(&count);
            w.press(key);
            QCoreApplication::processEvents();
            return count.paints > 0;
        };
        QVERIFY(paints(Qt::Key_S));    // the number of the first is gone
        QVERIFY(!paints(Qt::Key_S));
        click(w, 11, 6);
        QVERIFY(paints(Qt::Key_U));
        w.press(Qt::Key_S);
        w.press(Qt::Key_Escape);
        QVERIFY(w.armed_mode() == ORVBrowser::armed::none && w.m_split_parents.empty());
        QCOMPARE(w.cursor().shape(), Qt::ArrowCursor);
        w.setCurrentFocalPlane(40);
        QVERIFY(w.said().startsWith("Cannot find "));
        w.press(Qt::Key_H);
        QVERIFY(!w.said().startsWith("Cannot find "));
    }

    void theMessageLineSaysWhatWasRefusedAndFound()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        const Family family(w);
        const CapturedLines out(std::cout), err(std::cerr);
        const auto name = [&w](const std::string& unit) { return QString::number(w.ID(unit)); };
        const auto find = [&w](const char* walk) { w.findChild<QPushButton*>(walk)->click(); };
        w.press(Qt::Key_E);
        click(w, 30, 25);
        QVERIFY2(w.said().contains("in no unit"), qPrintable(w.said()));
        w.press(Qt::Key_M);
        for (const Qt::Key key : {Qt::Key_A, Qt::Key_S}) {
            w.press(key);
            QVERIFY(w.said().startsWith("No nucleus is chosen"));
        }
        w.press(Qt::Key_Escape);
        w.press(Qt::Key_L);
        click(w, 11, 6);
        QCOMPARE(w.said(), "Chosen: " + name(family.mother));
        w.press(Qt::Key_S);
        click(w, 30, 25);    // in no unit
        QVERIFY(w.said().contains("in no unit"));
        click(w, 11, 6);
        QVERIFY(w.said().startsWith("Split: click where to cut."));
        click(w, 50, 35);    // on no ROI
        QVERIFY(w.said().startsWith("Not split: a parent is in no unit"));
        w.press(Qt::Key_BracketRight);
        QCOMPARE(w.said(), "Chosen: " + name(family.large));
        find("dead_end");
        QVERIFY(w.said().startsWith("It has no child.") && w.chosen() == family.small);    // behind it
        w.release_child(family.mother, family.large);
        find("unlinked");
        QVERIFY(w.said().startsWith("It has no parent") && w.chosen() == family.large);
        const QString said = w.said();
        QKeyEvent held(QEvent::KeyPress, Qt::Key_N, {}, "n", true);
        QCoreApplication::sendEvent(&w, &held);
        QCOMPARE(w.said(), said);
        QCOMPARE(w.marks().ringed(), family.large);
        find("doubtful");
        QVERIFY(w.said().endsWith(": none"));
        w.link(family.large, family.mother);    // in whichever order
        QCOMPARE(w.said(), "Linked " + name(family.mother) + " -> " + name(family.large));
        w.close_common();
        w.press(Qt::Key_M);
        w.press(Qt::Key_Escape);
        QVERIFY(w.armed_mode() == ORVBrowser::armed::none);
    }

    // Whatever the next press or key is meant for.
    void errorsAndRingsEndWithTheNextInput()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        const Family family(w);
        const CapturedLines out(std::cout), err(std::cerr);
        w.tabWidget_control_panel->setCurrentWidget(w.mainPage);
        const auto press = [&w](QWidget* on) { QTest::mousePress(on, Qt::LeftButton); };
        const std::function<void()> inputs[] = {
            [&] { press(w.pushButton_select_all); }, [&] { press(w.slider_time_point); },
            [&] { press(w.tabWidget_control_panel->findChild<QTabBar*>()); },
            [&] { QTest::keyClick(w.lineEdit_time_point, Qt::Key_1); }};
        for (const auto& input : inputs) {
            w.findChild<QPushButton*>("dead_end")->click();
            QVERIFY(!w.marks().ringed().empty());
            error_line("Something is wrong");
            QCOMPARE(w.said(), QString("Something is wrong"));
            input();
            QVERIFY(w.said() != "Something is wrong");
            QCOMPARE(w.marks().ringed().empty(), &input == &inputs[0]);
        }
    }

    void aRunKeepsItsPointerAndLeavesTheKeyboardInAField()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        auto* const page = w.findChild<QWidget*>("viewPage");
        w.tabWidget_control_panel->setCurrentWidget(page);
        auto* const field = page->findChild<QSpinBox*>();
        field->setFocus();
        {
            const BusyRun run(w);
            w.disarm();
            QCOMPARE(w.cursor().shape(), Qt::WaitCursor);
        }
        QCOMPARE(w.cursor().shape(), Qt::ArrowCursor);
        QVERIFY(field->hasFocus());
    }

    void whatLiesUnderThePointerFollowsTheWheel()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        move_pointer(w, 11, 6);
        QVERIFY(w.said().contains("ROI 000020010005"));
        turn_wheel(w, {11, 6}, -120, {});
        QVERIFY(!w.said().contains("ROI"));
        QVERIFY(w.said().contains(QString("grey %1").arg(SmallRecording::grey(0, 21))));
        w.press(Qt::Key_1);
        turn_wheel(w, {11, 6}, 120, Qt::ControlModifier);
        turn_wheel(w, {11, 6}, -240, Qt::ShiftModifier);
        const QPoint p = w.shown_by().picture_pixel({11, 6});
        QVERIFY(w.said().startsWith(QString("x %1, y %2;").arg(p.x()).arg(p.y())));
    }

    void emptyPlanesSayWhereTheRoisAre()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        QCOMPARE(w.marks().notice(), QString());
        const CapturedLines err(std::cerr);
        w.setCurrentFocalPlane(22);    // an image without ROIs
        QCOMPARE(w.marks().notice(), QString());
        w.setCurrentFocalPlane(40);
        QCOMPARE(w.marks().notice(), "Nothing on focal plane 40. ROIs lie on planes 20 to 20: press Home.");
        w.setMaxFocalPlane(10);
        QVERIFY2(w.marks().notice().contains("Scale: last focal plane"), qPrintable(w.marks().notice()));
        w.setMaxFocalPlane(55);
        put_roi(w, {1, 1, 41, 0});
        w.setCurrentFocalPlane(41);
        w.press(Qt::Key_T);    // hides it
        QCOMPARE(w.marks().notice(), QString());
        qputenv("ORVBROWSER_IMAGE_ROOT", recording.folder.path("nowhere").c_str());
        QVERIFY(w.openRoiFile(recording.file));
        QVERIFY(w.marks().notice().contains("nowhere/tiny"));
        QVERIFY(w.marks().notice().contains("--image-root"));
    }
};

QTEST_MAIN(TestGuiMessages)
#include "test_gui_messages.moc"
