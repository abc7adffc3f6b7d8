// What is drawn: the image, and each ROI in the colour of its state.
#include "../support/captured_lines.h"
#include "../support/editing.h"

#include <QRegularExpression>

#include <functional>

namespace {

// The square and the point of the recording, as keys of time point 1.
const std::string square = "001020010005";
const std::string point = "001020030025";
const std::string earlier = "000020010005";    // the square of time point 0

// Puts an ROI in a unit of its own.
void make_unit(WindowProbe& w, const std::string& key)
{
    w.m_members_head.emplace(key, key);
    w.m_head_members.emplace(key, key);
}

void choose_lineage_head(WindowProbe& w, const std::string& head)
{
    for (const std::string& key : {square, point, earlier})
        make_unit(w, key);
    w.m_linkage_multimap.emplace(square, earlier);
    w.m_lineage_mode_roi_set = {head};
}

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
    {"elite", [](WindowProbe& w) { make_unit(w, square), w.m_elite_head_roi_set = {square}; }, "#ffff00"},
    {"elite, no unit", [](WindowProbe& w) { w.m_elite_head_roi_set = {square}; }, untouched, false},
    {"lineage head", [](WindowProbe& w) { choose_lineage_head(w, square); }, "#ff5555", false},
    {"reached", [](WindowProbe& w) { choose_lineage_head(w, earlier); }, "#ff8f00"},
    {"not reached", [](WindowProbe& w) { choose_lineage_head(w, point); }, untouched, false, "#ff5555"},
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
        const QImage screen = w.grab().toImage();
        QCOMPARE(screen.pixelColor(10 + 30, 10 + 20), w.shown(30, 20));    // unscaled, from the top left
        QCOMPARE(screen.pixelColor(10 + 61, 10 + 20), w.palette().color(QPalette::Window));
    }

    void roisAreShownWithoutTheirImage()
    {
        const SmallRecording recording;
        const QString image = recording.path("tiny/000-020.jpg");
        const auto write = [&](QSize size, QImage::Format format, const char* as) {
            QImage picture(size, format);
            picture.fill(Qt::red);
            QVERIFY(picture.save(image, as, 100));
        };
        const std::pair<std::function<void()>, QString> cases[] = {
            {[&] { QFile::remove(image); }, "Cannot find " + image},
            {[&] { (void)recording.folder.with("tiny/000-020.jpg", "no picture"); }, "Cannot find " + image},
            {[&] {
                 write({12, 8}, QImage::Format_RGB32, "JPEG");
             },
             "Image smaller than its ROIs: " + image},
            {[&] {
                 write({700, 620}, QImage::Format_RGB32, "JPEG");
             },
             ""},
            {[&] {
                 write({60, 40}, QImage::Format_Grayscale16, "PNG");
             },
             ""},
            {[&] {
                 write({60, 40}, QImage::Format_Grayscale8, "JPEG"),
                     QFile::resize(image, QFileInfo(image).size() - 8);
             },
             ""}};
        QTest::ignoreMessage(QtWarningMsg,
                             QRegularExpression("premature end"));    // the one line of the last
        for (const auto& [damage, line] : cases) {
            damage();
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

    void withoutARecordingNothingIsDrawn()
    {
        CapturedLines errors(std::cerr);
        ShownWindow w;
        w.repaint();
        w.myPaint();
        QPixmap pix(8, 8);
        pix.fill(Qt::red);
        w.drawROI(pix);
        QCOMPARE(pix.toImage().pixelColor(4, 4), QColor(Qt::red));
        QVERIFY(w.m_pix.isNull() && w.frame_canvas->picture().isNull());
        QVERIFY(errors.take().isEmpty());
    }
};

QTEST_MAIN(TestGuiCanvas)
#include "test_gui_canvas.moc"
