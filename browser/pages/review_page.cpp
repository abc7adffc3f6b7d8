#include "review_page.h"

#include "page_buttons.h"

#include "message_line.h"

#include <QGuiApplication>
#include <QRegularExpression>

namespace {

const button_row<ReviewPage> buttons[] = {
    {&ReviewPage::previous_finding,
     "previous_finding",
     QT_TRANSLATE_NOOP("ReviewPage", "Previous"),
     {8, 4, 66, 26},
     QT_TRANSLATE_NOOP("ReviewPage", "The finding before (P)")},
    {&ReviewPage::next_finding,
     "next_finding",
     QT_TRANSLATE_NOOP("ReviewPage", "Next"),
     {74, 4, 54, 26},
     QT_TRANSLATE_NOOP("ReviewPage", "The next finding (N)")},
    {&ReviewPage::accept,
     "accept",
     QT_TRANSLATE_NOOP("ReviewPage", "Accept"),
     {134, 4, 62, 26},
     QT_TRANSLATE_NOOP("ReviewPage", "Do what is proposed, and go to the next finding (Return)")},
    {&ReviewPage::dismiss,
     "dismiss",
     QT_TRANSLATE_NOOP("ReviewPage", "Not an error"),
     {196, 4, 86, 26},
     QT_TRANSLATE_NOOP("ReviewPage", "Leave it as it is; it is not listed again unless its ROIs change (I)")},
    {&ReviewPage::reviewed,
     "reviewed",
     QT_TRANSLATE_NOOP("ReviewPage", "Reviewed"),
     {282, 4, 74, 26},
     QT_TRANSLATE_NOOP("ReviewPage", "You have looked at this nucleus: no proposal contradicts it (V)")},
    {&ReviewPage::cut,
     "cut",
     QT_TRANSLATE_NOOP("ReviewPage", "Cut"),
     {356, 4, 44, 26},
     QT_TRANSLATE_NOOP(
         "ReviewPage",
         "Show where the nucleus on view would be cut in two (K); comma and full stop move the cut")},
    {&ReviewPage::accept_all,
     "accept_all",
     QT_TRANSLATE_NOOP("ReviewPage", "Accept all like this"),
     {404, 4, 188, 26},
     QT_TRANSLATE_NOOP("ReviewPage", "Do the same for all findings of this class, as one step")},
    {&ReviewPage::work_list,
     "work_list",
     QT_TRANSLATE_NOOP("ReviewPage", "Work list"),
     {8, 32, 70, 26},
     QT_TRANSLATE_NOOP("ReviewPage", "All findings in a window of their own")},
    {&ReviewPage::lineage,
     "lineage",
     QT_TRANSLATE_NOOP("ReviewPage", "Lineage"),
     {340, 32, 58, 26},
     QT_TRANSLATE_NOOP("ReviewPage", "List and count the lineage of the nucleus on view alone")},
    {&ReviewPage::doubtful,
     "doubtful",
     QT_TRANSLATE_NOOP("ReviewPage", "Doubtful"),
     {404, 32, 62, 26},
     QT_TRANSLATE_NOOP("ReviewPage", "The next unit with more than one parent (with Shift: the one before)")},
    {&ReviewPage::dead_end,
     "dead_end",
     QT_TRANSLATE_NOOP("ReviewPage", "Dead end"),
     {466, 32, 66, 26},
     QT_TRANSLATE_NOOP(
         "ReviewPage",
         "The next unit without a child before the last time point (with Shift: the one before)")},
    {&ReviewPage::unlinked,
     "unlinked",
     QT_TRANSLATE_NOOP("ReviewPage", "Unlinked"),
     {532, 32, 62, 26},
     QT_TRANSLATE_NOOP(
         "ReviewPage",
         "The next unit without a parent after the first time point (with Shift: the one before)")},
};

constexpr int label_width = 250;    // pixels, beside the strip
constexpr int page_width = 594;

// What does not fit can be read when the pointer rests on it.
void show_fitting(QLabel& label, const QString& text)
{
    label.setText(label.fontMetrics().elidedText(text, Qt::ElideRight, label.width()));
    label.setToolTip(text);
}

}    // namespace

ReviewPage::ReviewPage(ORVBrowser& window, CanvasView& view, ReviewWalk& walk)
    : QWidget(window.tabWidget_control_panel), _window(window), _view(view), _walk(walk)
{
    setObjectName("reviewPage");
    create_controls();
    connect_controls();
    _view.add_overlay([this](QPainter& painter) {
        if (_walk.current() && _window.isOpen())
            paint_finding(painter, _window, _view.view(), *_walk.current(),
                          _walk.parting() ? &*_walk.parting() : nullptr);
    });
    update_controls();
}

void ReviewPage::create_controls()
{
    add_buttons(*this, buttons);
    const auto add_choice = [this](const char* name, QRect place) {
        auto* const choice = new QComboBox(this);
        choice->setObjectName(name);
        choice->setGeometry(place);
        choice->setFocusPolicy(Qt::NoFocus);
        return choice;
    };
    filter = add_choice("filter", {82, 32, 112, 26});
    filter->addItem(tr("All kinds"));
    for (std::size_t kind = 0; kind < finding_kind_count; ++kind)
        filter->addItem(QString::fromUtf8(name_of(static_cast<finding_kind>(kind))));
    order = add_choice("order", {196, 32, 84, 26});
    order->addItems({tr("By score"), tr("By time"), tr("By lineage")});
    order->setToolTip(tr("The most likely errors first, in order of time, or lineage by lineage"));
    times = new TypedField(this, [this](const QString& text) { choose_times(text); });
    times->setObjectName("times");
    times->setGeometry(282, 33, 56, 24);
    times->setPlaceholderText(tr("Times"));
    times->setToolTip(tr("Only these time points: 3, 3-7, 3- or -7 (Return); empty: all"));
    lineage->setCheckable(true);
    const auto add_label = [this](const char* name, QRect place) {
        auto* const label = new QLabel(this);
        label->setObjectName(name);
        label->setGeometry(place);
        QFont small = label->font();
        small.setPixelSize(11);
        label->setFont(small);
        return label;
    };
    finding = add_label("finding", {8, 60, label_width, 18});
    proposal = add_label("proposal", {8, 78, label_width, 18});
    remaining = add_label("remaining", {8, 98, label_width, 18});
    _strip = new PartingStrip(this);
    _strip->setGeometry(262, 61, page_width - 262, 57);
}

void ReviewPage::connect_controls()
{
    connect(previous_finding, &QPushButton::clicked, &_walk, &ReviewWalk::previous);
    connect(next_finding, &QPushButton::clicked, &_walk, &ReviewWalk::next);
    connect(accept, &QPushButton::clicked, &_walk, &ReviewWalk::accept);
    connect(dismiss, &QPushButton::clicked, &_walk, &ReviewWalk::dismiss);
    connect(reviewed, &QPushButton::clicked, &_walk, &ReviewWalk::toggle_reviewed);
    connect(cut, &QPushButton::clicked, &_walk, &ReviewWalk::cut_unit);
    connect(accept_all, &QPushButton::clicked, &_walk, &ReviewWalk::accept_all);
    connect(work_list, &QPushButton::clicked, this, &ReviewPage::show_work_list);
    connect_walk(doubtful, finding_kind::doubtful);
    connect_walk(dead_end, finding_kind::dead_end);
    connect_walk(unlinked, finding_kind::unlinked);
    connect(filter, &QComboBox::currentIndexChanged, this, [this](int row) {
        choose([row](ReviewWalk::choice& c) {
            c.kind = row > 0 ? std::optional(static_cast<finding_kind>(row - 1)) : std::nullopt;
        });
    });
    connect(order, &QComboBox::currentIndexChanged, this, [this](int row) {
        choose([row](ReviewWalk::choice& c) { c.by = static_cast<ReviewWalk::order>(row); });
    });
    connect(lineage, &QPushButton::clicked, this, &ReviewPage::choose_lineage);
    _update_soon.setSingleShot(true);
    connect(&_update_soon, &QTimer::timeout, this, &ReviewPage::update_controls);
    connect(&_walk, &ReviewWalk::list_changed, this, &ReviewPage::update_soon);
    connect(&_walk, &ReviewWalk::shown, this, &ReviewPage::show_finding);
}

// ---- What is listed

void ReviewPage::choose(const std::function<void(ReviewWalk::choice&)>& change)
{
    ReviewWalk::choice wanted = _walk.chosen();
    change(wanted);
    _walk.choose(std::move(wanted));
}

void ReviewPage::choose_times(const QString& text)
{
    static const QRegularExpression range("^(\\d{0,4})(\\s*-\\s*(\\d{0,4}))?$");
    const QRegularExpressionMatch match = range.match(text);
    const ReviewWalk::choice all;
    const QString first = match.captured(1);
    const QString last = match.capturedLength(2) > 0 ? match.captured(3) : first;
    if (!match.hasMatch() || (!first.isEmpty() && !last.isEmpty() && first.toInt() > last.toInt())) {
        MessageLine::of(_window)->say(tr("Time points are typed as 3, 3-7, 3- or -7"));
        return;
    }
    times->show_text(text);
    choose([&](ReviewWalk::choice& c) {
        c.first_t = first.isEmpty() ? all.first_t : first.toInt();
        c.last_t = last.isEmpty() ? all.last_t : last.toInt();
    });
}

void ReviewPage::choose_lineage(bool on)
{
    const std::string unit = on ? _walk.unit_on_view() : std::string();
    if (on && unit.empty())
        MessageLine::of(_window)->say(tr("No nucleus is chosen"));
    choose([&](ReviewWalk::choice& c) { c.lineage = unit; });
    update_soon();
}

void ReviewPage::connect_walk(QPushButton* button, finding_kind kind)
{
    connect(button, &QPushButton::clicked, this,
            [this, kind] { _walk.walk(kind, !(QGuiApplication::keyboardModifiers() & Qt::ShiftModifier)); });
}

void ReviewPage::showEvent(QShowEvent*)
{
    _walk.begin();
    update_controls();
}

void ReviewPage::show_finding()
{
    _strip->show_parting(_walk.parting());
    _view.update_canvas();
    update_soon();
}

void ReviewPage::recording_changed()
{
    times->show_text({});    // another recording has others
    enable_controls();
    update_soon();
}

void ReviewPage::enable_controls()
{
    const bool is_open = _window.isOpen() && !_window.is_waited_for();
    for (const auto& row : buttons)
        (this->*row.button)->setEnabled(is_open);
    accept->setEnabled(is_open && _walk.current());
    dismiss->setEnabled(is_open && _walk.current());
    accept_all->setEnabled(is_open && _walk.alike().is_offered());
}

void ReviewPage::update_controls()
{
    enable_controls();
    if (!isVisible())
        return;
    _walk.begin();
    const std::optional<::finding>& current = _walk.current();
    for (QLabel* const label : {finding, proposal, remaining})    // where there is no strip it is theirs
        label->resize(_walk.parting() ? label_width : page_width - label->x(), label->height());
    show_fitting(*finding, QString::fromStdString(_walk.reason()));
    show_fitting(*proposal, current ? QString::fromStdString(proposal_of(*current)) : QString());
    show_fitting(*remaining, text_of_counts());
    lineage->setChecked(!_walk.chosen().lineage.empty());
    const review::alike alike = _walk.alike();
    accept_all->setText(
        alike.is_offered()
            ? tr("Accept all %1, %2 % right").arg(alike.number).arg(static_cast<int>(alike.share * 100))
            : tr("Accept all like this"));
}

// "312 open of 522, 61 % of nuclei reviewed"
QString ReviewPage::text_of_counts()
{
    if (!_window.isOpen())
        return {};
    if (!_walk.is_made())
        return tr("The list is being made: %1 %").arg(static_cast<int>(100 * _walk.progress()));
    const review_counts& counts = _walk.counts();
    const QString open =
        counts.open > 0 ? tr("%1 open of %2").arg(counts.open).arg(counts.total) : tr("Nothing left");
    const QString share = QString::number(static_cast<int>(100 * counts.reviewed_share()));
    return _walk.chosen().lineage.empty()
               ? tr("%1, %2 % of nuclei reviewed").arg(open, share)
               : tr("%1, %2 % of this lineage's %3 nuclei reviewed").arg(open, share).arg(counts.units);
}

void ReviewPage::show_work_list()
{
    if (!_list)
        _list = new WorkList(_window, _walk);
    _list->show();
    _list->raise();
}
