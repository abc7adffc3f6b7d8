// tree_window.h - the lineage as a tree, in a window of its own that follows edits.
#pragma once
#include "lineage_access.h"
#include "tree_painter.h"

#include <QTimer>
#include <QWidget>

#include <functional>

class QPushButton;

class TreeWindow : public QWidget {
    Q_OBJECT

public:
    explicit TreeWindow(const LineageAccess& access);

    QPushButton* save_svg = nullptr;
    QPushButton* save_png = nullptr;
    QPushButton* save_newick = nullptr;

    [[nodiscard]] const lineage_tree& tree() const noexcept { return _tree; }
    [[nodiscard]] const tree_view& view() const noexcept { return _view; }

protected:
    void paintEvent(QPaintEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;
    void showEvent(QShowEvent* e) override;
    void keyPressEvent(QKeyEvent* e) override;    // the main window's
    void wheelEvent(QWheelEvent* e) override;     // zooms about the pointer
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;

private:
    void follow();    // takes over what has changed in the main window
    void show_whole_tree();
    void go_to(std::string unit);
    [[nodiscard]] tree_marks marks() const;
    [[nodiscard]] QByteArray as_svg() const;
    [[nodiscard]] QByteArray as_png() const;
    void save(const QString& filter, const char* object_name, const char* suffix,
              const std::function<QByteArray()>& render);

    LineageAccess _access;
    lineage_tree _tree;
    tree_view _view;
    QTimer _watch;
    unsigned long _seen_edits = 0;
    unsigned long _seen_recording = 0;
    int _seen_time_point = -1;
    bool _is_placed = false;    // the person has not moved or zoomed yet
    std::string _marked_unit;
    std::string _seen_head;    // the chosen lineage head
    QPointF _drag_from;
    bool _is_drag = false;
};
