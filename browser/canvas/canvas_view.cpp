#include "canvas_view.h"

#include "outline_painter.h"

#include <QEvent>
#include <QPainter>
#include <QSignalBlocker>

#include <algorithm>
#include <cmath>

namespace {

constexpr int bar_width = 9;             // the margin beside the canvas
constexpr int largest_side = 1 << 14;    // of a picture: an ROI beyond is a slip in the file
constexpr QRect possible_area(0, 0, largest_side, largest_side);
constexpr int margin = 40;    // screen pixels around what is well within view

QRect rect_of(const pixel_box& box) { return {QPoint(box.left, box.top), QPoint(box.right, box.bottom)}; }

// Kept from one painting to the next: memory that is new each time costs as much as what is drawn into it.
void copy_area(const QImage& from, const QRect& area, QImage& to)
{
    if (to.size() != from.size())
        to = QImage(from.size(), from.format());
    for (int y = area.top(); y <= area.bottom(); ++y)
        std::copy_n(reinterpret_cast<const QRgb*>(from.constScanLine(y)) + area.left(), area.width(),
                    reinterpret_cast<QRgb*>(to.scanLine(y)) + area.left());
}

// From the corner of the picture.
QSize extent_of(const QRect& area)
{
    return area.isEmpty() ? QSize() : QSize(area.right() + 1, area.bottom() + 1);
}

QScrollBar* thin_bar(Qt::Orientation orientation, const char* name, QWidget* parent)
{
    auto* const bar = new QScrollBar(orientation, parent);
    bar->setObjectName(name);
    bar->setFocusPolicy(Qt::NoFocus);
    bar->setContextMenuPolicy(Qt::NoContextMenu);
    bar->setStyleSheet("QScrollBar { background: palette(mid); border: 0; }"
                       "QScrollBar::handle { background: palette(dark); border-radius: 3px; margin: 1px;"
                       " min-width: 24px; min-height: 24px; }"
                       "QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }");
    bar->hide();
    return bar;
}

}    // namespace

CanvasView::CanvasView(ORVBrowser& window)
    : QObject(&window), _window(window), _canvas(window.frame_canvas),
      _across(thin_bar(Qt::Horizontal, "scroll_across", &window)),
      _down(thin_bar(Qt::Vertical, "scroll_down", &window))
{
    setObjectName("canvas_view");
    _canvas->set_layer(this);
    _canvas->installEventFilter(this);
    // Along the bar that has moved alone: the other one cannot tell where a picture smaller than the canvas
    // is.
    connect(_across, &QScrollBar::valueChanged, this,
            [this](int x) { pan_by(QPointF(-x - _view.corner().x(), 0).toPoint()); });
    connect(_down, &QScrollBar::valueChanged, this,
            [this](int y) { pan_by(QPointF(0, -y - _view.corner().y()).toPoint()); });
}

CanvasView::~CanvasView()
{
    if (_canvas)
        _canvas->set_layer(nullptr);
}

CanvasView* CanvasView::of(const ORVBrowser& window)
{
    return window.findChild<CanvasView*>("canvas_view", Qt::FindDirectChildrenOnly);
}

// What is pointed at stays where it is, though a picture smaller than the canvas is moved out of it. Made
// smaller, more of it comes into view before more of the border.
void CanvasView::zoom_by(int steps, QPoint about)
{
    const bool is_on_picture = QRect({0, 0}, _extent).contains(_view.picture_pixel(about));
    const QPointF wasted = _view.wasted(_extent, canvas_size());
    _view.zoom_by(steps, about);
    if (!is_on_picture || steps < 0)
        _view.keep_in_view(_extent, canvas_size(), wasted);
    view_changed();
}

void CanvasView::zoom_by(int steps) { zoom_by(steps, _canvas->rect().center()); }

void CanvasView::show_original()
{
    _view = {};
    view_changed();
}

// What other planes had to show, a slip in the file among it, makes it no smaller.
void CanvasView::fit()
{
    if (!_plane_area.isEmpty())
        _extent = extent_of(_plane_area);
    _view.fit(_extent, canvas_size());
    keep_in_view();
}

void CanvasView::pan_by(QPoint way)
{
    const QPointF wasted = _view.wasted(_extent, canvas_size());
    _view.pan_by(way);
    _view.keep_in_view(_extent, canvas_size(), wasted);
    view_changed();
}

void CanvasView::reveal(const QRect& picture)
{
    grow_to(picture);    // nobody may have seen that plane yet
    const QRect wanted = _view.screen_area(picture).adjusted(-margin, -margin, margin, margin) &
                         _view.screen_area({QPoint(0, 0), _extent});
    if (picture.isEmpty() || _canvas->rect().contains(wanted))
        return;
    _view.center_on(QRectF(picture).center(), canvas_size());
    keep_in_view();
}

void CanvasView::set_range(const display_range& range)
{
    if (range == _range)
        return;
    _range = range;
    update_canvas();
    emit range_changed();
}

void CanvasView::set_outline_width(int width)
{
    _outline_width = width;
    update_canvas();
}

void CanvasView::hide_outlines(bool on)
{
    if (_are_outlines_hidden == on)
        return;
    _are_outlines_hidden = on;
    update_canvas();
}

void CanvasView::update_canvas()
{
    if (_canvas)
        _canvas->update();
}

void CanvasView::recording_changed()
{
    _view = {};
    _extent = {};
    _plane_area = {};
    set_range({});
    view_changed();
    emit opened_or_closed();
}

// The area grows with what is seen, so that stepping never moves the view of a person. The picture of a plane
// without an image is as large as a canvas, and shows no more than the ROIs.
void CanvasView::picture_changed()
{
    const QPixmap* const image = _window.image_on_view();
    _plane_area = image ? image->rect() : QRect();
    _window.visit_shown_rois(
        [&](const plane_roi& r, const QColor&) { _plane_area |= rect_of(r.box) & possible_area; });
    grow_to(_plane_area);
    emit picture_made();
}

void CanvasView::grow_to(const QRect& picture)
{
    const QSize extent = _extent.expandedTo(extent_of(picture & possible_area));
    if (extent == _extent)
        return;
    _extent = extent;
    place_scroll_bars();
}

void CanvasView::keep_in_view()
{
    _view.keep_in_view(_extent, canvas_size());
    view_changed();
}

void CanvasView::view_changed()
{
    place_scroll_bars();
    update_canvas();
}

// Its own picture ends where the canvas does in a window of the usual size.
bool CanvasView::shows_plain_picture() const
{
    const QRect needed = _plane_area & _canvas->rect();
    return _view.is_plain() && _range.is_plain() && _outline_width == 1 && !_are_outlines_hidden &&
           (needed.isEmpty() || _canvas->picture().rect().contains(needed));
}

bool CanvasView::paint_picture(QPainter& painter, const QRect& area)
{
    const QRect exposed = area & _canvas->rect();
    if (!_window.isOpen() || shows_plain_picture())
        return false;
    const QPixmap* const image = _window.image_on_view();
    const QRgb blank = _canvas->palette().color(QPalette::Window).rgb();
    QImage& background = _image.of(image ? *image : QPixmap(), _view, canvas_size(), _range, blank);
    const bool is_whole = exposed == _canvas->rect();
    if (is_whole)    // saves a copy of it
        _image.forget();
    else
        copy_area(background, exposed, _composed);
    QImage& composed = is_whole ? background : _composed;
    if (!_are_outlines_hidden) {
        outline_painter outlines(composed, exposed, _view, _outline_width);
        _window.visit_shown_rois(
            [&](const plane_roi& r, const QColor& color) { outlines.draw(*r.raster, color); });
    }
    painter.drawImage(exposed, composed, exposed);
    if (_window.shows_lineage())
        paint_lineage(painter);
    return true;
}

void CanvasView::paint_lineage(QPainter& painter)
{
    constexpr int radius = lineage_stroke::radius;
    constexpr int full_turn = 360 * 16;
    const auto place = [this](pos3d p) {
        const QPoint pixel(static_cast<int>(p.x()), static_cast<int>(p.y()));
        return _view.screen_area({pixel, QSize(1, 1)}).center();
    };
    for (const lineage_stroke& stroke : _window.lineage_strokes()) {
        painter.setPen(QPen(stroke.color, 1));
        if (stroke.is_circle)
            painter.drawChord(
                QRect(place(stroke.from) - QPoint(radius, radius), QSize(2 * radius + 1, 2 * radius + 1)), 0,
                full_turn);
        else
            painter.drawLine(place(stroke.from), place(stroke.to));
    }
}

void CanvasView::paint_overlay(QPainter& painter)
{
    if (!_window.isOpen())
        return;
    for (const auto& paint : _overlays) {
        painter.save();
        paint(painter);
        painter.restore();
    }
}

// Wide outlines reach beyond what they surround.
QRect CanvasView::screen_area(const QRect& picture) const
{
    return _view.screen_area(picture).adjusted(-3, -3, 3, 3);
}

bool CanvasView::eventFilter(QObject* watched, QEvent* e)
{
    if (e->type() == QEvent::Resize)
        keep_in_view();
    return QObject::eventFilter(watched, e);
}

void CanvasView::place_scroll_bar(QScrollBar& bar, double picture, double canvas, double corner)
{
    const QSignalBlocker quiet(bar);
    const int hidden = static_cast<int>(std::lround(picture - canvas));    // half a pixel is worth no bar
    bar.setRange(0, std::max(0, hidden));
    bar.setPageStep(static_cast<int>(canvas));
    bar.setSingleStep(margin);
    bar.setValue(static_cast<int>(std::lround(-corner)));
    bar.setVisible(hidden > 0 && _window.isOpen());
}

void CanvasView::place_scroll_bars()
{
    const QRect canvas = _canvas->geometry();
    _across->setGeometry(canvas.left(), canvas.bottom() + 1, canvas.width(), bar_width);
    _down->setGeometry(canvas.right() + 1, canvas.top(), bar_width, canvas.height());
    const QSizeF picture = QSizeF(_extent) * _view.scale();
    place_scroll_bar(*_across, picture.width(), canvas.width(), _view.corner().x());
    place_scroll_bar(*_down, picture.height(), canvas.height(), _view.corner().y());
}
