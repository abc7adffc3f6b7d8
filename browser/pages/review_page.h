// review_page.h - the page "Review": what may be wrong, one finding after the other, and what is proposed.
#pragma once
#include "finding_painter.h"
#include "parting_strip.h"
#include "review_walk.h"
#include "typed_field.h"
#include "work_list.h"

#include <QComboBox>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QWidget>

class ReviewPage : public QWidget, private curation_observer {
    Q_OBJECT

public:
    // The page of this window; the caller adds it to the control panel.
    ReviewPage(ORVBrowser& window, CanvasView& view, ReviewWalk& walk);

    // ---- Controls; owned by the page
    QPushButton* previous_finding = nullptr;
    QPushButton* next_finding = nullptr;
    QPushButton* accept = nullptr;
    QPushButton* dismiss = nullptr;
    QPushButton* reviewed = nullptr;
    QPushButton* cut = nullptr;
    QPushButton* accept_all = nullptr;
    QPushButton* work_list = nullptr;
    QPushButton* doubtful = nullptr;
    QPushButton* dead_end = nullptr;
    QPushButton* unlinked = nullptr;
    QComboBox* filter = nullptr;
    QComboBox* order = nullptr;
    TypedField* times = nullptr;       // "3", "3-7", "3-", "-7"; empty: all time points
    QPushButton* lineage = nullptr;    // checkable: of the nucleus on view alone
    QLabel* finding = nullptr;
    QLabel* proposal = nullptr;
    QLabel* remaining = nullptr;

protected:
    void showEvent(QShowEvent* e) override;

private:
    void recording_changed() override;
    void waiting_changed() override { enable_controls(); }

    void create_controls();
    void connect_controls();
    void choose(const std::function<void(ReviewWalk::choice&)>& change);
    void choose_times(const QString& text);
    void choose_lineage(bool on);
    void connect_walk(QPushButton* button, finding_kind kind);
    void update_soon() { _update_soon.start(0); }
    void enable_controls();
    void update_controls();
    void show_finding();
    [[nodiscard]] QString text_of_counts();
    void show_work_list();

    ORVBrowser& _window;
    CanvasView& _view;
    ReviewWalk& _walk;
    const Observing _observing{_window, *this};
    PartingStrip* _strip = nullptr;
    QTimer _update_soon;
    QPointer<WorkList> _list;
};
