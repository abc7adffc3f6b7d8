// history_page.h - what was done to the recording, step by step; a click goes back to any of it.
#pragma once
#include "orvbrowser.h"
#include "row_table.h"

#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QTimer>

// A row for the recording as it was opened, and one for each step.
class StepList : public RowTable {
    Q_OBJECT

public:
    explicit StepList(const ORVBrowser& window) : _window(window) {}

    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    void update();    // takes over what has changed

private:
    const ORVBrowser& _window;
};

class HistoryPage : public QWidget, private curation_observer {
    Q_OBJECT

public:
    // The page of this window; the caller adds it to the control panel.
    explicit HistoryPage(ORVBrowser& window);

    // ---- Controls; owned by the page
    QPushButton* undo = nullptr;
    QPushButton* redo = nullptr;
    QPushButton* save_all = nullptr;
    QPushButton* take_up = nullptr;
    QPushButton* not_now = nullptr;
    QLabel* unsaved = nullptr;
    QListView* history = nullptr;

private:
    void state_changed() override { update_soon(); }
    void recording_changed() override { update_soon(); }
    void waiting_changed() override { update_soon(); }
    void step_replayed(const edit_step& step, bool forth) override;
    void offers_changed() override;
    void work_saved() override;

    QPushButton* add_button(const char* name, const QString& text, QRect place, const QString& tip);
    void update_soon();
    void update_controls();
    void choose_offer();
    void take_up_offer(std::size_t number);
    void say(const QString& text);

    ORVBrowser& _window;
    const Observing _observing{_window, *this};
    StepList _steps{_window};
    QTimer _update_soon;
};
