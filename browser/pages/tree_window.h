// tree_window.h - the lineage as a tree, in a window of its own that follows edits.
#pragma once
#include "following_tree.h"
#include "orvbrowser.h"
#include "tree_painter.h"

#include <QTimer>
#include <QWidget>

#include <functional>

class QPushButton;
class TypedField;

class TreeWindow : public QWidget, private curation_observer {
    Q_OBJECT

public:
    explicit TreeWindow(ORVBrowser& window);

    QPushButton* save_svg = nullptr;
    QPushButton* save_png = nullptr;
    QPushButton* save_newick = nullptr;
    QPushButton* fit = nullptr;
    QPushButton* one_lineage = nullptr;    // checkable: of the chosen nucleus alone
    TypedField* find = nullptr;            // a ROI key, a unit's number or a name
    TypedField* name = nullptr;            // of the chosen nucleus

    [[nodiscard]] const lineage_tree& tree() const noexcept { return _kept.tree(); }
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
    void mouseDoubleClickEvent(QMouseEvent* e) override;    // asks for a name

private:
    void state_changed() override;
    void recording_changed() override { state_changed(); }
    void add_controls();
    void follow();    // takes over what has changed in the main window
    void make_slice();
    void show_made();
    void follow_chosen();
    void show_name();
    [[nodiscard]] std::string unit_to_show() const;    // whose lineage is shown; "" for all
    [[nodiscard]] QRectF paper() const;                // below the buttons
    void show_fitted(double smallest_step);
    void go_to(std::string unit);
    void go_to_typed(const QString& text);
    void bring_into_view(const std::string& unit);
    [[nodiscard]] tree_marks marks() const;
    [[nodiscard]] QByteArray as_svg() const;
    [[nodiscard]] QByteArray as_png() const;
    void save(const QString& filter, const char* object_name, const char* suffix,
              const std::function<QByteArray()>& render);

    ORVBrowser& _window;
    const Observing _observing{_window, *this};
    following_tree _kept{_window};
    tree_view _view;
    QTimer _follow_soon;    // runs when something has changed
    QTimer _slices;         // runs while the tree is made
    unsigned long _seen_recording = 0;
    bool _is_placed = false;     // the person has moved or zoomed
    std::string _seen_chosen;    // the chosen nucleus
    QPointF _drag_from;
    bool _is_drag = false;
};
