// The selection and the removed marks: their files, and the buttons that mark or restore many ROIs at once.
#include "../support/captured_lines.h"
#include "../support/editing.h"
#include "../support/scripted_dialogs.h"

namespace {

using keys = std::set<std::string>;

const std::string square = "000020010005";    // of time point 0
const std::string point = "000020030025";

const struct {
    keys ORVBrowser::*marks;
    QPushButton* ORVBrowser::*read;
    QPushButton* ORVBrowser::*save;
    std::string keyword;
    const char *read_dialog, *save_dialog;
} kinds[] = {
    {&WindowProbe::m_selected_roi_set, &ORVBrowser::pushButton_read_info, &ORVBrowser::pushButton_save_info,
     "SELECT", "open info-file|Choose a filename to read|info file (*.info)|tiny.info",
     "save info-file|Choose a filename to save under|info file (*.info)|tiny.info"},
    {&WindowProbe::m_removed_roi_set, &ORVBrowser::pushButton_read_FP, &ORVBrowser::pushButton_save_FP, "FP",
     "open fp-file|Choose a filename to read|fp file (*.fp)|tiny.fp",
     "save false-positive ROIs file|Choose a filename to save under|fp file (*.fp)|tiny.fp"},
};

}    // namespace

class TestGuiMarks : public QObject {
    Q_OBJECT
private slots:
    void marksComeBackFromTheirFile()
    {
        for (const auto& kind : kinds) {
            const SmallRecording recording;
            const QString name = recording.path("marks"), asked = recording.path("");
            OpenWindow w(recording);
            CapturedLines errors(std::cerr);
            ScriptedDialogs user(
                {name, name, name, "&No", name, "&Yes", "", recording.path("nowhere/marks")});
            w.*kind.marks = {point, "any", square};
            (w.*kind.save)->click();
            const std::string words = '\n' + kind.keyword + ' ';
            QCOMPARE(recording.folder.contents("marks"),
                     "NAME tiny" + words + square + words + point + words + "any\n");
            w.*kind.marks = {"one more"};
            (w.*kind.read)->click();
            QCOMPARE(w.*kind.marks, keys({point, "any", square, "one more"}));
            QVERIFY(w.shown(10, 5) == w.color[kind.keyword == "FP" ? 47 : 31]);
            w.*kind.marks = {};
            for (const bool replaced :
                 {false, true, true, true}) {    // the last two: cancelled, no such folder
                (w.*kind.save)->click();
                QCOMPARE(recording.folder.contents("marks") == "NAME tiny\n", replaced);
            }
            QCOMPARE(errors.take(), {"Cannot open " + recording.path("nowhere/marks")});
            QCOMPARE(user.seen.value(0).remove(asked), kind.save_dialog);
            QCOMPARE(user.seen.value(1).remove(asked), kind.read_dialog);
            QVERIFY((w.*kind.save)->isEnabled() && w.focusWidget() == w.frame_canvas);
        }
    }

    void onlyMarksOfTheRecordingAreRead()
    {
        const struct {
            const char* contents;    // # stands for the keyword; none: there is no file
            keys read;               // added to the mark "0"
            QString error;
        } cases[] = {
            {"# a\nNAME tiny\n# b # a\nOTHER c\n", {"0", "a", "b"}, {}},
            {"NAME other\n# a\n", {"0"}, "different dataset"},
            {"# a\nNAME other\n# b\n", {"0", "a"}, "different dataset"},
            {"NAME tiny\n# a\n#", {"0", "a"}, {}},
            {"", {"0"}, {}},
            {nullptr, {"0"}, "No such file or directory: marks"},
        };
        for (const auto& kind : kinds) {
            for (const auto& c : cases) {
                const SmallRecording recording;
                if (c.contents)
                    (void)recording.folder.with(
                        "marks", QString(c.contents).replace('#', kind.keyword.c_str()).toStdString());
                OpenWindow w(recording);
                w.*kind.marks = {"0"};
                CapturedLines errors(std::cerr);
                const ScriptedDialogs user({recording.path("marks"), ""});
                (w.*kind.read)->click();
                (w.*kind.read)->click();    // cancelled
                QCOMPARE(w.*kind.marks, c.read);
                QCOMPARE(errors.take().join('|').remove(recording.path("")), c.error);
            }
        }
    }

    void selectAllAndCleanUpMarkManyAtOnce()
    {
        const SmallRecording recording("tiny", 0, 1);
        OpenWindow w(recording);
        CapturedLines errors(std::cerr);
        w.m_selected_roi_set = {"no such ROI"};
        w.pushButton_clean->click();
        QCOMPARE(errors.take(), {"Nothing is selected or tracked: no ROI is marked as removed"});
        QVERIFY(w.m_removed_roi_set.empty());
        const std::string elsewhere = put_roi(w, {10, 5, 50, 0});
        w.m_selected_roi_set = {};
        w.m_removed_roi_set = {point};
        w.pushButton_select_all->click();
        QVERIFY(w.m_selected_roi_set == keys({square, elsewhere}) && w.shown(10, 5) == w.color[31]);
        w.m_removed_roi_set = {};
        w.m_fwd_roi_set = {"001020010005"};
        w.m_bwd_roi_set = {"001020030025"};
        w.pushButton_clean->click();
        QCOMPARE(w.m_removed_roi_set, keys({point}));
        QVERIFY(w.shown(30, 25) == w.color[47] && w.m_roidb->db.size() == 5 && errors.take().isEmpty());
    }

    void restoringReplacesTheLaterTimePoints()
    {
        const char good[] = "tiny\n10 5 20 0 2301\n10 5 20 3 2301\n40 30 20 6 2301\n";
        const struct {
            std::string contents;    // none: there is no file
            QString error;
        } cases[] = {{good, {}},
                     {"", "No such file or directory: later"},
                     {"other\n10 5 20 3 2301\n", "different dataset"},
                     {"tiny\n10 5 20 3 2301\n10 5", "Not an ROI file to its end: later"},
                     {"tiny\n10 5 20 2 2301\n", "No ROIs after time point 2 in later"}};
        for (const auto& c : cases) {
            const SmallRecording recording;
            if (!c.contents.empty())
                (void)recording.folder.with("later", c.contents);
            OpenWindow w(recording);
            CapturedLines errors(std::cerr);
            for (const int t : {4, 3, 2})
                w.setCurrentTimePoint(t);    // the rasters are kept
            const ScriptedDialogs user({recording.path("later"), ""});
            w.pushButton_restore->click();
            w.pushButton_restore->click();    // cancelled
            QCOMPARE(user.seen.value(0).remove(recording.path("")),
                     "open restore file dialog|Choose a filename to read|roi file (*.roi)|tiny.roi");
            QCOMPARE(errors.take().join('|').remove(recording.path("")), c.error);
            const bool restored = c.contents == good;
            QCOMPARE(w.m_roidb->db.size(), restored ? 3 * 2 + 2U : 10U);
            QVERIFY(w.m_max_time_point == (restored ? 6 : 4) && w.m_time_point == 2);
            QCOMPARE(w.xyROI(13, 8), "002020010005");
            w.timeNext();
            QCOMPARE(w.xyROI(13, 8).empty(), restored);    // one pixel now
            QCOMPARE(w.xyROI(30, 25).empty(), restored);
            QVERIFY(w.cursor().shape() == Qt::ArrowCursor);
        }
    }
};

QTEST_MAIN(TestGuiMarks)
#include "test_gui_marks.moc"
