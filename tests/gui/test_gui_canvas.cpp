// What is drawn: the image, and each ROI in the colour of its state; the file with the colours.
#include "../support/captured_lines.h"
#include "../support/editing.h"

#include <QRegularExpression>

namespace {

// The square and the point of the recording, as keys of time point 1.
const std::string square = "001020010005";
const std::string point = "001020030025";

const char untouched[] = "#a8a8ff";

struct state_row {
    const char* what;
    void (*mark)(WindowProbe&);
    const char* color;              // of the square
    bool in_tracked_mode = true;    // the square is drawn when only tracked ROIs are
    const char* point_color = untouched;
};

const state_row state_table[] = {
    {"untouched", [](WindowProbe&) {}, untouched, false},
    {"under the pointer", [](WindowProbe& w) { w.m_mouse_over_roi_set = {square}; }, "#cfcfff", false},
    {"forward", [](WindowProbe& w) { w.m_fwd_roi_set = {square}; }, "#b7ff00"},
    {"backward", [](WindowProbe& w) { w.m_bwd_roi_set = {square}; }, "#ee86ff"},
    {"both ways", [](WindowProbe& w) { w.m_fwd_roi_set = w.m_bwd_roi_set = {square}; }, "#ff8f00"},
    {"selected", [](WindowProbe& w) { w.m_selected_roi_set = {square}; }, "#00ffda"},
    {"and tracked", [](WindowProbe& w) { w.m_selected_roi_set = w.m_fwd_roi_set = {square}; }, "#00ffda"},
    {"removed", [](WindowProbe& w) { w.m_removed_roi_set = {square}; }, "#000000"},
    {"and lit", [](WindowProbe& w) { w.m_removed_roi_set = w.m_mouse_over_roi_set = {square}; }, "#aaaaaa"},
    {"and selected", [](WindowProbe& w) { w.m_removed_roi_set = w.m_selected_roi_set = {square}; },
     "#ffffff"},
    {"the other", [](WindowProbe& w) { w.m_selected_roi_set = {point}; }, untouched, false, "#00ffda"},
    {"elite", [](WindowProbe& w) { put_unit(w, {square}), w.m_elite_head_roi_set = {square}; }, "#ffff00"},
    {"elite, no unit", [](WindowProbe& w) { w.m_elite_head_roi_set = {square}; }, untouched, false},
};

struct config_row {
    const char* what;
    const char* words;    // null when there is no file
    int index;
    const char* color;                 // null for the toolkit's invalid colour
    const char* others = "#ffffff";    // of entry 66, which no file names
};

const config_row config_table[] = {
    {"no file", nullptr, 31, "#00ffda", "#f7c3ff"},
    {"lineage head", nullptr, 4, "#ff5555", "#f7c3ff"},
    {"lines do not count", "DEFAULT\n#a8a8ff SELECTED\n\n\t#00ffda\n", 31, "#00ffda"},
    {"removed", "xREMOVEDx_HIGHLIGHT #010203", 111, "#010203"},
    {"lower case is no keyword", "SELECTED #010203 selected #040506", 31, "#010203"},
    {"the later pair counts", "FORWARD red FORWARD #010203", 1, "#010203"},
    {"no color", "FORWARD reddish", 1, nullptr},
    {"a word and blanks too many", "FORWARD #010203 FORWARD \n", 1, "#010203"},
    {"empty", "", 31, "#ffffff"},
};

bool is_bare(QColor color) { return color.hslSaturation() < 9; }    // the grey of the image

}    // namespace

class TestGuiCanvas : public QObject {
    Q_OBJECT
private slots:
    void eachStateHasItsColor()
    {
        const SmallRecording recording;
        for (const auto& row : state_table) {
            OpenWindow w(recording);
            row.mark(w);
            w.setCurrentTimePoint(1);
            for (const QPoint at : {QPoint(10, 5), {10, 8}, {13, 8}, {13, 5}, {11, 5}})    // corners, an edge
                QVERIFY2(w.shown(at.x(), at.y()) == QColor(row.color), row.what);
            QVERIFY2(w.shown(30, 25) == QColor(row.point_color), row.what);
            w.setShowTrackedRoisMode(true);
            w.setCurrentTimePoint(1);
            QVERIFY2((w.shown(10, 5) == QColor(row.color)) == row.in_tracked_mode, row.what);
        }
    }

    void outlinesAreDrawnAndNothingElse()
    {
        const SmallRecording recording;
        OpenWindow w(recording);
        int drawn = 0;
        for (int i = 0; i < 60 * 40; ++i)
            drawn += !is_bare(w.shown(i % 60, i / 60));
        QCOMPARE(drawn, 12 + 1);    // the border of the square, the point
        w.focusUp();
        QVERIFY2(is_bare(w.shown(10, 5)), "the plane has no ROIs");
    }

    void roisAreShownWithoutTheirImage()
    {
        const SmallRecording recording;
        const QString image = recording.path("tiny/000-020.jpg");
        const struct {
            QSize size;    // none: no picture
            const char* as;
            QImage::Format format;
            int bytes_lost;
            QString line;
        } cases[] = {{{}, "", {}, 0, "Cannot find " + image},
                     {{12, 8}, "JPEG", QImage::Format_RGB32, 0, "Image smaller than its ROIs: " + image},
                     {{700, 620}, "JPEG", QImage::Format_RGB32, 0, ""},
                     {{60, 40}, "PNG", QImage::Format_Grayscale16, 0, ""},
                     {{60, 40}, "JPEG", QImage::Format_Grayscale8, 8, ""}};
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression("premature end"));    // the one line of the last
        for (const auto& [size, as, format, bytes_lost, line] : cases) {
            (void)recording.folder.with("tiny/000-020.jpg", "no picture");
            QImage picture(size, format);
            picture.fill(Qt::red);
            QCOMPARE(picture.save(image, as, 100), size.isValid());
            QFile::resize(image, QFileInfo(image).size() - bytes_lost);
            CapturedLines errors(std::cerr);
            OpenWindow w(recording);
            w.repaint();
            QCOMPARE(errors.take().join('|'), line);
            QCOMPARE(w.shown(10, 5), QColor(untouched));
            QCOMPARE(w.shown(30, 25), QColor(untouched));
            move_pointer(w, 30, 25);
            QVERIFY(w.shown(30, 25) == w.color[64] && w.shown(10, 5) == QColor(untouched));
        }
    }

    void anImageThatComesLaterIsShownWhenTheWindowIsExposed()
    {
        const SmallRecording recording;
        const QString image = recording.path("tiny/000-020.jpg");
        QVERIFY(QFile::rename(image, image + ".later"));
        CapturedLines errors(std::cerr);
        OpenWindow w(recording);
        QVERIFY(QFile::rename(image + ".later", image));
        QExposeEvent e(QRegion(w.rect()));
        QCoreApplication::sendEvent(w.windowHandle(), &e);
        QTRY_VERIFY(std::abs(w.shown(50, 35).red() - SmallRecording::grey(0, 20)) <= 2);
        QVERIFY(w.shown(10, 5) == QColor(untouched) && w.pictures_since_last_asked() == 1);
        QCOMPARE(errors.take(), {"Cannot find " + image});
    }

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
        QVERIFY(w.color[5] == QColor(Qt::green) && w.pictures_since_last_asked() == 0);
        (void)home.with(".orvbrowser", "DEFAULT #010203");
        w.pushButton_reload_config_file_clicked();
        QVERIFY(w.shown(10, 5) == QColor("#010203") && w.color[5] == QColor(Qt::white));
        QVERIFY(errors.take().isEmpty());
    }
};

QTEST_MAIN(TestGuiCanvas)
#include "test_gui_canvas.moc"
