// Keys, wheel and pointer: the modes, and what a click does in each.
#include "../support/captured_lines.h"
#include "../support/editing.h"

namespace {

using keys = std::set<std::string>;

const std::string square = "000020010005";    // of time point 0
const std::string point = "000020030025";
const std::string later = "001020010005";    // the square of time point 1
const std::string above = "000019010005";    // the head of the square's unit, on the plane above

constexpr bool ORVBrowser::*flags[] = {
    &WindowProbe::m_manual_elite,        &WindowProbe::m_lineage_mode,
    &WindowProbe::m_remove_lineage_mode, &WindowProbe::m_add_lineage_mode,
    &WindowProbe::m_merge_mode,          &WindowProbe::m_split_mode,
    &WindowProbe::m_show_centroid,       &WindowProbe::m_show_tracked_rois_mode};

// The keys of the modes that are on, in the order in which they take a click, and + with the hand.
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
    text << w.m_elite_head_roi_set << '|' << w.m_lineage_mode_roi_set << '|' << w.parents(later) << '|'
         << w.head(square);
    return QString::fromStdString(text.str());
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
    }

    std::ostringstream asked;
};

}    // namespace

class TestGuiInput : public QObject {
    Q_OBJECT
private slots:
    void keysSwitchModes()
    {
        const struct {
            const char *typed, *modes, *with_head;    // the same with a lineage head chosen
        } cases[] = {{"a", "", "a+"},   {"aA", "", ""},    {"s", "", "s+"},    {"sS", "", ""},
                     {"R", "r+", "r+"}, {"rr", "", ""},    {"L", "l+", "l+"},  {"w", "l+", "l+"},
                     {"wl", "", ""},    {"M", "m+", "m+"}, {"x", "m+", "m+"},  {"mx", "", ""},
                     {"e", "e+", "e+"}, {"ee", "", ""},    {"le", "e+", "e+"}, {"ew", "l+", "l+"},
                     {"c", "c", "c"},   {"cC", "", ""},    {"T", "t", "t"},    {"tt", "", ""},
                     {"qb", "", ""}};
        const SmallRecording recording;
        for (const auto& c : cases)
            for (const bool has_head : {false, true}) {
                OpenWindow w(recording);
                if (has_head)
                    w.m_lineage_mode_roi_set = {square};
                QTest::keyClicks(&w, c.typed);
                QCOMPARE(modes(w).c_str(), has_head ? c.with_head : c.modes);
            }
        OpenWindow w(recording);
        w.m_lineage_mode_roi_set = {square};
        QTest::keyClicks(&w, "larw");    // ends all of them
        QVERIFY(modes(w) == "+" && w.m_lineage_mode_roi_set.empty());
        (void)w.pictures_since_last_asked();
        QTest::keyClicks(&w, "ct");
        QCOMPARE(w.pictures_since_last_asked(), 2);
    }

    void aClickMarksTheRoiUnderIt()
    {
        const SmallRecording recording;
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
        click(w, 30, 25, Qt::RightButton);
        QVERIFY(w.m_removed_roi_set == keys({point}) && w.m_selected_roi_set == keys({point}));
        click(w, 30, 25, Qt::RightButton);
        put_roi(w, {595, 5, 20, 0}, 20, 20);    // reaches beyond the canvas
        for (const QPoint beside : {QPoint(-1, -1), {40, 30}, {602, 20}, {20, 602}})
            click(w, beside.x(), beside.y());
        w.close_common();
        click(w, 11, 6);
        QVERIFY(w.m_removed_roi_set.empty() && w.m_selected_roi_set == keys({point}) &&
                lines.take().isEmpty());
    }

    void theFirstRoiThatCoversThePixelIsHit()
    {
        const SmallRecording recording;
        OpenWindow w(recording);
        const std::string first = put_roi(w, {8, 4, 20, 0});    // its key is smaller, but it came later
        const std::string corner = keygen({40, 10, 20, 0});
        w.m_roidb->entry_plus({40, 10, 20, 0, "2222333301110001"});    // an L of 4 x 4 pixels
        const std::pair<QPoint, std::string> cases[] = {
            {{10, 5}, square}, {{13, 8}, square},  {{14, 8}, {}},      {{13, 9}, {}},
            {{9, 5}, first},   {{8, 4}, first},    {{7, 4}, {}},       {{30, 25}, point},
            {{31, 25}, {}},    {{40, 10}, corner}, {{43, 13}, corner}, {{41, 12}, {}}};
        for (const auto& [at, hit] : cases)
            QCOMPARE(w.xyROI(at.x(), at.y()), hit);
        w.focusDown();
        QCOMPARE(w.xyROI(10, 5), "");
    }

    void thePointerLightsARoiWithOnePicture()
    {
        const struct {
            int x, y, pictures;
            keys lit;
        } path[] = {{50, 30, 0, {}},      {51, 31, 0, {}},     {11, 6, 1, {square}}, {12, 7, 0, {square}},
                    {30, 25, 1, {point}}, {-3, 5, 0, {point}}, {50, 30, 1, {}},      {50, 31, 0, {}}};
        const SmallRecording recording;
        OpenWindow w(recording);
        for (const auto& step : path) {
            move_pointer(w, step.x, step.y);
            QVERIFY(w.pictures_since_last_asked() == step.pictures && w.m_mouse_over_roi_set == step.lit);
        }
    }

    void aModeTakesOneLeftClickOnARoi()
    {
        const struct {
            char key;
            const char* head;    // the lineage head chosen before
            int t;
            const char *after, *lines = "";
            bool is_reset = false;    // no ROI is in a unit
        } cases[] = {
            {'e', "", 0, "ABOVE||ABOVE|ABOVE"},
            {'l', "", 0, "|ABOVE|ABOVE|ABOVE"},
            {'r', "", 1, "|LATER||ABOVE"},
            {'a', "POINT", 1, "|POINT|ABOVE POINT|ABOVE"},
            {'a', "POINT", 0, "|POINT|ABOVE|ABOVE", "Cannot link POINT and ABOVE"},
            {'m', "POINT", 0, "|POINT|POINT|POINT", "mergeUnits: POINT ABOVE"},
            {'m', "", 0, "||ABOVE|ABOVE"},
            {'e', "", 0, "N/A|||N/A", "", true},
            {'l', "", 0, "|N/A||N/A", "", true},
            {'r', "", 0, "|N/A||N/A", "", true},
            {'a', "N/A", 1, "|N/A||N/A", "Cannot link N/A and N/A", true},
            {'m', "N/A", 0, "|N/A||N/A", "mergeUnits: N/A N/A|Cannot merge N/A and N/A: not two units", true},
        };
        const SmallRecording recording;
        for (const auto& c : cases) {
            SplitProbe w(recording);
            if (c.is_reset)
                w.pushButton_reset->click();
            if (*c.head)
                w.m_lineage_mode_roi_set = {with_keys(c.head).toStdString()};
            w.setCurrentTimePoint(c.t);
            QTest::keyClick(&w, c.key);
            const QString before = units_of(w);
            CapturedLines lines(std::cout);
            click(w, 50, 30);
            click(w, 11, 6, Qt::RightButton);
            QVERIFY2(modes(w) == std::string(1, c.key) + '+' && units_of(w) == before, c.after);
            click(w, 11, 6);
            QCOMPARE(units_of(w), with_keys(c.after));
            QCOMPARE(lines.take().join('|'), with_keys(c.lines));
            QVERIFY(modes(w).empty() && w.m_selected_roi_set.empty() && w.m_removed_roi_set.empty());
            w.m_linkage_multimap.emplace(later, "N/A");
            QTest::keyClicks(&w, "cfd");    // all of it can be drawn, units or none
        }
    }

    void ofTheModesThatAreArmedOneTakesTheClick()
    {
        const SmallRecording recording;
        SplitProbe w(recording);
        w.m_elite_head_roi_set = {above};
        w.m_split_parents = {square, point};
        for (const auto set : {&ORVBrowser::setSplitMode, &ORVBrowser::setMergeMode,
                               &ORVBrowser::setAddLineageMode, &ORVBrowser::setRemoveLineageMode,
                               &ORVBrowser::setLineageMode, &ORVBrowser::setManualEliteMode})
            (w.*set)(true);
        const CapturedLines lines(std::cout);
        for (std::string armed = "elrams"; !armed.empty(); armed.erase(0, 1)) {
            if (armed.size() > 1)    // only a split may be anywhere
                click(w, 50, 30);
            QVERIFY(modes(w) == armed + '+' && w.asked.str().empty());
            click(w, 11, 6);
            QVERIFY(w.m_elite_head_roi_set.empty());
        }
        QVERIFY(!w.asked.str().empty() && modes(w).empty());
        w.m_lineage_mode_roi_set = {};
        w.setAddLineageMode(true);    // no lineage head to add to
        click(w, 11, 6);
        QVERIFY(modes(w).empty() && w.m_linkage_multimap.size() == 1);
    }

    void aSplitTakesItsParentsAndThenAPlace()
    {
        const SmallRecording recording;
        SplitProbe w(recording);
        w.m_lineage_mode_roi_set = {later};
        QTest::keyClicks(&w, "s");
        for (const QPoint at : {QPoint(11, 6), {11, 6}, {50, 30}})    // the same unit again, and none
            click(w, at.x(), at.y());
        click(w, 30, 25, Qt::RightButton);
        QCOMPARE(w.m_split_parents, keys({above}));
        QTest::keyClicks(&w, "ss");    // starts over
        QVERIFY(w.m_split_parents.empty());
        click(w, 11, 6);
        click(w, 30, 25);
        QVERIFY(w.asked.str().empty());
        click(w, 50, 31, Qt::RightButton);
        QCOMPARE(w.asked.str().c_str(), with_keys("LATER from ABOVE POINT at 50 31 20"));
        QVERIFY(modes(w).empty() && w.m_split_parents.empty() && w.m_selected_roi_set.empty());
    }

    void theCanvasHasTheKeyboardUnlessSomebodyTypes()
    {
        const SmallRecording recording;
        OpenWindow w(recording);
        QCOMPARE(w.focusWidget(), w.frame_canvas);
        w.lineEdit_time_point->setFocus();
        QTest::keyClicks(w.focusWidget(), "mtz");
        QVERIFY(modes(w).empty() && w.m_time_point == 0);
        QTest::mouseClick(w.frame_canvas, Qt::LeftButton, {}, {50, 30});
        QTest::keyClicks(w.focusWidget(), "mz");    // the hand is back after the wait
        QVERIFY(modes(w) == "m+");
    }
};

QTEST_MAIN(TestGuiInput)
#include "test_gui_input.moc"
