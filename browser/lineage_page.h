// lineage_page.h - the third page of the control panel: making units and links, walking through what
// looks wrong, splitting, and the lineage file.
#pragma once
#include "lineage_access.h"
#include "lineage_tally.h"

#include <QDoubleSpinBox>
#include <QLabel>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <map>
#include <string>

class HelpWindow;
class LongRun;
class TreeWindow;

class LineagePage : public QWidget {
    Q_OBJECT

public:
    // The page of this window; the caller adds it to the control panel.
    explicit LineagePage(ORVBrowser& window);
    ~LineagePage() override;

    // ---- Controls; owned by the page
    QPushButton* make_units = nullptr;
    QDoubleSpinBox* overlap = nullptr;    // share of the larger outline, 0 to 0.95
    QPushButton* make_links = nullptr;
    QPushButton* elite = nullptr;
    QPushButton* doubtful = nullptr;
    QPushButton* dead_end = nullptr;
    QPushButton* unlinked = nullptr;
    QPushButton* split = nullptr;
    QPushButton* auto_split = nullptr;
    QPushButton* read_lineage_file = nullptr;
    QPushButton* save_lineage_file = nullptr;
    QPushButton* tree = nullptr;
    QPushButton* help = nullptr;
    QPushButton* reload_colors = nullptr;
    QPushButton* close_recording = nullptr;
    QPushButton* stop = nullptr;
    QProgressBar* progress = nullptr;
    QLabel* numbers = nullptr;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void create_controls();
    void connect_controls();
    void enable_controls();
    void update_numbers();

    void make_all_units();
    void make_all_links();
    void toggle_elite();
    void show_next_doubtful();
    void toggle_auto_split(bool on);
    void read_file();
    void save_file();
    void show_tree();
    void show_help();

    void run_over_time(int first, const std::function<void(int)>& step);
    [[nodiscard]] bool may_drop_links();

    LineageAccess _access;
    QTimer _watch;    // looks now and then whether the numbers have changed
    std::map<int, tally> _tallies;
    unsigned long _counted_edits = 0;
    unsigned long _counted_revision = 0;
    bool _stop_asked = false;
    std::string _last_doubtful;
    unsigned long _walked_recording = 0;    // the one that it belongs to
    QPointer<TreeWindow> _tree_window;
    QPointer<HelpWindow> _help_window;
};
