// orvbrowser.h - the main window: one image of a recording with its ROIs, and everything a person does
// to them.
//
// This is the only declaration of the window; each group below names the file that holds its bodies.
// Positions are image pixels, focal planes and time points; every set, map and link holds ROI keys
// (keygen.h). A unit is named by its head, the key of one of its members. All of it runs on the
// GUI thread.
#pragma once
#include "ImageDB.h"
#include "ORV_pos.h"
#include "ORV_roi.h"
#include "file_dialogs.h"
#include "q_roiimgdb.h"
#include "roidb_plus.h"
#include "window_controls.h"

#include <QApplication>
#include <QColor>
#include <QCursor>
#include <QEventLoop>
#include <QPixmap>
#include <QPointer>
#include <QWidget>

#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

class LongRun;
class QPainter;
class unit_pixels;

class ORVBrowser : public QWidget, public WindowControls {
    Q_OBJECT

protected:
    // The slots are spelt with these short names; a derived class that overrides one may use them too.
    using string = std::string;
    template <class T>
    using set = std::set<T>;
    template <class T>
    using list = std::list<T>;

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

    // ---- Marks and the ROI under a point (orvbrowser_input.cpp)
    virtual bool isSelected(string key);
    virtual bool isFwdTracked(string key);
    virtual bool isBwdTracked(string key);
    virtual bool isElite(string key);
    virtual string xyROI(int x, int y);    // key of the ROI of this plane at an image pixel, or ""

    // ---- Tracking (orvbrowser_tracking.cpp)
    virtual bool reach(string a, string b);    // one of the two units is an ancestor of the other
    virtual int z_min(string unit);
    virtual int z_max(string unit);

    // ---- Units (orvbrowser_units.cpp)
    virtual string head(roi r);
    virtual string head(string key);    // "N/A" for an ROI in no unit
    virtual set<string> member(string key);
    virtual set<string> units(int t);
    virtual unsigned int ID(string a);

    // ---- Lineage (orvbrowser_lineage.cpp)
    virtual set<string> parents(string key);
    virtual set<string> children(string key);
    virtual set<string> upstream_units(string key, int end_t);
    virtual set<string> subset_of_unit_from(string key);
    virtual set<string> subset_of_elite_unit_from(string key);
    virtual pos3d g(string key);      // centroid: pixels, pixels, focal planes
    virtual pos3d E_g(string key);    // the same, all in pixels
    virtual bool isLink(string parent, string child);

    // ---- Splitting (orvbrowser_cut.cpp)
    virtual unsigned int cross_section_size(string doubt, pos3d E_normal, pos3d E_pos, bool& plus,
                                            bool& minus);
    virtual pos3d search_cutting_position(string doubt, pos3d E_normal, pos3d E_pos, int SEARCH_WIDTH);

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
    virtual void manualSplit(string doubt, set<string> ps, int x, int y, int z);    // orvbrowser_split.cpp
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
    virtual void forwardTracking(int t);
    virtual void backwardTracking(int start_time_point);
    virtual void zTracking(int t);
    virtual void checkAdjacentFocalPlane(roi& r_from, int t, int z, set<string>* roiset, double mor_t,
                                         double mor_z);
    virtual void pushButton_stop_clicked();

    // ---- Colours, reset (orvbrowser_colors.cpp)
    virtual void pushButton_reload_config_file_clicked();
    virtual void pushButton_reset_clicked();

    // ---- ROI files (orvbrowser_files.cpp)
    virtual void pushButton_save_roifile_clicked();
    virtual void pushButton_clean_clicked();    // orvbrowser_marks.cpp
    virtual void pushButton_read_roifile_clicked();

    // ---- Units and links (orvbrowser_units.cpp, orvbrowser_lineage.cpp, orvbrowser_reports.cpp,
    // orvbrowser_merge.cpp)
    virtual void makeLinkage(int t);
    virtual void release_child(string parent, string child);
    virtual void link(string unit1, string unit2);
    virtual void search_doubt_units();
    virtual void mergeUnits(string a, string b);

    // ---- Marks and their files (orvbrowser_files.cpp, orvbrowser_marks.cpp)
    virtual void pushButton_restore_clicked();
    virtual void pushButton_select_all_clicked();
    virtual void pushButton_read_info_clicked();
    virtual void pushButton_save_info_clicked();
    virtual void pushButton_auto_split_toggled(bool on);    // orvbrowser_split.cpp
    virtual void pushButton_drop_false_positive_clicked();

    // ---- Looking at a unit, splitting, reports (orvbrowser_units.cpp, orvbrowser_split.cpp,
    // orvbrowser_reports.cpp)
    virtual void view(string key);
    virtual void pushButton_split_clicked();
    virtual void splitROI(string doubt, pos3d E_normal, pos3d E_m, list<roi>& roi_plus, list<roi>& roi_minus);
    virtual void pushButton_dead_end_clicked();
    virtual void pushButton_unlinked_unit_clicked();

    // ---- False-positive files (orvbrowser_marks.cpp)
    virtual void pushButton_read_FP_clicked();
    virtual void pushButton_save_FP_clicked();

    // ---- Texts (orvbrowser_widgets.cpp)
    virtual void languageChange();

    // ==== State ====
protected:
    int newVariable = 0;                             // a placeholder that nothing reads or writes
    std::multimap<string, string> m_head_members;    // unit head to each of its members
    bool m_auto_split = false;
    set<string> m_add_lineage_head_set;
    set<string> m_remove_lineage_head_set;
    bool m_remove_lineage_mode = false;
    bool m_add_lineage_mode = false;
    bool dirty = false;    // the picture must be rebuilt before the next paint
    bool m_show_tracked_rois_mode = false;
    set<string> m_lineage_mode_roi_set;    // at most the one chosen lineage head
    bool m_lineage_mode = false;
    bool m_manual_elite = false;
    set<string> m_falsely_grouped_units_candidates;
    std::multimap<string, string> m_linkage_multimap;    // child head to parent head
    set<string> m_linkage_set;
    std::map<string, string> m_members_head;    // member to the head of its unit
    set<string> m_elite_head_roi_set;
    std::map<string, pos3d> m_smallest_enclosing_circle;
    QColor color[128];    // by the OR of the state codes in roi_colors.h
    set<string> m_bwd_roi_set;
    set<string> m_selected_roi_set;
    set<string> m_mouse_over_roi_set;
    QApplication* m_app = nullptr;    // not owned
    QPixmap m_pix;                    // the composed picture of the canvas
    string m_roi_ext_dir;
    int m_max_focal_plane = 0;
    int m_min_focal_plane = 0;
    int m_max_time_point = 0;
    int m_min_time_point = 0;
    string m_setting_img_head, m_img_head, m_org_dir, m_setting_org_dir;
    int m_setting_max_focal_plane = 0;
    int m_setting_min_focal_plane = 0;
    int m_setting_max_time_point = 0;
    int m_setting_min_time_point = 0;
    string m_setting_lnk_base, m_roi_ext, m_setting_roi_ext0, m_setting_dataset3, m_setting_dataset2,
        m_setting_dataset1, m_setting_dataset0, m_setting_dic_base;
    string m_img_base, m_dic_base;
    std::unique_ptr<roidb_plus> m_roidb;    // null while no recording is open; so are the two caches
    std::unique_ptr<ImageDB> m_imgdb;
    string m_dataset;
    int m_time_point = 0;
    int m_focal_plane = 0;
    string m_setting_roi_ext1, m_lnk_base, m_roi_base, m_setting_roi_ext_dir, m_dataset1, m_dataset2,
        m_dataset3, m_roi_ext1;
    int m_cache_time = 0;    // time points
    int m_setting_cache_time = 0;
    bool m_auto = false;    // tracking goes on by itself
    set<string> m_fwd_roi_set;
    set<string> m_removed_roi_set;
    std::unique_ptr<q_roiimgdb> m_q_roiimgdb;
    bool m_make_units = false;
    bool m_auto_make_units = false;
    set<string> m_make_unit_roi_set;
    roi m_unit_roi_head;
    bool m_show_centroid = false;
    bool m_merge_mode = false;
    set<string> m_split_parents;
    bool m_split_mode = false;

    void closeEvent(QCloseEvent* e) override;    // ends the run that is going on
    void showEvent(QShowEvent* e) override;
    bool eventFilter(QObject* watched, QEvent* e) override;

private:
    friend class LongRun;
    friend class BusyRun;
    friend class LineageAccess;

    // ---- Widgets (orvbrowser_widgets.cpp)
    void createWidgets();
    void connectWidgets();
    void setTrackingButtonsEnabled(bool on);

    // ---- Helpers of several files
    [[nodiscard]] bool isOpen() const noexcept { return has_rois() && m_imgdb; }
    [[nodiscard]] bool has_rois() const noexcept { return m_roidb && m_q_roiimgdb; }
    void processEvents();
    [[nodiscard]] bool can_process_events() const noexcept;
    bool process_events_of_run(QEventLoop::ProcessEventsFlags flags);    // false when there were none
    void show_changes();               // marks the picture as out of date and paints it at once
    void finish();                     // the same, and lets pending events be processed
    void end_waiting();                // shows the cursor of before a wait
    void release_dropped_rasters();    // unless a run may hold one

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
    [[nodiscard]] string image_filename();
    void reset_recording_state();
    void take_time_bounds();

    // ---- Files
    void open_recording(std::unique_ptr<roidb_plus> roidb);
    void save_rois(const string& filename);
    void drop_roi(const string& key);
    void restore_rois(const string& filename);
    void read_marks(const file_question& question, const char* suffix, const char* keyword,
                    set<string>& marks);
    void save_marks(QPushButton& button, const file_question& question, const char* suffix,
                    const char* keyword, const set<string>& marks);

    // ---- Input
    void set_mode(bool& mode, bool on);
    void show_mode_cursor();
    bool press_mode_key(int key);    // true iff it is one
    void press_other_key(int key);
    void toggle_lineage_mode();
    void light_roi(const string& key);
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
    void add_to_unit(const string& key);
    void flood(const roi& r_from, int t, int z, double mor_t, double mor_z,
               const std::function<bool(const string&)>& take);
    bool for_each_marked(int t, const set<string>& keys, const std::function<void(roi&)>& visit);
    void track(int t, int t_to, set<string>& reached);
    void repeat_tracking(const std::function<bool(const LongRun&)>& step);

    // ---- Units and lineage
    using link_cursor = std::multimap<string, string>::const_iterator;
    struct unit_links {
        set<string> parents;
        set<string> children;
    };
    struct unit_member {
        const string* unit;
        q_roiimg* raster;
        pixel_box box;
    };
    using members_by_plane = std::map<int, std::vector<unit_member>>;

    void forget_unit(const string& unit);
    void leave_unit(const string& key);
    void forget_missing_members();
    void register_unit(const string& unit, const set<string>& members);
    void move_choice(const string& from, const string& to);
    [[nodiscard]] std::pair<link_cursor, link_cursor> links_into(int t) const;
    [[nodiscard]] set<string> parents_into(int t) const;
    [[nodiscard]] set<string> units_reached_at(int t, const string& unit);
    [[nodiscard]] unit_links links_of(const string& unit, int t);
    void release_links(const string& unit, const unit_links& links);
    [[nodiscard]] members_by_plane unit_members_at(int t);
    void report(const char* finding, const string& unit);
    [[nodiscard]] bool is_on_view(const string& unit);
    void paint_centroid(QPainter& painter, const string& unit, const char* bright, const char* dark);
    void paint_links(QPainter& painter, const string& unit);
    void release_all(const string& parent, const string& child);

    // ---- Splitting: what to do (orvbrowser_split.cpp)
    [[nodiscard]] bool split_pass(const LongRun& run);
    [[nodiscard]] bool wait_while_auto_split(LongRun& run);
    void handle_suspect(const string& doubt);
    [[nodiscard]] bool are_same_nucleus(const string& p1, const string& p2);
    [[nodiscard]] bool repair_links(const string& doubt, const string& p1, const string& p2,
                                    const set<string>& sisters1, const set<string>& sisters2);
    void pair_by_distance(const string& p1, const string& p2, const string& first, const string& second);

    // ---- Splitting: the cut (orvbrowser_cut.cpp)
    struct unit_cut {
        pos3d E_position;
        list<roi> plus;
        list<roi> minus;
    };
    void cut_unit(const string& doubt, pos3d E_normal, pos3d E_m, int search_width);
    [[nodiscard]] std::optional<unit_cut> find_cut(const string& doubt, pos3d E_normal, pos3d E_m,
                                                   int search_width);
    [[nodiscard]] unit_pixels pixels_of(const string& unit);
    [[nodiscard]] std::optional<pos3d> best_position(LongRun& run, const string& doubt, pos3d nom,
                                                     pos3d E_pos, int search_width);
    [[nodiscard]] bool are_new(const set<string>& old_members, const list<roi>& roi_plus,
                               const list<roi>& roi_minus) const;
    [[nodiscard]] const q_roiimg* raster_to_cut(const string& key);
    [[nodiscard]] const char* fault_of(const unit_cut& cut, const string& doubt, pos3d nom);
    void replace_members(const string& doubt, const list<roi>& roi_plus, const list<roi>& roi_minus);
    void inherit_marks(const set<string>& old_members, const set<string>& new_keys);
    using half_of_unit = std::map<string, string>;    // parent or child to the half it is linked to
    [[nodiscard]] half_of_unit pair_with_halves(const set<string>& units, pos3d nom, pos3d E_m,
                                                const string& head_plus, const string& head_minus);
    void link_to_halves(const half_of_unit& half_of, const string& head_plus, const string& head_minus);
    [[nodiscard]] string nearest(const set<string>& units, const string& to);

    std::map<const bool*, QCursor> m_cursor_before;    // by the flag of a mode: the cursor shown before it
    bool m_is_mirroring_time = false;
    bool m_is_mirroring_plane = false;
    int m_drawn_time_point = -1;    // the position of the picture in m_pix
    int m_drawn_focal_plane = -1;
    unsigned long m_recording = 0;    // counts the recordings opened and closed, so that a run notices
    unsigned long m_edits = 0;        // counts the changes of units, links and elite marks
    int m_runs = 0;                   // the runs going on, one inside the other
    int m_busy_runs = 0;              // those of them that a person waits for
    int m_steps_between_looks = 0;    // how many steps of a run are done between two looks for events
    int m_steps_to_skip = 0;          // how many of them are left
    int m_event_depth = 0;            // handlers waiting for the events that they let be processed
    bool m_closing = false;
};
