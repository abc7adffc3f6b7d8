// The window at its start; opening, closing and stepping, and how many pictures a step costs.
#include "../support/captured_lines.h"
#include "../support/open_window.h"
#include "../support/scripted_dialogs.h"

#include <QMetaMethod>
#include <QScreen>
#include <QSignalSpy>
#include <QWheelEvent>

namespace {

const char slot_table[] = R"(
setApplication(QApplication*) initColors() setMaxTimePoint(int) setMinTimePoint(int) setMaxFocalPlane(int)
setMinFocalPlane(int) build_roidb() build_imgdb() build_q_roiimgdb() drawROI(QPixmap&) drawLineage(QPixmap&)
myPaint() paintEvent(QPaintEvent*) setCurrentTimePoint(int) setCurrentFocalPlane(int) timeNext() timePrev()
focusUp() focusDown() setDataset(string) setManualEliteMode(bool) setLineageMode(bool)
setShowTrackedRoisMode(bool) setAddLineageMode(bool) setRemoveLineageMode(bool) setMergeMode(bool)
setSplitMode(bool) keyPressEvent(QKeyEvent*) wheelEvent(QWheelEvent*) mousePressEvent(QMouseEvent*)
manualSplit(string,set<string>,int,int,int) mouseMoveEvent(QMouseEvent*)
lineEdit_time_point_textChanged(QString) read_common() pushButton_read_clicked() close_common()
pushButton_close_clicked() lineEdit_dataset_textChanged(QString) lineEdit_focal_plane_textChanged(QString)
slider_time_point_valueChanged(int) slider_focal_plane_valueChanged(int) pushButton_auto_toggled(bool)
pushButton_exit_clicked() pushButton_forward_tracking_clicked() pushButton_backward_tracking_clicked()
do_zTracking() pushButton_z_clicked() forwardTracking(int) backwardTracking(int) zTracking(int)
checkAdjacentFocalPlane(roi&,int,int,set<string>*,double,double) pushButton_stop_clicked()
pushButton_reload_config_file_clicked() pushButton_reset_clicked() pushButton_save_roifile_clicked()
pushButton_clean_clicked() pushButton_read_roifile_clicked() makeLinkage(int) release_child(string,string)
link(string,string) search_doubt_units() mergeUnits(string,string) pushButton_restore_clicked()
pushButton_select_all_clicked() pushButton_read_info_clicked() pushButton_save_info_clicked()
pushButton_auto_split_toggled(bool) pushButton_drop_false_positive_clicked() view(string)
pushButton_split_clicked() splitROI(string,pos3d,pos3d,list<roi>&,list<roi>&) pushButton_dead_end_clicked()
pushButton_unlinked_unit_clicked() pushButton_read_FP_clicked() pushButton_save_FP_clicked() languageChange())";

// Name, parent, place, whether enabled while no recording is open, whether the keyboard reaches it, text.
const char widget_table[] = R"(
frame_canvas ORVBrowser 10 10 601 601 on keys
textLabel3 ORVBrowser 20 620 70 20 on no-keys Time Point
lineEdit_time_point ORVBrowser 110 620 30 20 off keys 0
slider_time_point ORVBrowser 150 620 450 20 off keys
textLabel4 ORVBrowser 20 645 80 20 on no-keys Focal Plane
lineEdit_focal_plane ORVBrowser 110 645 30 20 off keys 0
slider_focal_plane ORVBrowser 150 645 450 20 off keys
lineEdit_dataset ORVBrowser 135 670 355 25 on keys dataset
tabWidget_control_panel ORVBrowser 10 710 600 150 on no-keys
pushButton_read_roifile file 10 20 90 40 on no-keys Read ROIs
pushButton_read_info file 100 20 90 40 on no-keys Read Info
pushButton_save_info file 100 60 90 40 on no-keys Save Info
pushButton_save_roifile file 10 60 90 40 on keys Save ROIs
pushButton_drop_false_positive file 280 20 60 80 on keys Drop\nFP
pushButton_clean file 350 20 60 80 on no-keys Clean\nUp
pushButton_restore file 420 20 100 80 on no-keys Restore ROIs\nin the later \ntime points\nfrom current
pushButton_exit file 530 75 55 25 on keys Exit
pushButton_read_FP file 190 20 90 40 on keys Read FP
pushButton_save_FP file 190 60 90 40 on keys Save FP
pushButton_auto mainPage 75 15 100 40 off keys Auto
pushButton_forward_tracking mainPage 175 15 200 40 off keys Forward tracking
pushButton_z mainPage 375 15 100 40 off keys Z
pushButton_stop mainPage 75 55 100 40 off keys Stop
pushButton_backward_tracking mainPage 175 55 200 40 off keys Backward tracking
pushButton_select_all mainPage 375 55 100 40 on no-keys Select all
pushButton_reset mainPage 488 54 70 40 off no-keys Reset
)";

QString row_of(const QWidget& w)
{
    const QRect r = w.geometry();
    const QString text = w.property("text").toString().replace("\n", "\\n");
    return QString::asprintf("%s %s %d %d %d %d %s %s %s", qPrintable(w.objectName()),
                             qPrintable(w.parent()->objectName()), r.x(), r.y(), r.width(), r.height(),
                             w.isEnabled() ? "on" : "off",
                             w.focusPolicy() == Qt::NoFocus ? "no-keys" : "keys", qPrintable(text))
        .trimmed();
}

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

// As the fields show it.
QString position(const WindowProbe& w)
{
    return w.lineEdit_time_point->text() + ' ' + w.lineEdit_focal_plane->text();
}

QColor on_screen(const WindowProbe& w, QPoint at)
{
    return w.screen()->grabWindow(w.winId()).toImage().pixelColor(w.frame_canvas->pos() + at);
}

}    // namespace

class TestGuiNavigation : public QObject {
    Q_OBJECT
private slots:
    void listsItsSlotsInOrder()
    {
        const QMetaObject& meta = ORVBrowser::staticMetaObject;
        QStringList listed;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
            listed << (meta.method(i).methodType() == QMetaMethod::Slot ? meta.method(i).methodSignature()
                                                                        : "?");
        QCOMPARE(listed.join(' '), QString(slot_table).simplified());
    }

    void placesItsWidgets()
    {
        const WindowProbe w;
        QCOMPARE(w.objectName(), QString("ORVBrowser"));
        QCOMPARE(w.windowTitle(), QString("Nuclear Detector"));
        QCOMPARE(w.size(), QSize(620, 878));
        for (const QString& row : QString(widget_table).split('\n', Qt::SkipEmptyParts)) {
            const auto* widget = w.findChild<QWidget*>(row.section(' ', 0, 0));
            QCOMPARE(widget ? row_of(*widget) : QString(), row);
        }
        const QTabWidget& tabs = *w.tabWidget_control_panel;
        QVERIFY(tabs.count() == 2 && tabs.currentWidget() == w.file && tabs.widget(1) == w.mainPage);
        QCOMPARE(tabs.tabText(0) + ' ' + tabs.tabText(1), "File KVT");
        QCOMPARE(w.frame_canvas->frameStyle(), int(QFrame::StyledPanel) | int(QFrame::Plain));
        QVERIFY(w.textLabel3->buddy() == &tabs && w.lineEdit_dataset->alignment() == Qt::AlignCenter);
        QVERIFY(w.hasMouseTracking() && w.frame_canvas->hasMouseTracking());
        QVERIFY(w.slider_time_point->maximum() == 150 && w.slider_focal_plane->maximum() == 55);
        QString visited;    // by the tabulator
        for (QWidget* next = w.frame_canvas->nextInFocusChain(); next != w.frame_canvas;
             next = next->nextInFocusChain())
            if (next->parent() == &w && next->focusPolicy() != Qt::NoFocus)
                visited += next->objectName() + ' ';
        QCOMPARE(visited, "lineEdit_time_point lineEdit_focal_plane lineEdit_dataset slider_time_point "
                          "slider_focal_plane ");
    }

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

    void theControlsTellOfAStep()
    {
        const SmallRecording recording;
        OpenWindow w(recording);
        QSignalSpy slid(w.slider_time_point, &QSlider::valueChanged);
        QSignalSpy typed(w.lineEdit_time_point, &QLineEdit::textChanged);
        w.setCurrentTimePoint(3);
        QVERIFY(slid.count() == 1 && typed.count() == 1);
        const auto step_on = connect(w.slider_time_point, &QSlider::valueChanged, &w, [&w](int t) {
            if (t == 1)
                w.setCurrentTimePoint(2);
        });
        w.setCurrentTimePoint(1);
        QVERIFY(w.m_time_point == 2 && position(w) == "2 20" && w.slider_time_point->value() == 2);
        disconnect(step_on);
        (void)w.pictures_since_last_asked();
        w.lineEdit_time_point->setText("004");
        QVERIFY(position(w) == "4 20" && w.pictures_since_last_asked() == 1);
    }

    void thePositionStaysWithinBoundsTakenAnew()
    {
        const SmallRecording recording("one", 0, 0);
        OpenWindow w(recording);
        w.setMaxTimePoint(9), w.setMinTimePoint(3), w.setCurrentTimePoint(5);
        CapturedLines errors(std::cerr);
        ScriptedDialogs user({recording.path("missing.roi")});
        w.pushButton_read_roifile->click();
        QVERIFY(position(w) == "0 20" && w.m_time_point == 0 && w.slider_time_point->value() == 0);
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

    void openingAndClosingAreSeenAtOnce()
    {
        const SmallRecording recording;
        ShownWindow w;
        w.lineEdit_dataset->setFocus();
        w.lineEdit_dataset->selectAll();
        QTest::keyClicks(w.lineEdit_dataset, "E1");
        QVERIFY(w.m_dataset == "E1" && w.m_dataset3 == "E1" && !w.m_roidb);
        QVERIFY(w.openRoiFile(recording.file));
        QCoreApplication::processEvents();
        QCOMPARE(w.focusWidget(), w.frame_canvas);
        QTRY_COMPARE(on_screen(w, {50, 35}), w.shown(50, 35));
        (void)w.pictures_since_last_asked();
        w.pushButton_close_clicked();
        QTRY_COMPARE(on_screen(w, {50, 35}), w.palette().color(QPalette::Window));
        w.timeNext();
        QCOMPARE(w.pictures_since_last_asked(), 0);
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

    // Planes 000-005 and 001-006 are there, 000-006 and 001-005 are not. What is open has others.
    void aDatabaseIsBuiltFromTheFilesOfItsPlanes()
    {
        const temp_folder folder;
        (void)folder.with("000-005.fwd", "# x y outline\n\n1 2 2301\n0 0 2301\n0 7 2301\n");
        (void)folder.with("001-006.fwd", "9 8 22330011\nno record\n7 7 2301\n");
        const SmallRecording recording;
        (void)recording.folder.with("file.recording.json", R"({"focal_planes": [25, 30]})");
        ShownWindow w;
        w.setMinFocalPlane(5), w.setMaxFocalPlane(6);
        QVERIFY(w.openRoiFile(recording.file));
        w.setMinTimePoint(0), w.setMaxTimePoint(1);
        w.m_roi_base = folder.path("");
        CapturedLines errors(std::cerr);
        w.pushButton_read_clicked();
        const QString missing = QString::fromStdString("Cannot open " + folder.path(""));
        QCOMPARE(errors.take().filter(".fwd").first(2),
                 QStringList({missing + "000-006.fwd", missing + "001-005.fwd"}));
        QStringList keys;
        for (const auto& [key, roi] : w.m_roidb->db)
            keys << QString::fromStdString(key + ":" + roi.outline());
        QCOMPARE(keys, QStringList({"000005000007:2301", "000005001002:2301", "001006009008:22330011"}));
    }
};

QTEST_MAIN(TestGuiNavigation)
#include "test_gui_navigation.moc"
