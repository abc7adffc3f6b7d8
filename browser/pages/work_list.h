// work_list.h - the findings as a list in a window of its own.
#pragma once
#include "review_walk.h"
#include "row_table.h"

#include <QTableView>

// A row for each finding that is listed, in the same order.
class FindingTable : public RowTable {
    Q_OBJECT

public:
    explicit FindingTable(ReviewWalk& walk);

    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    void update();

private:
    ReviewWalk& _walk;
};

class WorkList : public QWidget {
    Q_OBJECT

public:
    explicit WorkList(ORVBrowser& window, ReviewWalk& walk);

protected:
    void keyPressEvent(QKeyEvent* e) override;    // those of the main window
    void showEvent(QShowEvent* e) override;

private:
    void update();
    void follow();    // the finding on view

    ORVBrowser& _window;
    ReviewWalk& _walk;
    FindingTable _table;
    QTableView* _view;
};
