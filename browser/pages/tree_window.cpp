#include "tree_window.h"

#include "error_line.h"
#include "file_dialogs.h"
#include "file_io.h"
#include "keyboard_rules.h"
#include "places.h"

#include <QBuffer>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>
#include <QSvgGenerator>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr int follow_after_ms = 200;    // several changes in one go
constexpr int button_height = 26;
constexpr int drag_distance = 4;         // pixels; a shorter way is a click
constexpr double smallest_step = 0.2;    // pixels per column or time point
constexpr double largest_step = 200;
constexpr double largest_png_area = 1e8;    // pixels

QPushButton* add_button(QWidget* parent, const char* name, const QString& text, int x)
{
    auto* const button = new QPushButton(text, parent);
    button->setObjectName(name);
    button->setGeometry(x, 4, 110, button_height);
    return button;
}

}    // namespace

TreeWindow::TreeWindow(ORVBrowser& window) : QWidget(&window, Qt::Window), _window(window)
{
    setObjectName("treeWindow");
    setWindowTitle(tr("Nuclear Detector: lineage"));
    resize(900, 700);
    save_svg = add_button(this, "save_svg", tr("Save SVG"), 4);
    save_png = add_button(this, "save_png", tr("Save PNG"), 118);
    save_newick = add_button(this, "save_newick", tr("Save Newick"), 232);
    connect(save_svg, &QPushButton::clicked, this,
            [this] { save("svg file (*.svg)", "save svg-file", ".svg", [this] { return as_svg(); }); });
    connect(save_png, &QPushButton::clicked, this,
            [this] { save("png file (*.png)", "save png-file", ".png", [this] { return as_png(); }); });
    connect(save_newick, &QPushButton::clicked, this, [this] {
        save("newick file (*.nwk)", "save newick-file", ".nwk",
             [this] { return QByteArray::fromStdString(newick(_tree)); });
    });
    setFocusPolicy(Qt::StrongFocus);
    new KeyboardRules(_window, *this, *this);
    _follow_soon.setSingleShot(true);
    connect(&_follow_soon, &QTimer::timeout, this, &TreeWindow::follow);
    connect(_window.slider_time_point, &QSlider::valueChanged, this, qOverload<>(&QWidget::update));
}

void TreeWindow::state_changed()
{
    if (!_follow_soon.isActive())
        _follow_soon.start(follow_after_ms);
}

void TreeWindow::showEvent(QShowEvent*) { follow(); }

void TreeWindow::follow()
{
    if (_window.is_making_units())
        state_changed();
    if (!isVisible() || _window.is_making_units())
        return;
    const std::string head = _window.chosen();
    const bool is_another_tree = _seen_recording != _window.recording() || _seen_head != head;
    if (_seen_edits == _window.edits() && !is_another_tree)
        return;
    if (is_another_tree) {
        _is_placed = false;
        _marked_unit.clear();
    }
    _seen_edits = _window.edits();
    _seen_recording = _window.recording();
    _seen_head = head;
    _tree = _window.isOpen() ? make_tree(_window, head) : lineage_tree();
    for (QPushButton* button : {save_svg, save_png, save_newick})
        button->setEnabled(_window.isOpen());
    if (!_is_placed)
        show_whole_tree();
    update();
}

// As much of the tree as fits at a size that can be read.
void TreeWindow::show_whole_tree()
{
    const tree_view readable;
    const QSizeF full = readable.size_of(_tree);
    _view = readable;
    _view.origin += QPointF(0, button_height);
    _view.column_width *= std::clamp(width() / full.width(), 0.2, 2.0);
    _view.row_height *= std::clamp((height() - button_height) / full.height(), 0.2, 2.0);
}

tree_marks TreeWindow::marks() const { return {_window.time_point(), _marked_unit}; }

void TreeWindow::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing, _view.column_width > 6);
    const QRectF area = QRectF(rect()).adjusted(0, button_height + 8, 0, 0);
    painter.setClipRect(area);
    paint_tree(painter, _tree, _view, area, marks());
}

void TreeWindow::resizeEvent(QResizeEvent*)
{
    if (!_is_placed)
        show_whole_tree();
}

void TreeWindow::keyPressEvent(QKeyEvent* e) { _window.keyPressEvent(e); }

void TreeWindow::wheelEvent(QWheelEvent* e)
{
    const double wanted = std::pow(1.0015, e->angleDelta().y());
    const double smaller = std::min(_view.column_width, _view.row_height);
    const double larger = std::max(_view.column_width, _view.row_height);
    const double factor = std::clamp(wanted, smallest_step / smaller, largest_step / larger);
    _view.origin = e->position() + (_view.origin - e->position()) * factor;
    _view.column_width *= factor;
    _view.row_height *= factor;
    _is_placed = true;
    update();
}

void TreeWindow::mousePressEvent(QMouseEvent* e)
{
    _drag_from = e->position();
    _is_drag = false;
}

void TreeWindow::mouseMoveEvent(QMouseEvent* e)
{
    const QPointF way = e->position() - _drag_from;
    _is_drag = _is_drag || way.manhattanLength() > drag_distance;
    if (!_is_drag)
        return;
    _view.origin += way;
    _drag_from = e->position();
    _is_placed = true;
    update();
}

void TreeWindow::mouseReleaseEvent(QMouseEvent* e)
{
    if (_is_drag || e->button() != Qt::LeftButton)
        return;
    if (const auto node = node_at(_tree, _view, e->position()))
        go_to(_tree.nodes[*node].unit);
}

// By value: the tree may be made anew while the main window moves there.
void TreeWindow::go_to(std::string unit)
{
    if (!_window.isOpen())
        return;
    _marked_unit = unit;
    update();
    const QPointer<TreeWindow> self(this);
    lead_to_unit(_window, unit);
    if (self && _window.isOpen())
        _window.highlight(unit);
}

QByteArray TreeWindow::as_svg() const
{
    const tree_view view;
    const QSizeF size = view.size_of(_tree);
    QBuffer buffer;
    QSvgGenerator svg;
    svg.setOutputDevice(&buffer);
    svg.setSize(size.toSize());
    svg.setViewBox(QRectF(QPointF(0, 0), size));
    svg.setTitle(QString::fromStdString(_window.dataset()));
    {
        QPainter painter(&svg);
        paint_tree(painter, _tree, view, QRectF(QPointF(0, 0), size), marks());
    }
    return buffer.data();
}

QByteArray TreeWindow::as_png() const
{
    tree_view view;
    const QSizeF full = view.size_of(_tree);
    const double scale = std::min(1.0, std::sqrt(largest_png_area / (full.width() * full.height())));
    view.column_width *= scale;
    view.row_height *= scale;
    QImage image(view.size_of(_tree).toSize(), QImage::Format_RGB32);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        paint_tree(painter, _tree, view, image.rect(), marks());
    }
    QBuffer buffer;
    image.save(&buffer, "PNG");
    return buffer.data();
}

void TreeWindow::save(const QString& filter, const char* object_name, const char* suffix,
                      const std::function<QByteArray()>& render)
{
    const QPointer<TreeWindow> self(this);
    const QString filename = ask_filename(
        this, {QFileDialog::AcceptSave, filter, object_name, tr("Choose a filename to save under")},
        default_file(_window.dataset(), suffix));
    if (filename.isEmpty() || !may_write(this, filename) || !self)
        return;
    const QByteArray content = render();
    replacing_file file(native_name(filename));
    file.append({content.data(), static_cast<std::size_t>(content.size())});
    // A picture that could not be made must not take the place of an old one.
    const bool is_made = !content.isEmpty() || _tree.nodes.empty();
    if (!is_made || !file.commit())
        error_line("Cannot open ", native_name(filename));
}
