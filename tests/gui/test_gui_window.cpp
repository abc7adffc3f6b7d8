// The window as it stands at the start: slots, widgets, texts, connections.
#include "../support/open_window.h"
#include "MimeSourceFactory_ORVBrowser.h"

#include <QMetaMethod>

namespace {

const char slot_table[] = R"(
setApplication(QApplication*) initColors() setMaxTimePoint(int) setMinTimePoint(int) setMaxFocalPlane(int)
setMinFocalPlane(int) build_roidb() build_imgdb() build_q_roiimgdb() drawROI(QPixmap&)
drawLineage(QPixmap&) myPaint() paintEvent(QPaintEvent*) setCurrentTimePoint(int)
setCurrentFocalPlane(int) timeNext() timePrev() focusUp() focusDown() setDataset(string)
setManualEliteMode(bool) setLineageMode(bool) setShowTrackedRoisMode(bool) setAddLineageMode(bool)
setRemoveLineageMode(bool) setMergeMode(bool) setSplitMode(bool) keyPressEvent(QKeyEvent*)
wheelEvent(QWheelEvent*) mousePressEvent(QMouseEvent*) manualSplit(string,set<string>,int,int,int)
mouseMoveEvent(QMouseEvent*) lineEdit_time_point_textChanged(QString) read_common()
pushButton_read_clicked() close_common() pushButton_close_clicked() lineEdit_dataset_textChanged(QString)
lineEdit_focal_plane_textChanged(QString) slider_time_point_valueChanged(int)
slider_focal_plane_valueChanged(int) pushButton_auto_toggled(bool) pushButton_exit_clicked()
pushButton_forward_tracking_clicked() pushButton_backward_tracking_clicked() do_zTracking()
pushButton_z_clicked() forwardTracking(int) backwardTracking(int) zTracking(int)
checkAdjacentFocalPlane(roi&,int,int,set<string>*,double,double) pushButton_stop_clicked()
pushButton_reload_config_file_clicked() pushButton_reset_clicked() pushButton_save_roifile_clicked()
pushButton_clean_clicked() pushButton_read_roifile_clicked() makeLinkage(int) release_child(string,string)
link(string,string) search_doubt_units() mergeUnits(string,string) pushButton_restore_clicked()
pushButton_select_all_clicked() pushButton_read_info_clicked() pushButton_save_info_clicked()
pushButton_auto_split_toggled(bool) pushButton_drop_false_positive_clicked() view(string)
pushButton_split_clicked() splitROI(string,pos3d,pos3d,list<roi>&,list<roi>&)
pushButton_dead_end_clicked() pushButton_unlinked_unit_clicked() pushButton_read_FP_clicked()
pushButton_save_FP_clicked() languageChange()
)";

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

}    // namespace

class TestGuiWindow : public QObject {
    Q_OBJECT
private slots:
    void listsItsSlotsInOrder()
    {
        const QMetaObject& meta = ORVBrowser::staticMetaObject;
        QStringList listed;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
            listed << QString(meta.method(i).methodSignature());
        }
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
    }

    void tabVisitsTheControlsInOrder()
    {
        const WindowProbe w;
        QStringList visited;
        for (QWidget* next = w.frame_canvas->nextInFocusChain(); next != w.frame_canvas;
             next = next->nextInFocusChain())
            if (next->parent() == &w && next->focusPolicy() != Qt::NoFocus)
                visited << next->objectName();
        QCOMPARE(visited.join(" "), "lineEdit_time_point lineEdit_focal_plane lineEdit_dataset "
                                    "slider_time_point slider_focal_plane");
    }

    void typingADatasetNameOpensNothing()
    {
        ShownWindow w;
        w.lineEdit_dataset->selectAll();
        QTest::keyClicks(w.lineEdit_dataset, "E1");
        QVERIFY(w.m_dataset == "E1" && w.m_dataset3 == "E1");
        QVERIFY(!w.m_roidb && !w.m_imgdb && !w.m_q_roiimgdb);
    }

    void iconsAreFoundByName()
    {
        for (const QString& name : MimeSourceFactory_ORVBrowser::names())
            QVERIFY2(!MimeSourceFactory_ORVBrowser::data(name).isNull(), qPrintable(name));
        QCOMPARE(MimeSourceFactory_ORVBrowser::names().size(), 10);
    }
};

QTEST_MAIN(TestGuiWindow)
#include "test_gui_window.moc"
