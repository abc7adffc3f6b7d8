// Reading and saving ROI files through the dialogs, and dropping the ROIs marked as removed.
#include "../support/captured_lines.h"
#include "../support/open_window.h"
#include "../support/scripted_dialogs.h"

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
        QVERIFY(w.m_roidb->db.size() == 10 && w.m_selected_roi_set.size() == 1);
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
        ScriptedDialogs user({recording.path("after.roi")});
        w.m_removed_roi_set = {"000020010005", "003020030025", "no key", "777020030025"};
        std::string expected = recording.folder.contents("file.roi");
        w.pushButton_drop_false_positive->click();
        QCOMPARE(w.pictures_since_last_asked(), 1);
        QVERIFY(w.shown(10, 5) != w.color[47] && w.shown(30, 25) == w.color[0]);
        w.pushButton_save_roifile->click();
        for (const std::string record : {"10 5 20 0 222233330000\n", "30 25 20 3 2301\n"})
            expected.erase(expected.find(record), record.size());
        QCOMPARE(recording.folder.contents("after.roi"), expected);
    }

    void withoutARecordingThereIsNothingToSaveOrDrop()
    {
        const SmallRecording recording;
        CapturedLines errors(std::cerr);
        ShownWindow w;
        ScriptedDialogs user({recording.path("new.roi")});
        w.pushButton_save_roifile->click();
        w.pushButton_drop_false_positive->click();
        QCOMPARE(errors.take(), {"No recording is open: nothing to save in " + recording.path("new.roi")});
        QVERIFY(!QFile::exists(recording.path("new.roi")) && w.pushButton_save_roifile->isEnabled());
    }
};

QTEST_MAIN(TestGuiFiles)
#include "test_gui_files.moc"
