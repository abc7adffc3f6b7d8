#include "work_list.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QVBoxLayout>

namespace {

constexpr int column_count = 6;

const char* const titles[column_count] = {
    QT_TRANSLATE_NOOP("FindingTable", "Score"),  QT_TRANSLATE_NOOP("FindingTable", "Time"),
    QT_TRANSLATE_NOOP("FindingTable", "Unit"),   QT_TRANSLATE_NOOP("FindingTable", "Kind"),
    QT_TRANSLATE_NOOP("FindingTable", "Reason"), QT_TRANSLATE_NOOP("FindingTable", "Proposal"),
};

}    // namespace

FindingTable::FindingTable(ReviewWalk& walk) : _walk(walk) {}

int FindingTable::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : column_count; }

QVariant FindingTable::data(const QModelIndex& index, int role) const
{
    const auto& all = _walk.listed();
    const auto row = static_cast<std::size_t>(index.row());
    if (role != Qt::DisplayRole || row >= all.size())    // it is about to be updated
        return {};
    const finding& f = *all[row];
    switch (index.column()) {
    case 0:
        return QString::number(f.score, 'f', 2);
    case 1:
        return f.t;
    case 2:
        return QString::fromStdString(f.unit);
    case 3:
        return QString::fromUtf8(name_of(f.kind));
    case 4:
        return QString::fromStdString(reason_of(f));
    default:
        return QString::fromStdString(proposal_of(f));
    }
}

QVariant FindingTable::headerData(int section, Qt::Orientation orientation, int role) const
{
    return orientation == Qt::Horizontal && role == Qt::DisplayRole && section < column_count
               ? QVariant(tr(titles[section]))
               : QVariant();
}

void FindingTable::update() { set_rows(static_cast<int>(_walk.listed().size())); }

WorkList::WorkList(ORVBrowser& window, ReviewWalk& walk)
    : QWidget(&window, Qt::Window), _window(window), _walk(walk), _table(walk), _view(new QTableView(this))
{
    setObjectName("workList");
    setWindowTitle(tr("Work list -- ORVBrowser"));
    resize(760, 480);
    _view->setModel(&_table);
    _view->setSelectionBehavior(QAbstractItemView::SelectRows);
    _view->setSelectionMode(QAbstractItemView::SingleSelection);
    _view->setFocusPolicy(Qt::NoFocus);
    _view->verticalHeader()->hide();
    _view->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    _view->verticalHeader()->setDefaultSectionSize(20);
    const int widths[] = {50, 45, 105, 110, 230, 180};
    for (int column = 0; column < column_count; ++column)
        _view->setColumnWidth(column, widths[column]);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(_view);
    connect(_view, &QTableView::clicked, this, [this](const QModelIndex& at) { _walk.go_to(at.row()); });
    connect(&_walk, &ReviewWalk::list_changed, this, &WorkList::update);
    connect(&_walk, &ReviewWalk::shown, this, &WorkList::follow);
}

void WorkList::showEvent(QShowEvent*)
{
    _walk.begin();
    update();
}

void WorkList::update()
{
    if (!isVisible())
        return;
    _walk.begin();
    setWindowTitle(
        _walk.is_made()
            ? tr("Work list -- ORVBrowser")
            : tr("Work list, being made: %1 % -- ORVBrowser").arg(static_cast<int>(100 * _walk.progress())));
    _table.update();
    follow();
}

void WorkList::follow()
{
    if (!isVisible())
        return;
    _walk.is_listed() ? _view->selectRow(_walk.row()) : _view->clearSelection();
}

void WorkList::keyPressEvent(QKeyEvent* e) { QCoreApplication::sendEvent(&_window, e); }
