// ROI, info and false-positive files through the dialogs; dropping, restoring and marking many at once.
#include "../support/captured_lines.h"
#include "../support/editing.h"
#include "../support/failing_reads.h"
#include "../support/scripted_dialogs.h"

namespace {

const std::string square = "000020010005";    // of time point 0
const std::string point = "000020030025";

const struct {
    keys ORVBrowser::*marks;
    QPushButton* ORVBrowser::*read;
    QPushButton* ORVBrowser::*save;
    std::string keyword;
    QString read_dialog, save_dialog, rest;
} kinds[] = {
    {&WindowProbe::m_selected_roi_set, &ORVBrowser::pushButton_read_info, &ORVBrowser::pushButton_save_info,
     "SELECT", "open info-file", "save info-file", "info file (*.info)|tiny.info"},
    {&WindowProbe::m_removed_roi_set, &ORVBrowser::pushButton_read_FP, &ORVBrowser::pushButton_save_FP, "FP",
     "open fp-file", "save false-positive ROIs file", "fp file (*.fp)|tiny.fp"},
};

}    // namespace

class TestGuiFiles : public QObject {
    Q_OBJECT
private slots:
    void readingOpensTheRecordingNamedInTheFile()
    {
        const SmallRecording recording("inside");
        ShownWindow w;
        ScriptedDialogs user({recording.path("file.roi"), {}});
        w.pushButton_read_roifile->click();
        QCOMPARE(w.lineEdit_dataset->text(), "inside");
        QCOMPARE(w.m_roidb->db.size(), 10U);
        QVERIFY2(w.shown(50, 35).isValid() && w.m_imgdb->db.size() == 1, "its own images");
        (void)w.pictures_since_last_asked();
        w.pushButton_read_roifile->click();    // cancelled: paints, and that is all
        QCOMPARE(w.pictures_since_last_asked(), 1);
        const QString asked = "open file dialog|Choose a filename to read|roi file (*.roi)|";
        QCOMPARE(user.seen,
                 QStringList({asked + recording.path("dataset.roi"), asked + recording.path("inside.roi")}));
    }

    void whatCannotBeReadLeavesTheRecordingOpen()
    {
        const SmallRecording recording;
        const QString missing = recording.path("missing.roi");
        CapturedLines errors(std::cerr);
        OpenWindow w(recording);
        w.setCurrentTimePoint(3);
        w.setMaxTimePoint(100);
        w.m_selected_roi_set = {"000020010005"};
        ScriptedDialogs user({missing});
        w.pushButton_read_roifile->click();
        QCOMPARE(errors.take(), {"No such file or directory: " + missing});
        QVERIFY2(w.m_max_time_point == 4 && w.m_time_point == 3, "only the bounds are taken anew");
        QVERIFY(!w.openRoiFile(recording.folder.path("tiny")));    // a folder
        QCOMPARE(errors.take(), {"roidb: Cannot open " + recording.path("tiny")});
        const QString wrong = recording.path("wrong");
        for (const std::string contents :
             {"NAME tiny\nSELECT 000020010005\n", " TRACK 1 0 4 0\n", "\xff\xd8\xff"}) {
            (void)recording.folder.with("wrong", contents + '\0');
            QVERIFY(!w.openRoiFile(wrong.toStdString()));
            QCOMPARE(errors.take(), {"Not an ROI file: " + wrong});
        }
        QVERIFY(w.m_roidb->db.size() == 10 && w.m_selected_roi_set.size() == 1);
        (void)recording.folder.with("wrong", "tiny");
        QVERIFY(w.openRoiFile(wrong.toStdString()) && w.m_roidb->db.empty());
        QCOMPARE(errors.take().first(), "0 ROIs read");
    }

    void savingAsksBeforeItReplaces()
    {
        const std::tuple<QString, QStringList, bool> cases[] = {
            {"new.roi", {}, true},     {"tiny.roi", {"&Yes"}, true},   {"tiny.roi", {"&No"}, false},
            {"tiny.roi", {""}, false}, {"nowhere/new.roi", {}, false}, {"", {}, false}};
        for (const auto& [name, answer, written] : cases) {
            const SmallRecording recording;
            (void)recording.folder.with("tiny.roi", "old");
            const QString path = name.isEmpty() ? QString() : recording.path(name.toLatin1());
            OpenWindow w(recording);
            ScriptedDialogs user(QStringList(path) + answer);
            CapturedLines errors(std::cerr);
            w.pushButton_save_roifile->click();
            QStringList asked = {"save file dialog|Choose a filename to save under|roi file (*.roi)|" +
                                 recording.path("tiny.roi")};
            if (!answer.isEmpty())
                asked << "Overwrite File? -- ORVBrowser|A file called " + path +
                             " already exists. Do you want to overwrite it?|&Yes*|&No";
            QCOMPARE(user.seen, asked);
            const std::string original = recording.folder.contents("file.roi");
            const std::string saved = recording.folder.contents(written ? name.toStdString() : "tiny.roi");
            QCOMPARE(saved, written ? original : "old");
            QCOMPARE(errors.take().join('|'),
                     name.startsWith("nowhere") ? "roidb: Cannot open " + path : QString());
            QVERIFY(w.pushButton_save_roifile->isEnabled() && w.cursor().shape() == Qt::ArrowCursor);
        }
    }

    void droppedRoisAreNotSaved()
    {
        const SmallRecording recording;
        OpenWindow w(recording);
        ScriptedDialogs user({recording.path("after.roi"), recording.path("new.roi")});
        w.m_removed_roi_set = {"000020010005", "003020030025", "no key", "777020030025"};
        std::string expected = recording.folder.contents("file.roi");
        w.pushButton_drop_false_positive->click();
        QCOMPARE(w.pictures_since_last_asked(), 1);
        QVERIFY(w.shown(10, 5) != w.color[47] && w.shown(30, 25) == w.color[0]);
        w.pushButton_save_roifile->click();
        for (const std::string record : {"10 5 20 0 222233330000\n", "30 25 20 3 2301\n"})
            expected.erase(expected.find(record), record.size());
        QCOMPARE(recording.folder.contents("after.roi"), expected);
        CapturedLines errors(std::cerr);
        w.close_common();
        w.m_removed_roi_set = {"001020010005"};
        w.pushButton_drop_false_positive->click();
        w.pushButton_save_roifile->click();
        QCOMPARE(errors.take(), {"No recording is open: nothing to save in " + recording.path("new.roi")});
        QVERIFY(!QFile::exists(recording.path("new.roi")) && w.pushButton_save_roifile->isEnabled());
    }

    void marksComeBackFromTheirFile()
    {
        for (const auto& kind : kinds) {
            const SmallRecording recording;
            const QString name = recording.path("marks");
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
            for (const bool replaced : {false, true, true, true}) {    // refused, granted, cancelled, failing
                (w.*kind.save)->click();
                QCOMPARE(recording.folder.contents("marks") == "NAME tiny\n", replaced);
            }
            QCOMPARE(errors.take(), {"Cannot open " + recording.path("nowhere/marks")});
            QCOMPARE(user.seen.join(' ').remove(recording.path("")).section(kind.rest, 0, 1),
                     kind.save_dialog + "|Choose a filename to save under|" + kind.rest + ' ' +
                         kind.read_dialog + "|Choose a filename to read|");
            QVERIFY((w.*kind.save)->isEnabled() && w.focusWidget() == w.frame_canvas);
        }
    }

    void onlyMarksOfTheRecordingAreRead()
    {
        const std::tuple<const char*, keys, QString> cases[] = {
            {"FP a\nNAME tiny\nFP b FP a\nOTHER c\n", {"0", "a", "b"}, {}},
            {"FP a\nNAME other\nFP b\n", {"0", "a"}, "different dataset"},
            {"NAME tiny\nFP a\nFP", {"0", "a"}, {}},
            {nullptr, {"0"}, "No such file or directory: marks"}};
        for (const auto& [contents, read, error] : cases) {
            const SmallRecording recording;
            if (contents)
                (void)recording.folder.with("marks", contents);
            OpenWindow w(recording);
            w.m_removed_roi_set = {"0"};
            CapturedLines errors(std::cerr);
            const ScriptedDialogs user({recording.path("marks"), ""});
            w.pushButton_read_FP->click();
            w.pushButton_read_FP->click();    // cancelled
            QCOMPARE(w.m_removed_roi_set, read);
            QCOMPARE(errors.take().join('|').remove(recording.path("")), error);
        }
    }

    void selectAllAndCleanUpMarkManyAtOnce()
    {
        const SmallRecording recording("tiny", 0, 1);
        OpenWindow w(recording);
        CapturedLines errors(std::cerr);
        w.m_selected_roi_set = {"no such ROI"};
        w.pushButton_clean->click();
        QVERIFY(w.m_removed_roi_set.empty() && errors.take().size() == 1);
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
        const std::pair<std::string, QString> cases[] = {
            {good, {}},
            {"", "No such file or directory: later"},
            {"other\n10 5 20 3 2301\n", "different dataset"},
            {"tiny\n10 5 20 3 2301\n10 5", "Not an ROI file to its end: later"},
            {"tiny\n10 5 20 3 2301\n10 5 20 4 2301\n",
             "later: cannot be read to its end: Input/output error"},
            {"tiny\n10 5 20 2 2301\n", "No ROIs after time point 2 in later"}};
        for (const auto& [contents, error] : cases) {
            const SmallRecording recording;
            if (!contents.empty())
                (void)recording.folder.with("later", contents);
            OpenWindow w(recording);
            CapturedLines errors(std::cerr);
            for (const int t : {4, 3, 2})
                w.setCurrentTimePoint(t);    // the rasters are kept
            const bool breaks_off = error.endsWith("Input/output error");
            const failing_reads disk(breaks_off ? recording.folder.path("later") : "", 20);
            const ScriptedDialogs user({recording.path("later"), ""});
            w.pushButton_restore->click();
            w.pushButton_restore->click();    // cancelled
            QCOMPARE(user.seen.value(0).section('|', 0, 2),
                     "open restore file dialog|Choose a filename to read|roi file (*.roi)");
            QCOMPARE(errors.take().join('|').remove(recording.path("")), error);
            const bool restored = contents == good;
            QCOMPARE(w.m_roidb->db.size(), restored ? 3 * 2 + 2U : 10U);
            QVERIFY(w.m_max_time_point == (restored ? 6 : 4) && w.m_time_point == 2);
            w.timeNext();
            QCOMPARE(w.xyROI(13, 8).empty(), restored);    // one pixel now
        }
    }
};

QTEST_MAIN(TestGuiFiles)
#include "test_gui_files.moc"
