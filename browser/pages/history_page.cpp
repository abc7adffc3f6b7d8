#include "history_page.h"

#include "message_line.h"

#include <QDateTime>
#include <QLocale>
#include <QMenu>

namespace {

// "21 Nov 14:32", in the person's time zone.
QString local_time(const kept_work::offer& offer)
{
    const QDateTime time =
        QDateTime::fromString(QString::fromStdString(offer.time), Qt::ISODate).toLocalTime();
    return QLocale::c().toString(time, "d MMM HH:mm");
}

QString entry_of(const kept_work::offer& offer)
{
    const QString count = offer.edits == 0   ? HistoryPage::tr("Saved work")
                          : offer.edits == 1 ? HistoryPage::tr("1 edit")
                                             : HistoryPage::tr("%1 edits").arg(offer.edits);
    return HistoryPage::tr("%1 of %2").arg(count, local_time(offer));
}

}    // namespace

// ---- The list

int StepList::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : 1; }

QVariant StepList::data(const QModelIndex& index, int role) const
{
    const edit_history& steps = _window.work().history();
    const std::size_t done = steps.first() + static_cast<std::size_t>(index.row());
    if (done > steps.end())    // it is about to be updated
        return {};
    if (role == Qt::ForegroundRole && done > steps.position())
        return _window.palette().color(QPalette::Disabled, QPalette::Text);
    if (role != Qt::DisplayRole)
        return {};
    if (done == steps.first())
        return done == 0 ? HistoryPage::tr("Opened") : HistoryPage::tr("Earlier edits");
    return QString::fromStdString(steps.at(done - 1).title());
}

void StepList::update()
{
    const edit_history& steps = _window.work().history();
    set_rows(_window.has_rois() ? static_cast<int>(steps.end() - steps.first()) + 1 : 0);
}

// ---- The page

HistoryPage::HistoryPage(ORVBrowser& window) : QWidget(window.tabWidget_control_panel), _window(window)
{
    setObjectName("historyPage");
    history = new QListView(this);
    history->setObjectName("history");
    history->setGeometry(8, 4, 360, 110);
    history->setFocusPolicy(Qt::NoFocus);
    history->setUniformItemSizes(true);
    history->setModel(&_steps);
    undo = add_button("undo", tr("Undo"), {378, 4, 100, 26}, tr("Take the last edit back (Ctrl+Z)"));
    redo = add_button("redo", tr("Redo"), {482, 4, 100, 26}, tr("Make it once more (Ctrl+Shift+Z, Ctrl+Y)"));
    save_all =
        add_button("save_all", tr("Save all"), {378, 32, 204, 26},
                   tr("Save everything that has changed beside the ROI file, without a question (Ctrl+S)"));
    unsaved = new QLabel(this);
    unsaved->setObjectName("unsaved");
    unsaved->setGeometry(380, 60, 204, 24);
    take_up = add_button("take_up", tr("Take up"), {378, 86, 100, 26},
                         tr("Take up the work of before that was not saved, with its undo"));
    not_now = add_button("not_now", tr("Not now"), {482, 86, 100, 26},
                         tr("Leave it in the journal; it is offered again when the recording is opened"));
    connect(undo, &QPushButton::clicked, this, [this] { _window.undo(); });
    connect(redo, &QPushButton::clicked, this, [this] { _window.redo(); });
    connect(save_all, &QPushButton::clicked, this, [this] { (void)_window.save_all(); });
    connect(take_up, &QPushButton::clicked, this, &HistoryPage::choose_offer);
    connect(not_now, &QPushButton::clicked, this, [this] { _window.decline_work(); });
    connect(history, &QListView::clicked, this, [this](const QModelIndex& row) {
        _window.go_to_step(_window.work().history().first() + static_cast<std::size_t>(row.row()));
    });
    _update_soon.setSingleShot(true);
    connect(&_update_soon, &QTimer::timeout, this, &HistoryPage::update_controls);
    update_controls();
}

QPushButton* HistoryPage::add_button(const char* name, const QString& text, QRect place, const QString& tip)
{
    auto* const button = new QPushButton(text, this);
    button->setObjectName(name);
    button->setGeometry(place);
    button->setToolTip(tip);
    button->setFocusPolicy(Qt::NoFocus);
    return button;
}

void HistoryPage::update_soon()
{
    constexpr int after_ms = 50;    // many changes in one go
    if (!_update_soon.isActive())
        _update_soon.start(after_ms);
}

void HistoryPage::update_controls()
{
    const kept_work& work = _window.work();
    _steps.update();
    const std::size_t row = work.history().position() - work.history().first();
    history->setCurrentIndex(_steps.index(static_cast<int>(row), 0));
    undo->setEnabled(_window.can_undo());
    redo->setEnabled(_window.can_redo());
    save_all->setEnabled(_window.has_rois() && !_window.is_busy());
    const std::size_t edits = work.unsaved_edits();
    unsaved->setText(!_window.has_rois() ? QString()
                     : edits == 0        ? tr("Nothing is unsaved")
                     : edits == 1        ? tr("1 edit is unsaved")
                                         : tr("%1 edits are unsaved").arg(edits));
    take_up->setEnabled(!work.offers().empty() && !_window.is_busy());
    not_now->setEnabled(!work.offers().empty());
}

void HistoryPage::step_replayed(const edit_step& step, bool forth)
{
    say((forth ? tr("Done again: %1") : tr("Undone: %1")).arg(QString::fromStdString(step.title())));
}

void HistoryPage::offers_changed()
{
    update_soon();
    if (_window.work().offers().empty())
        return say({});
    const kept_work::offer& newest = _window.work().offers().front();
    const QString work = newest.edits == 0   ? tr("Saved work of %1 can be taken up with its undo")
                         : newest.edits == 1 ? tr("1 edit of %1 was not saved")
                                             : tr("%2 edits of %1 were not saved").arg(newest.edits);
    say(tr("%1: Take up, on the page History").arg(work.arg(local_time(newest))));
}

void HistoryPage::work_saved()
{
    update_soon();
    if (_window.unsaved_edits() == 0)
        say(tr("Everything is saved"));
}

// The newest at once; a menu when there are several.
void HistoryPage::choose_offer()
{
    const auto& offers = _window.work().offers();
    if (offers.size() < 2) {
        take_up_offer(0);
        return;
    }
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (std::size_t i = 0; i < offers.size(); ++i)
        menu->addAction(entry_of(offers[i]), this, [this, i] { take_up_offer(i); });
    menu->popup(take_up->mapToGlobal(QPoint(0, take_up->height())));
}

void HistoryPage::take_up_offer(std::size_t number)
{
    if (_window.take_up_work(number))
        say(tr("Taken up"));
}

void HistoryPage::say(const QString& text)
{
    if (MessageLine* const line = MessageLine::of(_window))
        line->say(text);
}
