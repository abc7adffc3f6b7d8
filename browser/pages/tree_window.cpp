#include "tree_window.h"

#include "error_line.h"
#include "file_dialogs.h"
#include "file_io.h"
#include "keyboard_rules.h"
#include "places.h"
#include "typed_field.h"
#include "unit_names.h"

#include <QBuffer>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>
#include <QSvgGenerator>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace {

constexpr int follow_after_ms = 10;              // several changes in one go
constexpr int follow_long_run_after_ms = 200;    // which has better things to do
constexpr int button_height = 26;
constexpr int drag_distance = 4;            // pixels; a shorter way is a click
constexpr double largest_step = 200;        // pixels per column or time point
constexpr double largest_png_area = 1e8;    // pixels

QPushButton* add_button(QWidget* parent, const char* name, const QString& text, int x, int width = 110)
{
    auto* const button = new QPushButton(text, parent);
    button->setObjectName(name);
    button->setGeometry(x, 4, width, button_height);
    return button;
}

TypedField* add_field(QWidget* parent, const char* name, int x, int width,
                      const std::function<void(const QString&)>& take)
{
    auto* const field = new TypedField(parent, take);
    field->setObjectName(name);
    field->setGeometry(x, 4, width, button_height);
    field->setMaxLength(60);
    return field;
}

}    // namespace

TreeWindow::TreeWindow(ORVBrowser& window) : QWidget(&window, Qt::Window), _window(window)
{
    setObjectName("treeWindow");
    setWindowTitle(tr("Nuclear Detector: lineage"));
    resize(900, 700);
    add_controls();
    setFocusPolicy(Qt::StrongFocus);
    new KeyboardRules(_window, *this, *this);
    _follow_soon.setSingleShot(true);
    connect(&_follow_soon, &QTimer::timeout, this, &TreeWindow::follow);
    connect(&_slices, &QTimer::timeout, this, &TreeWindow::make_slice);
    connect(_window.slider_time_point, &QSlider::valueChanged, this, qOverload<>(&QWidget::update));
}

void TreeWindow::add_controls()
{
    save_svg = add_button(this, "save_svg", tr("Save SVG"), 4);
    save_png = add_button(this, "save_png", tr("Save PNG"), 118);
    save_newick = add_button(this, "save_newick", tr("Save Newick"), 232);
    fit = add_button(this, "fit", tr("Fit"), 346, 50);
    fit->setToolTip(tr("Show the whole tree"));
    one_lineage = add_button(this, "one_lineage", tr("One lineage"), 400, 100);
    one_lineage->setCheckable(true);
    one_lineage->setToolTip(tr("Only the ancestors and descendants of the chosen nucleus"));
    find = add_field(this, "find", 504, 180, [this](const QString& text) { go_to_typed(text); });
    find->setPlaceholderText(tr("Find: key, number, name"));
    name = add_field(this, "name", 688, 200, [this](const QString& text) {
        (void)_window.call(_window.chosen(), text.toStdString());
        show_name();
    });
    connect(save_svg, &QPushButton::clicked, this,
            [this] { save("svg file (*.svg)", "save svg-file", ".svg", [this] { return as_svg(); }); });
    connect(save_png, &QPushButton::clicked, this,
            [this] { save("png file (*.png)", "save png-file", ".png", [this] { return as_png(); }); });
    connect(save_newick, &QPushButton::clicked, this, [this] {
        save("newick file (*.nwk)", "save newick-file", ".nwk",
             [this] { return QByteArray::fromStdString(newick(tree())); });
    });
    connect(fit, &QPushButton::clicked, this, [this] {
        show_fitted(tree_view::smallest_step);
        _is_placed = true;
    });
    connect(one_lineage, &QPushButton::toggled, this, &TreeWindow::follow);
}

void TreeWindow::state_changed()
{
    if (!_follow_soon.isActive())
        _follow_soon.start(_window.is_running() ? follow_long_run_after_ms : follow_after_ms);
}

void TreeWindow::showEvent(QShowEvent*) { follow(); }

// The lineage that is shown stays for as long as the chosen nucleus is in it.
std::string TreeWindow::unit_to_show() const
{
    if (!one_lineage->isChecked())
        return {};
    const bool stays = _window.head_members().contains(_kept.lineage_shown()) &&
                       tree().find(_window.chosen()) < tree().nodes.size();
    return stays ? _kept.lineage_shown() : _window.chosen();
}

void TreeWindow::follow()
{
    if (_window.is_making_units())
        state_changed();
    if (!isVisible() || _window.is_making_units())
        return;
    const std::string unit = unit_to_show();
    if (_seen_recording != _window.recording() || _kept.lineage_shown() != unit)
        _is_placed = false;
    _seen_recording = _window.recording();
    _kept.show_lineage_of(unit);
    for (QWidget* control : std::initializer_list<QWidget*>{save_svg, save_png, save_newick, fit, find})
        control->setEnabled(_window.isOpen());
    if (!_kept.is_current())
        return make_slice();
    follow_chosen();
    update();
}

// A small tree is there at once; of a large one the window shows the old one until it is.
void TreeWindow::make_slice()
{
    if (_kept.advance())
        return _slices.start();
    _slices.stop();
    show_made();
}

void TreeWindow::show_made()
{
    if (!_is_placed)
        show_fitted(tree_view::readable_step);
    follow_chosen();
    update();
}

void TreeWindow::follow_chosen()
{
    const std::string chosen = _window.chosen();
    if (chosen != _seen_chosen)
        bring_into_view(chosen);
    _seen_chosen = chosen;
    show_name();
}

void TreeWindow::show_name()
{
    const std::string chosen = _window.chosen();
    const bool is_unit = _window.head_members().contains(chosen);
    name->setEnabled(is_unit);
    name->setPlaceholderText(!is_unit ? tr("Name: choose a nucleus")
                                      : tr("Name: %1").arg(QString::fromStdString(name_of(_window, chosen))));
    name->show_text(is_unit ? QString::fromStdString(own_name(_window, chosen)) : QString());
}

void TreeWindow::bring_into_view(const std::string& unit)
{
    const std::size_t node = tree().find(unit);
    if (node == tree().nodes.size())
        return;
    const QRectF part = tree_view::part_for_tree(paper());
    const QPointF at = _view.place(tree(), tree().nodes[node]);
    if (!part.contains(at))
        _view.origin += part.center() - at;
}

QRectF TreeWindow::paper() const { return QRectF(rect()).adjusted(0, button_height + 8, 0, 0); }

void TreeWindow::show_fitted(double smallest_step)
{
    _view = tree_view::fitted(tree(), paper(), smallest_step);
    update();
}

tree_marks TreeWindow::marks() const { return {_window.time_point(), _window.chosen()}; }

void TreeWindow::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing, _view.column_width > 6);
    paint_tree(painter, tree(), _view, paper(), marks());
}

void TreeWindow::resizeEvent(QResizeEvent*)
{
    if (!_is_placed)
        show_fitted(tree_view::readable_step);
}

void TreeWindow::keyPressEvent(QKeyEvent* e) { _window.keyPressEvent(e); }

void TreeWindow::wheelEvent(QWheelEvent* e)
{
    const double wanted = std::pow(1.0015, e->angleDelta().y());
    const double smaller = std::min(_view.column_width, _view.row_height);
    const double larger = std::max(_view.column_width, _view.row_height);
    const double factor = std::clamp(wanted, tree_view::smallest_step / smaller, largest_step / larger);
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
    if (const auto node = node_at(tree(), _view, e->position()))
        go_to(tree().nodes[*node].unit);
}

void TreeWindow::mouseDoubleClickEvent(QMouseEvent* e)
{
    _is_drag = true;    // the click before has shown and chosen it
    if (!node_at(tree(), _view, e->position()))
        return;
    name->setFocus();
    name->selectAll();
}

// By value: the tree may be made anew while the main window moves there.
void TreeWindow::go_to(std::string unit)
{
    if (!_window.isOpen())
        return;
    const QPointer<TreeWindow> self(this);
    lead_to_unit(_window, unit);
    if (!self || !_window.isOpen())
        return;
    _window.choose(unit);
    _window.highlight(unit);
    follow();
}

void TreeWindow::go_to_typed(const QString& text)
{
    if (text.isEmpty() || !_window.isOpen())
        return;
    if (const auto unit = find_unit(_window, text.toStdString()))
        go_to(*unit);
    else
        error_line("There is no such unit: ", text.toStdString());
}

QByteArray TreeWindow::as_svg() const
{
    const tree_view view;
    const QSizeF size = view.size_of(tree());
    QBuffer buffer;
    QSvgGenerator svg;
    svg.setOutputDevice(&buffer);
    svg.setSize(size.toSize());
    svg.setViewBox(QRectF(QPointF(0, 0), size));
    svg.setTitle(QString::fromStdString(_window.dataset()));
    {
        QPainter painter(&svg);
        paint_tree(painter, tree(), view, QRectF(QPointF(0, 0), size), marks());
    }
    return buffer.data();
}

QByteArray TreeWindow::as_png() const
{
    tree_view view;
    const QSizeF full = view.size_of(tree());
    const double scale = std::min(1.0, std::sqrt(largest_png_area / (full.width() * full.height())));
    view.column_width *= scale;
    view.row_height *= scale;
    QImage image(view.size_of(tree()).toSize(), QImage::Format_RGB32);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        paint_tree(painter, tree(), view, image.rect(), marks());
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
    if (!_kept.is_current()) {
        _kept.finish();
        show_made();
    }
    const QByteArray content = render();
    replacing_file file(native_name(filename));
    file.append({content.data(), static_cast<std::size_t>(content.size())});
    // A picture that could not be made must not take the place of an old one.
    const bool is_made = !content.isEmpty() || tree().nodes.empty();
    if (!is_made || !file.commit())
        error_line("Cannot open ", native_name(filename));
}
