// Keys, wheel and pointer: the modes, and what a click does in each.
#include "../support/captured_lines.h"
#include "../support/editing.h"

#include <QPointer>
#include <QTimer>
#include <QWheelEvent>

#include <functional>

namespace {

const std::string square = "000020010005";    // of time point 0
const std::string point = "000020030025";
const std::string later = "001020010005";    // the square of time point 1
const std::string above = "000019010005";    // the head of the square's unit, on the plane above

using W = WindowProbe;
constexpr bool ORVBrowser::*flags[] = {
    &W::m_manual_elite, &W::m_lineage_mode, &W::m_remove_lineage_mode, &W::m_add_lineage_mode,
    &W::m_merge_mode,   &W::m_split_mode,   &W::m_show_centroid,       &W::m_show_tracked_rois_mode};

// The keys of the modes that are on, and + with the hand.
std::string modes(const WindowProbe& w)
{
    std::string on;
    for (std::size_t i = 0; i < std::size(flags); ++i)
        if (w.*flags[i])
            on += "elramsct"[i];
    return w.cursor().shape() == Qt::PointingHandCursor ? on + '+' : on;
}

// What clicks on units change: elite units, the lineage head, the parents of `later`, the unit of `square`.
QString units_of(WindowProbe& w)
{
    std::ostringstream text;
    text << w.m_elite_head_roi_set << '|' << w.m_lineage_mode_roi_set << '|' << w.parents(later);
    return QString::fromStdString(text.str() + '|' + w.head(square));
}

QString with_keys(QString text)
{
    for (const auto& [name, key] :
         {std::pair("SQUARE", square), {"POINT", point}, {"LATER", later}, {"ABOVE", above}})
        text.replace(name, key.c_str());
    return text;
}

// With units, and links of two of them; a split is only noted.
class SplitProbe : public OpenWindow {
public:
    explicit SplitProbe(const SmallRecording& recording) : OpenWindow(recording)
    {
        put_roi(*this, {10, 5, 19, 0});
        for (const auto& members : {std::vector{above, square}, {point}, {later}})
            put_unit(*this, members);
        m_linkage_multimap = {{later, above}, {later, above}};
    }

    void manualSplit(std::string doubt, keys parents, int x, int y, int z) override
    {
        asked << doubt << " from " << parents << " at " << x << ' ' << y << ' ' << z;
        click(*this, x, y);    // the second half of a double click, while the split lets events be processed
    }

    std::ostringstream asked;
};

}    // namespace

class TestGuiInput : public QObject {
    Q_OBJECT
    const SmallRecording recording;

private slots:
    void keysSwitchModes()
    {
        const std::tuple<const char*, const char*, const char*> cases[] = {
            {"a", "", "a+"},   {"aA", "", ""},    {"s", "", "s+"},    {"sS", "", ""},  {"R", "r+", "r+"},
            {"rr", "", ""},    {"w", "l+", "l+"}, {"L", "l+", "l+"},  {"wl", "", ""},  {"mx", "", ""},
            {"x", "m+", "m+"}, {"e", "e+", "e+"}, {"ew", "l+", "l+"}, {"c", "c", "c"}, {"T", "t", "t"}};
        for (const auto& [typed, without_head, with_head] : cases)
            for (const bool has_head : {false, true}) {
                OpenWindow w(recording);
                w.m_lineage_mode_roi_set = has_head ? keys{square} : keys{};
                QTest::keyClicks(&w, typed);
                QCOMPARE(modes(w).c_str(), has_head ? with_head : without_head);
            }
        OpenWindow w(recording);
        w.m_lineage_mode_roi_set = {square};
        QTest::keyClicks(&w, "larw");    // ends all of them
        QVERIFY(modes(w) == "+" && w.m_lineage_mode_roi_set.empty());
        w.lineEdit_time_point->setFocus();
        QTest::keyClicks(w.focusWidget(), "mtz");    // typed, not meant for the canvas
        QVERIFY(modes(w) == "+" && w.m_time_point == 0);
        QTest::mouseClick(w.frame_canvas, Qt::LeftButton, {}, {50, 30});
        QTest::keyClicks(w.focusWidget(), "mz");    // the hand is back after the wait
        QVERIFY(modes(w) == "m+");
    }

    void aClickMarksTheRoiUnderIt()
    {
        SplitProbe w(recording);
        w.m_members_head.erase(point);
        CapturedLines lines(std::cout);
        click(w, 11, 6);
        click(w, 30, 25);
        QCOMPARE(lines.take().join('|'), with_keys("roi(SQUARE) head(ABOVE)|roi(POINT) head(N/A)"));
        QVERIFY(w.m_selected_roi_set == keys({square, point}) && w.shown(10, 5) == w.color[31]);
        click(w, 11, 6);
        click(w, 30, 25, Qt::MiddleButton);
        QVERIFY(lines.take().isEmpty() && w.m_selected_roi_set == keys({point}));
        for (const int x : {30, 11, 30})    // the second click takes it back
            click(w, x, x - 5, Qt::RightButton);
        click(w, -1, -1);
        w.close_common();
        click(w, 11, 6);
        QVERIFY(w.m_removed_roi_set == keys({square}) && w.m_selected_roi_set == keys({point}));
    }

    void thePointerLightsARoiWithoutAWholePicture()
    {
        const std::tuple<int, int, keys> path[] = {{50, 30, {}},      {11, 6, {square}}, {12, 7, {square}},
                                                   {30, 25, {point}}, {-3, 5, {point}},  {50, 30, {}}};
        OpenWindow w(recording);
        const auto leave = [&w] {
            QEvent e(QEvent::Leave);
            QCoreApplication::sendEvent(w.frame_canvas, &e);
        };
        for (const auto& [x, y, lit] : path) {
            move_pointer(w, x, y);
            QVERIFY(w.pictures_since_last_asked() == 0 && w.m_mouse_over_roi_set == lit);
            QVERIFY(w.shown(10, 5) == w.color[lit.contains(square) ? 64 : 0]);
        }
        move_pointer(w, 11, 6);
        leave();
        QVERIFY(w.m_mouse_over_roi_set.empty() && w.shown(10, 5) == w.color[0]);
        w.m_selected_roi_set = {square};    // seen at the next look, whatever was drawn elsewhere meanwhile
        QPixmap other(60, 40);
        w.drawROI(other);
        move_pointer(w, 30, 25);
        QCOMPARE(w.shown(10, 5), w.color[31]);
    }

    // Whatever was used last, the next key is the canvas's.
    void theKeyboardComesBackToTheCanvas()
    {
        OpenWindow w(recording);
        const auto type = [&w](int key) { QTest::keyClick(w.focusWidget(), Qt::Key(key)); };
        const auto steps_with = [&w, type](int key, int& position) {
            const int before = position;
            type(key);
            return position - before;
        };
        QTest::mouseClick(w.pushButton_drop_false_positive, Qt::LeftButton);
        QCOMPARE(steps_with(Qt::Key_Right, w.m_time_point), 1);
        QTest::mouseClick(w.slider_focal_plane, Qt::LeftButton, {}, {200, 10});
        QCOMPARE(steps_with(Qt::Key_Right, w.m_time_point), 1);
        QCOMPARE(steps_with(Qt::Key_Down, w.m_focal_plane), 1);

        for (const int done : {Qt::Key_Return, Qt::Key_Escape}) {
            w.lineEdit_time_point->setFocus();
            w.lineEdit_time_point->selectAll();
            QTest::keyClicks(w.focusWidget(), "3");
            for (const int key : {Qt::Key_Home, Qt::Key_Right, Qt::Key_Left, Qt::Key_E})
                QCOMPARE(steps_with(key, w.m_time_point), 0);
            QVERIFY(w.m_time_point == 3 && steps_with(Qt::Key_Up, w.m_focal_plane) == -1);
            QCOMPARE(w.focusWidget(), w.lineEdit_time_point);
            type(done);
            QCOMPARE(w.focusWidget(), w.frame_canvas);
        }
        QVERIFY(modes(w).empty() && w.m_selected_roi_set.empty());

        w.pushButton_exit->setFocus(Qt::TabFocusReason);    // Right does not walk on to another button
        QCOMPARE(steps_with(Qt::Key_Right, w.m_time_point), 1);
        w.tabWidget_control_panel->setCurrentWidget(w.mainPage);
        w.pushButton_auto->setFocus(Qt::TabFocusReason);
        type(Qt::Key_Space);
        QVERIFY(w.m_auto);
        QTRY_COMPARE(w.focusWidget(), w.frame_canvas);
        QWheelEvent e({5, 5}, w.slider_focal_plane->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton,
                      {}, Qt::NoScrollPhase, false);
        const int plane = w.m_focal_plane;
        QCoreApplication::sendEvent(w.slider_focal_plane, &e);
        QCOMPARE(w.m_focal_plane, plane + 1);
    }

    // Nothing of it is touched afterwards; the sanitizers look.
    void aHandlerMayDeleteTheWindow()
    {
        const std::function<void(WindowProbe&)> actions[] = {
            [](auto& w) { QTest::keyClick(&w, Qt::Key_Z); },
            [](auto& w) { w.pushButton_drop_false_positive->click(); },
            [](auto& w) { w.pushButton_read_clicked(); },
            [](auto& w) { w.pushButton_read_roifile->click(); },
            [](auto& w) { w.pushButton_save_roifile->click(); },
            [](auto& w) { w.pushButton_read_FP->click(); },
            [](auto& w) { w.pushButton_save_info->click(); },
            [](auto& w) { w.pushButton_restore->click(); },
            [](auto& w) { w.pushButton_split_clicked(); },
            [](auto& w) { w.view(square); }};
        const CapturedLines errors(std::cerr), lines(std::cout);
        for (const auto& action : actions) {
            const QPointer<OpenWindow> w = new OpenWindow(recording);
            w->m_selected_roi_set = w->m_removed_roi_set = {square, point};
            w->m_removed_roi_set.erase(square);
            QTimer::singleShot(0, w, [w] { delete w; });
            action(*w);
            QTRY_VERIFY(!w);
        }
    }

    void whatThePointerLightsIsPaintedAsInAWholePicture()
    {
        OpenWindow w(recording);
        for (int i = 0; i < 12; ++i)    // each over its neighbours
            put_roi(w, {2 + 4 * i, 3 + i, 20, 0}, 9, 5 + i % 3 * 4);
        w.setCurrentTimePoint(0);
        for (int i = 0; i < 60; ++i) {
            if (i % 20 == 19)    // the rasters of before are dropped on the way
                QTest::keyClicks(&w, "ffffdddd");
            move_pointer(w, i * 7 % 60, i * 11 % 36);
            const QImage seen = w.frame_canvas->picture().toImage();
            w.setCurrentTimePoint(0);
            QCOMPARE(seen, w.frame_canvas->picture().toImage());
        }
    }

    void aModeTakesOneLeftClickOnARoi()
    {
        // The key, the lineage head chosen before, the time point, what it comes to, and the printed lines.
        const std::tuple<char, QString, int, QString, QString> cases[] = {
            {'e', "", 0, "ABOVE||ABOVE|ABOVE", ""},
            {'l', "", 0, "|ABOVE|ABOVE|ABOVE", ""},
            {'r', "", 1, "|LATER||ABOVE", ""},
            {'a', "POINT", 1, "|POINT|ABOVE POINT|ABOVE", ""},
            {'a', "POINT", 0, "|POINT|ABOVE|ABOVE", "Cannot link POINT and ABOVE"},
            {'m', "POINT", 0, "|POINT|POINT|POINT", "mergeUnits: POINT ABOVE"},
            {'e', "", 0, "N/A|||N/A", ""},
            {'r', "", 0, "|N/A||N/A", ""},
            {'a', "N/A", 1, "|N/A||N/A", "Cannot link N/A and N/A"},
            {'m', "N/A", 0, "|N/A||N/A", "mergeUnits: N/A N/A|Cannot merge N/A and N/A: not two units"}};
        for (const auto& [key, head, t, after, printed] : cases) {
            SplitProbe w(recording);
            if (after.endsWith("N/A"))    // no ROI is in a unit
                w.pushButton_reset->click();
            if (!head.isEmpty())
                w.m_lineage_mode_roi_set = {with_keys(head).toStdString()};
            w.setCurrentTimePoint(t);
            QTest::keyClick(&w, key);
            const QString before = units_of(w);
            CapturedLines lines(std::cout);
            click(w, 50, 30);
            click(w, 11, 6, Qt::RightButton);
            QVERIFY(modes(w) == std::string(1, key) + '+' && units_of(w) == before);
            click(w, 11, 6);
            QCOMPARE(units_of(w), with_keys(after));
            QCOMPARE(lines.take().join('|'), with_keys(printed));
            QVERIFY(modes(w).empty() && w.m_selected_roi_set.empty() && w.m_removed_roi_set.empty());
            w.m_linkage_multimap.emplace(later, "N/A");
            QTest::keyClicks(&w, "cfd");    // all of it can be drawn, units or none
        }
    }

    void aSplitTakesItsParentsAndThenAPlace()
    {
        SplitProbe w(recording);
        w.m_lineage_mode_roi_set = {later};
        QTest::keyClicks(&w, "s");
        for (const QPoint at : {QPoint(11, 6), {11, 6}, {50, 30}})    // the same unit again, and none
            click(w, at.x(), at.y());
        QCOMPARE(w.m_split_parents, keys({above}));
        QTest::keyClicks(&w, "ss");    // starts over
        QVERIFY(w.m_split_parents.empty());
        click(w, 11, 6);
        click(w, 30, 25);
        click(w, 50, 31, Qt::RightButton);
        QCOMPARE(w.asked.str().c_str(), with_keys("LATER from ABOVE POINT at 50 31 20"));
        QVERIFY(modes(w).empty() && w.m_split_parents.empty() && w.m_selected_roi_set.empty());
    }
};

QTEST_MAIN(TestGuiInput)
#include "test_gui_input.moc"
