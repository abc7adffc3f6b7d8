// row_table.h - a table whose owner tells how many rows it has, whenever they may have changed.
#pragma once
#include <QAbstractTableModel>

class RowTable : public QAbstractTableModel {
public:
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : _rows;
    }

protected:
    // Rows come and go at the end; what any of them shows may be something else now.
    void set_rows(int rows)
    {
        if (rows > _rows) {
            beginInsertRows({}, _rows, rows - 1);
            _rows = rows;
            endInsertRows();
        } else if (rows < _rows) {
            beginRemoveRows({}, rows, _rows - 1);
            _rows = rows;
            endRemoveRows();
        }
        if (_rows > 0)
            emit dataChanged(index(0, 0), index(_rows - 1, columnCount() - 1));
    }

private:
    int _rows = 0;
};
