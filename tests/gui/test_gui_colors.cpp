// The colour table and the file it is read from.
#include "../support/captured_lines.h"
#include "../support/open_window.h"

namespace {

struct config_row {
    const char* what;
    const char* words;    // null when there is no file
    int index;
    const char* color;    // null for the toolkit's invalid colour
    const char* others = "#ffffff";
};

// `others` is the colour of entry 66, which no file names.
const config_row config_table[] = {
    {"no file", nullptr, 31, "#00ffda", "#f7c3ff"},
    {"no file, no state", nullptr, 5, "#ffffff", "#f7c3ff"},
    {"one pair", "SELECTED red", 31, "#ff0000"},
    {"the rest is white", "SELECTED red", 0, "#ffffff"},
    {"lines do not count", "DEFAULT\n#a8a8ff SELECTED\n\n\t#00ffda\n", 31, "#00ffda"},
    {"two states", "FORWARD_BACKWARD #010203", 3, "#010203"},
    {"lineage", "LINEAGE #010203", 4, "#010203"},
    {"one state within the other", "ELITE_FORWARD #010203", 15, "#010203"},
    {"highlighted", "HIGHLIGHT-SELECTED #010203", 95, "#010203"},
    {"removed", "xREMOVEDx_HIGHLIGHT #010203", 111, "#010203"},
    {"no keyword", "BOGUS #010203", 0, "#010203"},
    {"lower case is no keyword", "SELECTED #010203 selected #040506", 31, "#010203"},
    {"the later pair counts", "FORWARD red FORWARD #010203", 1, "#010203"},
    {"no color", "FORWARD reddish", 1, nullptr},
    {"a word too many", "FORWARD #010203 BACKWARD", 1, "#010203"},
    {"a word and blanks too many", "FORWARD #010203 FORWARD \n", 1, "#010203"},
    {"empty", "", 31, "#ffffff"},
};

bool holds(const WindowProbe& w, const config_row& row)
{
    const QColor expected = row.color ? QColor(row.color) : QColor();
    return w.color[row.index] == expected && w.color[66] == QColor(row.others);
}

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
            QVERIFY2(holds(WindowProbe(), row), row.what);
        }
        const temp_folder home;
        qputenv("HOME", home.path("").c_str());
        std::filesystem::create_directory(home.path(".orvbrowser"));
        QVERIFY2(holds(WindowProbe(), config_table[0]), "a folder cannot be read");
        qunsetenv("HOME");
        QVERIFY2(holds(WindowProbe(), config_table[0]), "no home");
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
