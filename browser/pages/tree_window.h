// tree_window.h - the lineage as a tree, in a window of its own that follows edits.
#pragma once
#include "orvbrowser.h"
#include "tree_painter.h"

#include <QTimer>
#include <QWidget>

#include <functional>

class QPushButton;

class TreeWindow : public QWidget, private curation_observer {
    Q_OBJECT

public:
    explicit TreeWindow(ORVBrowser& window);

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
    void state_changed() override;
    void recording_changed() override { state_changed(); }
    void follow();    // takes over what has changed in the main window
    void show_whole_tree();
    void go_to(std::string unit);
    [[nodiscard]] tree_marks marks() const;
    [[nodiscard]] QByteArray as_svg() const;
    [[nodiscard]] QByteArray as_png() const;
    void save(const QString& filter, const char* object_name, const char* suffix,
              const std::function<QByteArray()>& render);

    ORVBrowser& _window;
    const Observing _observing{_window, *this};
    lineage_tree _tree;
    tree_view _view;
    QTimer _follow_soon;    // runs while the tree is out of date
    unsigned long _seen_edits = 0;
    unsigned long _seen_recording = 0;
    bool _is_placed = false;    // the person has not moved or zoomed yet
    std::string _marked_unit;
    std::string _seen_head;    // the chosen nucleus
    QPointF _drag_from;
    bool _is_drag = false;
};
