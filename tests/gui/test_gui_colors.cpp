// The colour table and the file it is read from.
#include "../support/captured_lines.h"
#include "../support/open_window.h"

namespace {

struct config_row {
    const char* what;
    const char* words;    // null when there is no file
    int index;
    const char* color;                 // null for the toolkit's invalid colour
    const char* others = "#ffffff";    // of entry 66, which no file names
};

const config_row config_table[] = {
    {"no file", nullptr, 31, "#00ffda", "#f7c3ff"},
    {"lines do not count", "DEFAULT\n#a8a8ff SELECTED\n\n\t#00ffda\n", 31, "#00ffda"},
    {"removed", "xREMOVEDx_HIGHLIGHT #010203", 111, "#010203"},
    {"lower case is no keyword", "SELECTED #010203 selected #040506", 31, "#010203"},
    {"the later pair counts", "FORWARD red FORWARD #010203", 1, "#010203"},
    {"no color", "FORWARD reddish", 1, nullptr},
    {"a word and blanks too many", "FORWARD #010203 FORWARD \n", 1, "#010203"},
    {"empty", "", 31, "#ffffff"},
};

}    // namespace

class TestGuiColors : public QObject {
    Q_OBJECT
private slots:
    void theFileDecidesTheTable()
    {
        CapturedLines errors(std::cerr);
        for (const auto& row : config_table) {
            const temp_folder home;
            qputenv("HOME", home.path("").c_str());
            if (row.words)
                (void)home.with(".orvbrowser", row.words);
            const WindowProbe w;
            QVERIFY2(w.color[row.index] == (row.color ? QColor(row.color) : QColor()), row.what);
            QVERIFY2(w.color[66] == QColor(row.others), row.what);
        }
        qunsetenv("HOME");
        QCOMPARE(WindowProbe().color[66], QColor("#f7c3ff"));
        QVERIFY(errors.take().isEmpty());
    }

    void readingTheFileAgainShowsItAtOnce()
    {
        const SmallRecording recording;
        const temp_folder home;
        qputenv("HOME", home.path("").c_str());
        OpenWindow w(recording);
        w.color[5] = Qt::green;
        CapturedLines errors(std::cerr);
        w.pushButton_reload_config_file_clicked();
        QCOMPARE(errors.take(), {"Cannot find the config file in your home directory."});
        QCOMPARE(w.color[5], QColor(Qt::green));
        QCOMPARE(w.pictures_since_last_asked(), 0);
        (void)home.with(".orvbrowser", "DEFAULT #010203");
        w.pushButton_reload_config_file_clicked();
        QCOMPARE(w.shown(10, 5), QColor("#010203"));
        QCOMPARE(w.color[5], QColor(Qt::white));
        QVERIFY(errors.take().isEmpty());
    }
};

QTEST_MAIN(TestGuiColors)
#include "test_gui_colors.moc"
