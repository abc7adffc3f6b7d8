// lineage_page.h - the third page of the control panel: making units and links, walking through what
// looks wrong, splitting, and the lineage file.
#pragma once
#include "lineage_tally.h"
#include "orvbrowser.h"

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QWidget>

#include <functional>
#include <map>
#include <optional>
#include <string>

class HelpWindow;
class TreeWindow;

class LineagePage : public QWidget, private curation_observer {
    Q_OBJECT

public:
    // The page of this window; the caller adds it to the control panel.
    explicit LineagePage(ORVBrowser& window);
    ~LineagePage() override;

    // ---- Controls; owned by the page
    QPushButton* make_units = nullptr;
    QComboBox* rule = nullptr;            // unit_rule
    QDoubleSpinBox* overlap = nullptr;    // its share, 0 to 0.95
    QPushButton* scale = nullptr;
    QPushButton* make_links = nullptr;
    QPushButton* elite = nullptr;
    QPushButton* split = nullptr;
    QPushButton* auto_split = nullptr;
    QPushButton* read_lineage_file = nullptr;
    QPushButton* save_lineage_file = nullptr;
    QPushButton* tree = nullptr;
    QPushButton* help = nullptr;
    QPushButton* reload_colors = nullptr;
    QPushButton* close_recording = nullptr;
    QPushButton* import_labels = nullptr;
    QPushButton* export_units = nullptr;
    QPushButton* stop = nullptr;
    QProgressBar* progress = nullptr;
    QLabel* numbers = nullptr;

protected:
    void showEvent(QShowEvent* e) override;

private:
    void state_changed() override;
    void step_ended(edit_step& step) override;
    void recording_changed() override;
    void waiting_changed() override;

    void create_controls();
    void connect_controls();
    void enable_controls();
    void count();
    void show_numbers();

    void make_all_units();
    void make_all_links();
    void toggle_elite();
    [[nodiscard]] std::string first_suspect(const std::set<std::string>& left_alone);
    void split_shown();
    void toggle_auto_split(bool on);
    void warn_of_first_time_point();
    void split_all();
    void tell_splits();
    void read_file();
    void save_file();
    void show_tree();
    void show_help();

    // False when it was stopped, or the recording closed.
    bool run_over_time(int first, const std::function<void(int)>& step);
    [[nodiscard]] making chosen_making() const;
    [[nodiscard]] bool ask_about_units(making& how);
    [[nodiscard]] bool ask_about_links(making& how);

    ORVBrowser& _window;
    const Observing _observing{_window, *this};
    QTimer _count_soon;    // runs while the numbers are out of date
    std::map<int, tally> _tallies;
    bool _stop_asked = false;
    QString _split_warning;    // of this run of the automatic split
    int _splits = 0;           // likewise
    int _merges = 0;
    QPointer<TreeWindow> _tree_window;
    QPointer<HelpWindow> _help_window;
};
