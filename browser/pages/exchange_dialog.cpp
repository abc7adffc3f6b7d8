#include "exchange_dialog.h"

#include "error_line.h"
#include "keygen.h"
#include "message_line.h"
#include "places.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include <utility>

// ---- The list

void LossList::show(std::vector<loss> losses)
{
    beginResetModel();
    _losses = std::move(losses);
    endResetModel();
}

int LossList::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(_losses.size());
}

QVariant LossList::data(const QModelIndex& index, int role) const
{
    if (role != Qt::DisplayRole || !index.isValid())
        return {};
    return QString::fromStdString(line_of(at(index.row())));
}

// ---- The dialog

ExchangeDialog::ExchangeDialog(ORVBrowser& window, const char* name, const QString& title,
                               const QString& start_text)
    : QDialog(&window), _window(window), _form(new QFormLayout)
{
    setObjectName(name);
    setWindowTitle(title);
    start = new QPushButton(start_text, this);
    start->setObjectName("start");
    start->setDefault(true);
    stop = new QPushButton(tr("Stop"), this);
    stop->setObjectName("stop");
    stop->setEnabled(false);
    progress = new QProgressBar(this);
    progress->setObjectName("progress");
    QSizePolicy keeps_its_place = progress->sizePolicy();
    keeps_its_place.setRetainSizeWhenHidden(true);
    progress->setSizePolicy(keeps_its_place);
    progress->hide();
    result = new QLabel(this);
    result->setObjectName("result");
    result->setTextFormat(Qt::PlainText);    // a file name is no markup
    result->setWordWrap(true);
    result->setTextInteractionFlags(Qt::TextSelectableByMouse);
    losses = new QListView(this);
    losses->setObjectName("losses");
    losses->setUniformItemSizes(true);
    losses->setFocusPolicy(Qt::TabFocus);
    losses->setModel(&_losses);
    losses->setToolTip(tr("A click leads to the nucleus"));

    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(progress, 1);
    buttons->addWidget(start);
    buttons->addWidget(stop);
    auto* const all = new QVBoxLayout(this);
    all->addLayout(_form);
    all->addLayout(buttons);
    all->addWidget(result);
    all->addWidget(losses, 1);
    connect(start, &QPushButton::clicked, this, [this] { begin(); });
    connect(stop, &QPushButton::clicked, this, [this] { _is_stop_asked = true; });
    connect(losses, &QListView::clicked, this, &ExchangeDialog::lead_to);
}

void ExchangeDialog::reject()
{
    _is_stop_asked = true;
    QDialog::reject();
}

QLineEdit* ExchangeDialog::add_path(const char* name, const QString& label, wanted what,
                                    QFileDialog::AcceptMode mode)
{
    auto* const line = new QLineEdit(this);
    line->setObjectName(name);
    auto* const row = new QHBoxLayout;
    row->addWidget(line, 1);
    const auto add_button = [&](const char* prefix, const QString& text, wanted one) {
        auto* const button = new QPushButton(text, this);
        button->setObjectName(QString(prefix) + name);
        button->setAutoDefault(false);
        row->addWidget(button);
        connect(button, &QPushButton::clicked, this, [=, this] { choose_path(line, one, mode); });
    };
    if (what == wanted::file_or_folder)
        add_button("browse_file_", tr("File..."), wanted::file);
    add_button("browse_", what == wanted::file ? tr("File...") : tr("Folder..."),
               what == wanted::file ? wanted::file : wanted::folder);
    _form->addRow(label, row);
    return line;
}

QLineEdit* ExchangeDialog::add_line(const char* name, const QString& label, const QString& hint)
{
    auto* const line = new QLineEdit(this);
    line->setObjectName(name);
    line->setPlaceholderText(hint);
    _form->addRow(label, line);
    return line;
}

void ExchangeDialog::choose_path(QLineEdit* line, wanted what, QFileDialog::AcceptMode mode)
{
    const QPointer<ExchangeDialog> self(this);
    const bool is_folder = what == wanted::folder;
    const QPointer<QFileDialog> dialog = new QFileDialog(this, windowTitle());    // it goes with its parent
    dialog->setObjectName("browse");
    dialog->setAcceptMode(is_folder ? QFileDialog::AcceptOpen : mode);
    dialog->setFileMode(is_folder ? QFileDialog::Directory : QFileDialog::AnyFile);
    dialog->setOption(QFileDialog::DontUseNativeDialog);
    dialog->setOption(QFileDialog::DontConfirmOverwrite);    // "Replace" says so
    if (!line->text().isEmpty())
        dialog->selectFile(line->text());
    const bool is_chosen = dialog->exec() == QDialog::Accepted && dialog;
    if (self && is_chosen)
        line->setText(dialog->selectedFiles().value(0));
    delete dialog;
}

void ExchangeDialog::set_working(bool on)
{
    _is_working = on;
    _is_stop_asked = false;
    start->setEnabled(!on);
    stop->setEnabled(on);
    progress->reset();
    progress->setVisible(on);
}

outcome ExchangeDialog::work(const std::function<outcome(const run_callbacks&)>& job)
{
    if (_is_working)
        return outcome::stopped;
    const QPointer<ExchangeDialog> self(this);
    const bool was_shown = _window.isVisible();
    std::string last_line;
    const error_listener listener([&](const std::string& line) { last_line = line; });
    set_working(true);
    say({});
    const run_callbacks callbacks{.progress =
                                      [self](int done, int total) {
                                          if (!self)
                                              return;
                                          self->progress->setMaximum(total);
                                          self->progress->setValue(done);
                                      },
                                  // Closing the main window ends the program once this returns.
                                  .carry_on =
                                      [self, was_shown] {
                                          QCoreApplication::processEvents();
                                          return self && !self->_is_stop_asked &&
                                                 self->_window.isVisible() == was_shown;
                                      }};
    const outcome found = job(callbacks);
    if (!self)
        return outcome::stopped;
    set_working(false);
    if (found == outcome::stopped)
        say(tr("Stopped: nothing was written."));
    if (found == outcome::refused)
        say(QString::fromStdString(last_line).replace("--force", tr("\"Replace\"")));
    return found;
}

void ExchangeDialog::say(const QString& text) { show_result(text, {}, 0); }

void ExchangeDialog::show_result(const QString& text, std::vector<loss> lost, unsigned long recording)
{
    result->setText(text);
    _losses.show(std::move(lost));
    _recording = recording;
}

// The recording may be another one by now, and the nucleus gone.
void ExchangeDialog::lead_to(const QModelIndex& row)
{
    const std::string key = _losses.at(row.row()).head;
    Places* const places = Places::of(_window);
    if (key.empty() || !places)
        return;
    const bool is_here =
        _window.recording() == _recording && _window.has_rois() && _window.rois().db.contains(key);
    const std::string unit = _window.head(key);
    places->settle();
    if (is_here)
        places->show_unit(is_roi_key(unit) ? unit : key);
    else if (MessageLine* const line = MessageLine::of(_window))
        line->say(tr("%1 is not here any more").arg(QString::fromStdString(key)));
}
