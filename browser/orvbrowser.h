// orvbrowser.h - the main window: one image of a recording with its ROIs, and everything a person does
// to them.
//
// This is the only declaration of the window; each group below names the file that holds its bodies. What
// a person decides about the recording is kept and done by its curation (curation.h): the window takes
// input, asks or tells the curation, and shows. All of it runs on the GUI thread.
#pragma once
#include "ImageDB.h"
#include "curation.h"
#include "file_dialogs.h"
#include "further_input.h"
#include "kept_work.h"
#include "lineage_stroke.h"
#include "window_controls.h"

#include <QApplication>
#include <QColor>
#include <QCursor>
#include <QEventLoop>
#include <QPixmap>
#include <QPointer>
#include <QWidget>

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class BusyRun;
class QPainter;

class ORVBrowser : public QWidget, public WindowControls, public curation, private curation_observer {
    Q_OBJECT

public:
    explicit ORVBrowser(QWidget* parent = nullptr, const char* name = nullptr, Qt::WindowFlags flags = {});
    ~ORVBrowser() override;

    // ==== Operations that are no slots ====

    // ---- Opening a recording (orvbrowser_files.cpp)

    // Opens the recording of an ROI file, as "Read ROIs" does once a file is chosen. False, and what was
    // open stays open, when the file is missing or cannot be read: one line on standard error.
    bool openRoiFile(const string& filename);

    // ---- Navigation (orvbrowser_navigation.cpp)
    virtual string make_img_base(string dataset);    // the folder of a recording's images, with its last "/"
    virtual string digit3(int n);

    // ---- Colours (orvbrowser_colors.cpp)
    virtual bool loadConfigFile();    // false, and the table as it was, when the file cannot be opened

    // ---- The ROI under a point (orvbrowser_input.cpp)
    virtual string xyROI(int x, int y);    // key of the ROI of this plane at an image pixel, or ""

    // ---- For what shows the picture otherwise, and for further input (orvbrowser_canvas.cpp,
    // orvbrowser_overlay.cpp)
    void set_further_input(FurtherInput* input) noexcept { m_further_input = input; }    // not owned
    [[nodiscard]] const QPixmap* image_on_view() const;    // null where there is none
    [[nodiscard]] string image_filename();                 // of the position on view
    [[nodiscard]] bool shows_lineage() const noexcept { return m_show_centroid; }
    [[nodiscard]] std::vector<lineage_stroke> lineage_strokes();
    // The ROIs of the plane as the picture shows them, with their mapped rasters and colours.
    void visit_shown_rois(const std::function<void(const plane_roi&, const QColor&)>& visit);
    [[nodiscard]] const set<string>& split_parents() const noexcept { return m_split_parents; }
    // The mode that the next click on an ROI acts in; and out of all of them.
    enum class armed { none, elite, choose, remove, add, merge, split };
    [[nodiscard]] armed armed_mode() const noexcept;
    void disarm();
    // True iff the next press anywhere is the place of a cut.
    [[nodiscard]] bool is_cut_waiting() const noexcept { return m_split_mode && m_split_parents.size() > 1; }

    // ---- For pages and windows beside this one (orvbrowser.cpp, orvbrowser_canvas.cpp)
    using curation::children;    // units, not objects
    [[nodiscard]] bool isOpen() const noexcept { return has_rois() && m_imgdb; }
    [[nodiscard]] int time_point() const noexcept { return m_time_point; }
    [[nodiscard]] int focal_plane() const noexcept { return m_focal_plane; }
    [[nodiscard]] QColor color_of(int state) const { return color[state]; }    // an OR of roi_colors.h
    [[nodiscard]] string roi_under_pointer() const;                            // its key; "" for none
    void link_by_hand(const string& a, const string& b);                       // and notes both as edited
    void split_shown(const string& doubt);           // the same as the button does, with this unit
    void change_info(const recording_info& info);    // sizes and focal planes of the recording, a step
    [[nodiscard]] bool is_waited_for() const noexcept { return m_busy_runs > 0; }
    void highlight(const string& unit);     // shows its ROIs as if the pointer were on them, until it moves
    void light_roi_at(QPoint on_canvas);    // the one that is shown there alone, if there is one
    void show_changes();                    // marks the picture as out of date and paints it at once
    void finish();                          // the same, and lets pending events be processed

    // ---- Undo, redo, and what is kept of the work (orvbrowser_history.cpp)
    void undo();
    void redo();
    [[nodiscard]] bool can_undo() const;    // false while anything is going on
    [[nodiscard]] bool can_redo() const;
    void go_to_step(std::size_t done);    // the state in which so many steps were done
    // Steps between the saved state and the present one, done or undone.
    [[nodiscard]] std::size_t unsaved_edits() const;
    // Writes what has changed to the files beside the ROI file, without a question. False, and one line for
    // each file, when any of it fails.
    bool save_all();
    // Takes up what an earlier run has not saved, with its undo. True also when there is nothing; false, and
    // one line, when edits were made already or the steps do not fit.
    bool take_up_work();
    bool take_up_work(std::size_t offer);    // one of work().offers()
    void decline_work() { m_work.decline(); }
    bool
    take_lineage(const string& filename);    // false, one line and nothing changed when it cannot be read
    void note_read(const string& filename) { m_work.was_read(filename); }    // by whoever reads a file
    [[nodiscard]] const kept_work& work() const noexcept { return m_work; }

    // ---- Start and end (orvbrowser.cpp)
    void init();
    void destroy();

    // ==== Slots; their order is the order of the meta-object's table ====
public slots:
    // ---- Start (orvbrowser.cpp)
    virtual void setApplication(QApplication* app);

    // ---- Colours (orvbrowser_colors.cpp)
    virtual void initColors();

    // ---- Bounds, databases (orvbrowser_navigation.cpp)
    virtual void setMaxTimePoint(int t);
    virtual void setMinTimePoint(int t);
    virtual void setMaxFocalPlane(int z);
    virtual void setMinFocalPlane(int z);
    virtual void build_roidb();
    virtual void build_imgdb();
    virtual void build_q_roiimgdb();

    // ---- Canvas (orvbrowser_canvas.cpp; the lineage overlay: orvbrowser_overlay.cpp)
    virtual void drawROI(QPixmap& pix);
    virtual void drawLineage(QPixmap& dic);
    virtual void myPaint();
    void paintEvent(QPaintEvent* e) override;

    // ---- Position (orvbrowser_navigation.cpp)
    virtual void setCurrentTimePoint(int t);
    virtual void setCurrentFocalPlane(int z);
    virtual void timeNext();
    virtual void timePrev();
    virtual void focusUp();      // to the lower plane number
    virtual void focusDown();    // to the higher plane number
    virtual void setDataset(string name);

    // ---- Modes, keys, pointer (orvbrowser_input.cpp)
    virtual void setManualEliteMode(bool on);
    virtual void setLineageMode(bool on);
    virtual void setShowTrackedRoisMode(bool on);
    virtual void setAddLineageMode(bool on);
    virtual void setRemoveLineageMode(bool on);
    virtual void setMergeMode(bool on);
    virtual void setSplitMode(bool on);
    void keyPressEvent(QKeyEvent* e) override;
    void wheelEvent(QWheelEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;
    void manualSplit(string doubt, set<string> ps, int x, int y, int z) override;    // orvbrowser_split.cpp
    void mouseMoveEvent(QMouseEvent* e) override;

    // ---- Controls of the position, opening and closing (orvbrowser_navigation.cpp)
    virtual void lineEdit_time_point_textChanged(const QString& s);
    virtual void read_common();
    virtual void pushButton_read_clicked();
    virtual void close_common();
    virtual void pushButton_close_clicked();
    virtual void lineEdit_dataset_textChanged(const QString& s);
    virtual void lineEdit_focal_plane_textChanged(const QString& s);
    virtual void slider_time_point_valueChanged(int v);
    virtual void slider_focal_plane_valueChanged(int v);

    // ---- Tracking (orvbrowser_tracking.cpp)
    virtual void pushButton_auto_toggled(bool b);
    virtual void pushButton_exit_clicked();    // orvbrowser_navigation.cpp
    virtual void pushButton_forward_tracking_clicked();
    virtual void pushButton_backward_tracking_clicked();
    virtual void do_zTracking();
    virtual void pushButton_z_clicked();
    void forwardTracking(int t) override;    // this and the next three: orvbrowser_curation.cpp
    void backwardTracking(int start_time_point) override;
    void zTracking(int t) override;
    void checkAdjacentFocalPlane(roi& r_from, int t, int z, set<string>* roiset, double mor_t,
                                 double mor_z) override;
    virtual void pushButton_stop_clicked();

    // ---- Colours, reset (orvbrowser_colors.cpp)
    virtual void pushButton_reload_config_file_clicked();
    virtual void pushButton_reset_clicked();

    // ---- ROI files (orvbrowser_files.cpp)
    virtual void pushButton_save_roifile_clicked();
    virtual void pushButton_clean_clicked();    // orvbrowser_marks.cpp
    virtual void pushButton_read_roifile_clicked();

    // ---- Units and links (orvbrowser_curation.cpp)
    void makeLinkage(int t) override;
    void release_child(string parent, string child) override;
    void link(string unit1, string unit2) override;
    void search_doubt_units() override;
    void mergeUnits(string a, string b) override;

    // ---- Marks and their files (orvbrowser_files.cpp, orvbrowser_marks.cpp)
    virtual void pushButton_restore_clicked();
    virtual void pushButton_select_all_clicked();
    virtual void pushButton_read_info_clicked();
    virtual void pushButton_save_info_clicked();
    virtual void pushButton_auto_split_toggled(bool on);    // orvbrowser_split.cpp
    virtual void pushButton_drop_false_positive_clicked();

    // ---- Looking at a unit, splitting, reports (orvbrowser_reports.cpp, orvbrowser_split.cpp)
    virtual void view(string key);
    virtual void pushButton_split_clicked();
    void splitROI(string doubt, pos3d E_normal, pos3d E_m, list<roi>& roi_plus,
                  list<roi>& roi_minus) override;    // orvbrowser_curation.cpp
    virtual void pushButton_dead_end_clicked();
    virtual void pushButton_unlinked_unit_clicked();

    // ---- False-positive files (orvbrowser_marks.cpp)
    virtual void pushButton_read_FP_clicked();
    virtual void pushButton_save_FP_clicked();

    // ---- Texts (orvbrowser_widgets.cpp)
    virtual void languageChange();

    // ==== State, beside that of the curation ====
protected:
    int newVariable = 0;    // a placeholder that nothing reads or writes
    bool m_auto_split = false;
    set<string> m_add_lineage_head_set;
    set<string> m_remove_lineage_head_set;
    bool m_remove_lineage_mode = false;
    bool m_add_lineage_mode = false;
    bool dirty = false;    // the picture must be rebuilt before the next paint
    bool m_show_tracked_rois_mode = false;
    bool m_lineage_mode = false;
    bool m_manual_elite = false;
    QColor color[128];                // by the OR of the state codes in roi_colors.h
    QApplication* m_app = nullptr;    // not owned
    QPixmap m_pix;                    // the composed picture of the canvas
    string m_roi_ext_dir;
    string m_setting_img_head, m_img_head, m_org_dir, m_setting_org_dir;
    int m_setting_max_focal_plane = 0;
    int m_setting_min_focal_plane = 0;
    int m_setting_max_time_point = 0;
    int m_setting_min_time_point = 0;
    string m_setting_lnk_base, m_roi_ext, m_setting_roi_ext0, m_setting_dataset3, m_setting_dataset2,
        m_setting_dataset1, m_setting_dataset0, m_setting_dic_base;
    string m_img_base, m_dic_base;
    std::unique_ptr<ImageDB> m_imgdb;    // null while no recording is open
    int m_time_point = 0;
    int m_focal_plane = 0;
    string m_setting_roi_ext1, m_lnk_base, m_roi_base, m_setting_roi_ext_dir, m_dataset1, m_dataset2,
        m_dataset3, m_roi_ext1;
    int m_cache_time = 0;    // time points
    int m_setting_cache_time = 0;
    bool m_auto = false;    // tracking goes on by itself
    bool m_show_centroid = false;
    bool m_merge_mode = false;
    bool m_split_mode = false;

    void closeEvent(QCloseEvent* e) override;    // ends the run that is going on
    void showEvent(QShowEvent* e) override;
    bool eventFilter(QObject* watched, QEvent* e) override;

private:
    friend class BusyRun;

    void state_changed() override { dirty = true; }
    bool carry_on() override;

    // ---- Widgets (orvbrowser_widgets.cpp)
    void createWidgets();
    void connectWidgets();
    void setTrackingButtonsEnabled(bool on);

    // ---- Helpers of several files
    void processEvents();
    [[nodiscard]] bool can_process_events() const noexcept;
    bool process_events_of_run(QEventLoop::ProcessEventsFlags flags);    // false when there were none

    // ---- Navigation
    struct position_controls {
        int& position;
        QSlider& slider;
        QLineEdit& field;
        bool& is_mirroring;    // the controls are being set: what they signal asks for nothing
    };
    [[nodiscard]] position_controls time_controls();
    [[nodiscard]] position_controls plane_controls();
    void set_position(const position_controls& controls, int value);
    void reset_recording_state();
    void take_time_bounds();
    void take_focal_planes();
    void show_step(const edit_step* step);

    // ---- Files
    void open_recording(std::unique_ptr<roidb_plus> roidb);
    void save_rois(const string& filename);
    void read_marks(const file_question& question, const char* suffix, const char* keyword,
                    void (curation::*add)(const set<string>&));
    void save_marks(QPushButton& button, const file_question& question, const char* suffix,
                    const char* keyword, const set<string>& marks);

    // ---- Input
    void set_mode(bool& flag, QCursor& before, bool on);
    void show_fitting_cursor();
    bool press_mode_key(int key);    // true iff it is one
    void press_other_key(int key);
    void toggle_lineage_mode();
    void light_roi(const string& key);
    void press_canvas(const QMouseEvent& e);
    void end_input();
    void click_in_lineage_modes(const string& key);
    void mark_roi(const string& key, Qt::MouseButton button);
    void click_in_split_mode(const string& key, bool left, QPoint at);
    void click_in_merge_mode(const string& key);

    // ---- Canvas
    void paint_canvas();       // at once
    void refresh_picture();    // if it is out of date
    void ask_for_missing_image();
    [[nodiscard]] bool is_picture_current() const;
    void show_changed_rois();
    [[nodiscard]] std::optional<QRect> area_of_changed_rois();
    [[nodiscard]] QPixmap background();
    [[nodiscard]] set<string> units_reached_on_view();
    [[nodiscard]] int color_index(const string& key, const set<string>& reached);
    [[nodiscard]] int look_of(const string& key, const set<string>& reached);
    void paint_rois(QPixmap& pix, const QRect& area);
    void paint_roi(QPainter& painter, plane_roi& r, int look);

    // ---- Tracking
    void repeat_tracking(const char* what, const std::function<bool(const LongRun&)>& step);

    // ---- Lineage
    void report(const char* finding, const std::optional<string>& unit);
    [[nodiscard]] bool is_on_view(const string& unit);
    void add_centroid(std::vector<lineage_stroke>& strokes, const string& unit, const char* bright,
                      const char* dark);
    void add_links(std::vector<lineage_stroke>& strokes, const string& unit);

    // ---- Splitting
    [[nodiscard]] bool wait_while_auto_split(LongRun& run);

    enum mode : std::size_t {
        elite_mode,
        lineage_mode,
        add_mode,
        remove_mode,
        merge_mode,
        split_mode,
        modes
    };
    std::array<QCursor, modes> m_cursor_before;    // the cursor shown before each mode
    const Observing m_observing{*this, *this};
    kept_work m_work{*this};
    std::optional<key_range>
        m_planes_before;    // the bounds that were in force before a recording set its own
    bool m_is_mirroring_time = false;
    bool m_is_mirroring_plane = false;
    int m_drawn_time_point = -1;    // the position of the picture in m_pix
    int m_drawn_focal_plane = -1;
    FurtherInput* m_further_input = nullptr;
    int m_busy_runs = 0;      // the runs going on that a person waits for
    int m_event_depth = 0;    // handlers waiting for the events that they let be processed
};
