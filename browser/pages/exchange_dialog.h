// exchange_dialog.h - what the dialogs of import and export have in common: fields, progress, Stop, and the
// list of what was lost, whose lines lead to the nucleus.
//
// A window of its own, which leaves the main one free: events are processed while it works, and what they
// bring may close the recording, open another one, or delete the window and the dialog with it.
#pragma once
#include "loss_report.h"
#include "orvbrowser.h"
#include "run_callbacks.h"

#include <QAbstractListModel>
#include <QDialog>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QProgressBar>
#include <QPushButton>

#include <functional>
#include <vector>

// A row for each loss.
class LossList : public QAbstractListModel {
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    void show(std::vector<loss> losses);
    [[nodiscard]] const loss& at(int row) const { return _losses[static_cast<std::size_t>(row)]; }
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

private:
    std::vector<loss> _losses;
};

class ExchangeDialog : public QDialog {
    Q_OBJECT

public:
    // ---- Controls; owned by the dialog
    QPushButton* start = nullptr;
    QPushButton* stop = nullptr;
    QProgressBar* progress = nullptr;
    QLabel* result = nullptr;    // what has come of it
    QListView* losses = nullptr;

    void reject() override;    // ends the work, too

protected:
    ExchangeDialog(ORVBrowser& window, const char* name, const QString& title, const QString& start_text);

    enum class wanted { file, folder, file_or_folder };

    // A line to type a path in, and a button that asks for one; an existing one, or where one is to be
    // written.
    QLineEdit* add_path(const char* name, const QString& label, wanted what, QFileDialog::AcceptMode mode);
    QLineEdit* add_line(const char* name, const QString& label, const QString& hint);
    [[nodiscard]] QFormLayout& form() { return *_form; }
    [[nodiscard]] ORVBrowser& window_of() { return _window; }

    // What happens when `start` is pressed.
    virtual void begin() = 0;

    // Runs the job, shows how far it is, and tells what has come of it unless it is done. The job must not
    // touch this object: `stopped` is also the answer when it is gone.
    [[nodiscard]] outcome work(const std::function<outcome(const run_callbacks&)>& job);

    void say(const QString& text);    // with nothing lost
    void show_result(const QString& text, std::vector<loss> lost, unsigned long recording);

private:
    void choose_path(QLineEdit* line, wanted what, QFileDialog::AcceptMode mode);
    void set_working(bool on);
    void lead_to(const QModelIndex& row);

    ORVBrowser& _window;
    QFormLayout* _form;
    LossList _losses;
    unsigned long _recording = 0;    // the one that the losses belong to
    bool _is_stop_asked = false;
    bool _is_working = false;
};
