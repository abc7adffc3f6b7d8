// Opening and closing a recording, stepping through it, and how many pictures a step costs.
#include "../support/captured_lines.h"
#include "../support/open_window.h"

#include <QScreen>
#include <QWheelEvent>

namespace {

// Away from the user is positive.
void turn_wheel(OpenWindow& w, int delta)
{
    const QPointF at(50, 50);
    QWheelEvent e(at, w.frame_canvas->mapToGlobal(at), {}, {0, delta}, Qt::NoButton, Qt::NoModifier,
                  Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&e);    // as from the window system: others do not go on to the parent
    qApp->notify(w.frame_canvas, &e);
}

void press(OpenWindow& w, int key) { QTest::keyClick(w.frame_canvas, Qt::Key(key)); }

// Each starts at time point 2 of 0 to 4 and focal plane 20 of 0 to 55.
const struct {
    const char* what;
    void (*step)(OpenWindow&);
    int t, z, pictures = 1;
} step_table[] = {
    {"F", [](OpenWindow& w) { press(w, Qt::Key_F); }, 3, 20},
    {"up", [](OpenWindow& w) { press(w, Qt::Key_Up); }, 2, 19},
    {"wheel away", [](OpenWindow& w) { turn_wheel(w, 120); }, 2, 19},
    {"plane slider", [](OpenWindow& w) { w.slider_focal_plane->setValue(7); }, 2, 7},
    {"time typed", [](OpenWindow& w) { QTest::keyClicks(w.lineEdit_time_point, "9"); }, 4, 20},
    {"time no int", [](OpenWindow& w) { w.lineEdit_time_point->setText("99999999999"); }, 2, 20},
    {"first, left", [](OpenWindow& w) { w.setMinTimePoint(2), press(w, Qt::Key_Left); }, 2, 20, 0},
    {"bottom, down", [](OpenWindow& w) { w.setMaxFocalPlane(20), press(w, Qt::Key_Down); }, 2, 20, 0},
    {"auto: left", [](OpenWindow& w) { w.m_auto = true, press(w, Qt::Key_Left); }, 2, 20, 0},
};

// The position, or "?" when the fields or the sliders show another.
QString position(const WindowProbe& w)
{
    const QString at = QString("%1 %2").arg(w.m_time_point).arg(w.m_focal_plane);
    const QString fields = w.lineEdit_time_point->text() + ' ' + w.lineEdit_focal_plane->text();
    const bool agree = fields == at && w.slider_time_point->value() == w.m_time_point &&
                       w.slider_focal_plane->value() == w.m_focal_plane;
    return agree ? at : "?";
}

QColor on_screen(const WindowProbe& w, QPoint at)
{
    return w.screen()->grabWindow(w.winId()).toImage().pixelColor(w.frame_canvas->pos() + at);
}

}    // namespace

class TestGuiNavigation : public QObject {
    Q_OBJECT
private slots:
    void oneStepCostsOnePicture()
    {
        const SmallRecording recording;
        CapturedLines errors(std::cerr);    // most focal planes have no image
        for (const auto& row : step_table) {
            OpenWindow w(recording);
            w.setCurrentTimePoint(2);
            (void)w.pictures_since_last_asked();
            row.step(w);
            if (row.pictures == 1)
                QVERIFY2(on_screen(w, {50, 35}) == w.shown(50, 35), row.what);    // at once
            QCoreApplication::processEvents();
            QVERIFY2(position(w) == QString("%1 %2").arg(row.t).arg(row.z), row.what);
            QVERIFY2(w.pictures_since_last_asked() == row.pictures, row.what);
        }
    }

    // Each opens in the window of the one before: wholly above, wholly below, one time point.
    void aRecordingOpensWithinItsOwnBounds()
    {
        ShownWindow w;
        for (const auto& [first, last] : {std::pair(2, 4), {200, 203}, {0, 1}, {300, 300}}) {
            const SmallRecording recording("from" + std::to_string(first), first, last);
            QVERIFY(w.openRoiFile(recording.file));
            QCoreApplication::processEvents();
            QCOMPARE(w.pictures_since_last_asked(), 1);
            QCOMPARE(position(w), QString("%1 20").arg(first));
            QVERIFY(w.slider_time_point->minimum() == first && w.slider_time_point->maximum() == last);
            QVERIFY(std::abs(w.shown(50, 35).red() - SmallRecording::grey(first, 20)) <= 2);    // its image
            w.setCurrentTimePoint(last);
            (void)w.pictures_since_last_asked();
        }
    }

    void openingAndClosingSwitchTheControls()
    {
        const SmallRecording recording;
        ShownWindow w;
        w.lineEdit_dataset->setFocus();
        QVERIFY(w.openRoiFile(recording.file));
        QCoreApplication::processEvents();
        QVERIFY(!w.lineEdit_dataset->isEnabled() && w.pushButton_auto->isEnabled());
        QCOMPARE(w.focusWidget(), w.frame_canvas);
        QTRY_COMPARE(on_screen(w, {50, 35}), w.shown(50, 35));
        (void)w.pictures_since_last_asked();
        w.pushButton_close_clicked();
        QTRY_COMPARE(on_screen(w, {50, 35}), w.palette().color(QPalette::Window));
        w.timeNext();
        QCOMPARE(w.pictures_since_last_asked(), 0);
        QVERIFY(w.lineEdit_dataset->isEnabled() && !w.pushButton_auto->isEnabled());
        QCOMPARE(position(w), "1 0");
        QVERIFY(!w.m_roidb && !w.m_imgdb && !w.m_q_roiimgdb);
    }

    void resetAndOpeningForgetWhatWasMarked()
    {
        const SmallRecording recording;
        OpenWindow w(recording);
        const std::string key = "000020010005";
        // clang-format off
        std::set<std::string>* const sets[] = {
            &w.m_fwd_roi_set, &w.m_bwd_roi_set, &w.m_mouse_over_roi_set, &w.m_make_unit_roi_set, &w.m_linkage_set,
            &w.m_elite_head_roi_set, &w.m_selected_roi_set, &w.m_removed_roi_set, &w.m_lineage_mode_roi_set,
            &w.m_split_parents, &w.m_add_lineage_head_set, &w.m_remove_lineage_head_set,
            &w.m_falsely_grouped_units_candidates};
        bool* const flags[] = {&w.m_auto, &w.m_make_units, &w.m_manual_elite, &w.m_lineage_mode, &w.m_auto_split,
            &w.m_add_lineage_mode, &w.m_remove_lineage_mode, &w.m_merge_mode, &w.m_split_mode, &w.m_show_centroid};
        // clang-format on
        for (const bool open : {false, true}) {
            for (auto* keys : sets)
                keys->insert(key);
            w.m_head_members = w.m_linkage_multimap = {{key, key}};
            for (bool* flag : flags)
                *flag = true;
            (void)w.pictures_since_last_asked();
            open ? (void)w.openRoiFile(recording.file) : w.pushButton_reset->click();
            QCoreApplication::processEvents();
            QCOMPARE(w.pictures_since_last_asked(), 1);
            QString left;
            for (const auto* keys : sets)
                left += keys->empty() ? '-' : 'x';
            for (const bool* flag : flags)
                left += *flag ? 'x' : '-';
            QCOMPARE(left, open ? "----------xxx----------" : "------xxxxxxxxxxxxxxxxx");
            QVERIFY(w.m_head_members.empty() && w.m_linkage_multimap.empty());
        }
    }

    // Planes 000-005 and 001-006 are there, 000-006 and 001-005 are not.
    void aDatabaseIsBuiltFromTheFilesOfItsPlanes()
    {
        const temp_folder folder;
        (void)folder.with("000-005.fwd", "# x y outline\n\n1 2 2301\n0 0 2301\n0 7 2301\n");
        (void)folder.with("001-006.fwd", "9 8 22330011\nno record\n7 7 2301\n");
        ShownWindow w;
        w.setMaxTimePoint(1), w.setMinFocalPlane(5), w.setMaxFocalPlane(6);
        w.m_roi_base = folder.path("");
        CapturedLines errors(std::cerr);
        w.pushButton_read_clicked();
        const QString missing = QString::fromStdString("Cannot open " + folder.path(""));
        QCOMPARE(errors.take().first(2), QStringList({missing + "000-006.fwd", missing + "001-005.fwd"}));
        QStringList keys;
        for (const auto& [key, roi] : w.m_roidb->db)
            keys << QString::fromStdString(key + ":" + roi.outline());
        QCOMPARE(keys, QStringList({"000005000007:2301", "000005001002:2301", "001006009008:22330011"}));
    }

    void imagesComeFromTheRootInUse()
    {
        for (const char* root : {"", "/x", "/x/"}) {
            qputenv("ORVBROWSER_IMAGE_ROOT", root);
            QCOMPARE(WindowProbe().make_img_base("E1"), std::string(*root ? "/x/E1/" : "/image/E1/"));
        }
    }
};

QTEST_MAIN(TestGuiNavigation)
#include "test_gui_navigation.moc"
