#include "canvas_marks.h"

#include "keygen.h"
#include "scale_bar.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPainter>
#include <QSlider>

#include <algorithm>
#include <utility>

namespace {

constexpr int near_planes = 2;      // of the one on view, for tails
constexpr int ring_distance = 7;    // screen pixels from what it surrounds
const QColor dark(0, 0, 0, 170);

QRect rect_of(const pixel_box& box) { return {QPoint(box.left, box.top), QPoint(box.right, box.bottom)}; }

// A light line on a dark one can be seen on every picture and beside every outline.
void draw_twice(QPainter& painter, int width, const QColor& color, const auto& draw)
{
    painter.setPen(QPen(Qt::black, width + 2, Qt::SolidLine, Qt::RoundCap));
    draw();
    painter.setPen(QPen(color, width, Qt::SolidLine, Qt::RoundCap));
    draw();
}

void draw_text(QPainter& painter, QRect place, const QString& text, int flags = Qt::AlignCenter)
{
    painter.fillRect(place, dark);
    painter.setPen(Qt::white);
    painter.drawText(place, flags, text);
}

// As large as the text, its bottom-left corner here; moved into the canvas where a part of what it belongs to
// is seen.
QRect text_place(const QPainter& painter, QPoint corner, const QString& text, const QRect& canvas)
{
    const QSize size = painter.fontMetrics().size(Qt::TextSingleLine, text) + QSize(6, 0);
    const auto within = [](int at, int length, int room) { return std::max(0, std::min(at, room - length)); };
    return {QPoint(within(corner.x(), size.width(), canvas.width()),
                   within(corner.y() - size.height(), size.height(), canvas.height())),
            size};
}

}    // namespace

std::map<int, int> rois_by_plane(const ORVBrowser& window)
{
    std::map<int, int> found;
    const QSlider& planes = *window.slider_focal_plane;
    const auto [first, last] = at_time_point(window.rois().tz_xy_db, window.time_point());
    for (auto entry = first; entry != last; ++entry)
        if (const int z = decode(entry->first).z(); planes.minimum() <= z && z <= planes.maximum())
            ++found[z];
    return found;
}

CanvasMarks::CanvasMarks(ORVBrowser& window, CanvasView& view)
    : QObject(&window), _window(window), _view(view)
{
    setObjectName("canvas_marks");
    view.add_overlay([this](QPainter& painter) { paint(painter); });
}

CanvasMarks* CanvasMarks::of(const ORVBrowser& window)
{
    return window.findChild<CanvasMarks*>("canvas_marks", Qt::FindDirectChildrenOnly);
}

void CanvasMarks::choose(const mark_choice& choice)
{
    if (choice == _choice)
        return;
    _choice = choice;
    _view.update_canvas();
}

void CanvasMarks::ring(const std::string& unit)
{
    _ringed = unit;
    _view.update_canvas();
}

void CanvasMarks::clear_rings()
{
    if (!_ringed.empty())
        ring({});
}

QRect CanvasMarks::box_of(const std::string& unit, int z)
{
    std::set<std::string> members = _window.member(unit);
    if (members.empty())
        members.insert(unit);
    QRect here;
    QRect all;
    for (const std::string& key : members) {
        const auto found = _window.rois().db.find(key);
        if (found == _window.rois().db.end())
            continue;
        const QRect box = rect_of(q_roiimg(found->second).box());
        all |= box;
        if (found->second.z() == z)
            here |= box;
    }
    return here.isEmpty() ? all : here;
}

void CanvasMarks::paint(QPainter& painter)
{
    QFont font = painter.font();
    font.setPixelSize(12);
    painter.setFont(font);
    if (_choice.has_marks)
        paint_crosses(painter);
    painter.setRenderHint(QPainter::Antialiasing);
    paint_tails(painter);
    if (_choice.has_marks) {
        paint_rings(painter);
        paint_numbers(painter);    // a ring must not hide one
    }
    if (_choice.has_scale_bar)
        paint_scale_bar(painter);
    paint_notice(painter);
}

void CanvasMarks::paint_crosses(QPainter& painter)
{
    if (_window.false_positives().empty())
        return;
    _window.visit_shown_rois([&](const plane_roi& r, const QColor&) {
        if (!_window.false_positives().contains(*r.key))
            return;
        const QRect box = _view.view().screen_area(rect_of(r.box));
        const int arm = std::max(2, std::min(box.width(), box.height()) / 4);
        const QPoint middle = box.center();
        draw_twice(painter, 2, QColor("#ff5050"), [&] {
            painter.drawLine(middle - QPoint(arm, arm), middle + QPoint(arm, arm));
            painter.drawLine(middle - QPoint(arm, -arm), middle + QPoint(arm, -arm));
        });
    });
}

// The parents picked for a split, and the number of the chosen nucleus, which "go to" takes.
void CanvasMarks::paint_numbers(QPainter& painter)
{
    follow_split_parents();
    for (std::size_t i = 0; i < _picked.size(); ++i)
        paint_label(painter, _picked[i], QString::number(i + 1));
    const std::string chosen = _window.chosen();
    if (is_roi_key(chosen) && !_window.split_parents().contains(chosen))
        paint_label(painter, chosen, QString::number(_window.ID(chosen)));
}

// The window knows which they are; they are numbered as they came.
void CanvasMarks::follow_split_parents()
{
    const std::set<std::string>& parents = _window.split_parents();
    std::erase_if(_picked, [&parents](const std::string& unit) { return !parents.contains(unit); });
    for (const std::string& unit : parents)
        if (std::ranges::find(_picked, unit) == _picked.end())
            _picked.push_back(unit);
}

// At the corner of its ROI of the plane on view; none where it has none.
void CanvasMarks::paint_label(QPainter& painter, const std::string& unit, const QString& text)
{
    if (!is_roi_key(unit))
        return;
    _window.visit_shown_rois([&](const plane_roi& r, const QColor&) {
        if (_window.head(*r.key) != unit)
            return;
        const QRect box = _view.view().screen_area(rect_of(r.box));
        const QRect canvas = _window.frame_canvas->rect();
        if (box.intersects(canvas))
            draw_text(painter, text_place(painter, box.topRight() + QPoint(2, 0), text, canvas), text);
    });
}

void CanvasMarks::paint_rings(QPainter& painter)
{
    if (!is_roi_key(_ringed) || decode(_ringed).t() != _window.time_point())
        return;
    for (const std::string& parent : _window.parents(_ringed))
        paint_ring(painter, parent, tr("p"));
    for (const std::string& child : _window.children(_ringed))
        paint_ring(painter, child, tr("c"));
    paint_ring(painter, _ringed, {});
}

// Thin with a letter, thick without.
void CanvasMarks::paint_ring(QPainter& painter, const std::string& unit, const QString& letter)
{
    const QRect box = box_of(unit, _window.focal_plane());
    if (box.isEmpty())
        return;
    const int distance = ring_distance + (letter.isEmpty() ? 4 : 0);
    const QRect ring = _view.view().screen_area(box).adjusted(-distance, -distance, distance, distance);
    draw_twice(painter, letter.isEmpty() ? 3 : 2, QColor(letter.isEmpty() ? "#ffffff" : "#ffd060"),
               [&] { painter.drawRoundedRect(ring, distance * 2, distance * 2); });
    const QRect canvas = _window.frame_canvas->rect();
    if (!letter.isEmpty() && ring.intersects(canvas))
        draw_text(painter, text_place(painter, ring.topLeft(), letter, canvas), letter);
}

// Found anew when anything has changed that they depend on, rather than for each painting.
const std::vector<tail_segment>& CanvasMarks::segments()
{
    tail_origin now{_choice,         _window.chosen(),    _window.time_point(),     _window.focal_plane(),
                    _window.edits(), _window.recording(), _window.rois().revision()};
    if (now == _segments_of)
        return _segments;
    _segments_of = std::move(now);
    const std::string& chosen = _segments_of.chosen;
    std::set<std::string> units;
    if (_choice.tails == tail_choice::of_near)
        units = _tails.near_plane(_segments_of.t, _segments_of.z, near_planes);
    else if (is_roi_key(chosen))
        units = {chosen};
    _segments = _tails.of(units, _choice.tail_steps, _segments_of.t);
    return _segments;
}

void CanvasMarks::paint_tails(QPainter& painter)
{
    if (_choice.tails == tail_choice::none || _window.links().empty() || _window.is_running())
        return;
    const auto place = [this](pos3d p) { return _view.view().screen_point({p.x() + 0.5, p.y() + 0.5}); };
    for (const tail_segment& segment : segments()) {
        const QColor color(segment.of == tail_segment::part::before  ? "#60a0ff"
                           : segment.of == tail_segment::part::after ? "#ff9040"
                                                                     : "#ffff60");
        draw_twice(painter, 2, color, [&] { painter.drawLine(place(segment.from), place(segment.to)); });
    }
}

void CanvasMarks::paint_scale_bar(QPainter& painter)
{
    const QRect canvas = _window.frame_canvas->rect();
    const scale_bar bar = bar_for(_view.view().scale(), _window.info().scale.pixel_um, canvas.width() / 4);
    const QString text = tr("%1 µm").arg(bar.length_um);
    const QRect back(canvas.right() - bar.pixels - 24, canvas.bottom() - 34, bar.pixels + 16, 26);
    painter.fillRect(back, dark);
    painter.fillRect(back.left() + 8, back.bottom() - 6, bar.pixels, 3, Qt::white);
    painter.setPen(Qt::white);
    painter.drawText(back.adjusted(-20, 0, 20, -8), Qt::AlignCenter, text);
}

QString CanvasMarks::where_rois_lie()
{
    const std::map<int, int> planes = rois_by_plane(_window);
    if (!planes.empty())
        return tr("ROIs lie on planes %1 to %2: press Home.")
            .arg(planes.begin()->first)
            .arg(planes.rbegin()->first);
    const auto [first, last] = at_time_point(_window.rois().tz_xy_db, _window.time_point());
    return first == last ? tr("No ROIs at this time point.")
                         : tr("ROIs lie on other planes: page Lineage, Scale: last focal plane.");
}

QString CanvasMarks::notice()
{
    if (!_window.isOpen() || _window.image_on_view())
        return {};
    QStringList lines;
    if (!rois_by_plane(_window).contains(_window.focal_plane()))
        lines << tr("Nothing on focal plane %1.").arg(_window.focal_plane()) + ' ' + where_rois_lie();
    const QString folder = QFileInfo(QFile::decodeName(_window.image_filename().c_str())).path();
    if (!QDir(folder).exists())
        lines << tr("There is no image folder %1").arg(folder)
              << tr("Start with --image-root DIR to name the folder that holds it.");
    return lines.join('\n');
}

void CanvasMarks::paint_notice(QPainter& painter)
{
    const QString text = notice();
    if (text.isEmpty())
        return;
    const QRect canvas = _window.frame_canvas->rect().adjusted(8, 8, -8, -8);
    const QRect place = painter.boundingRect(canvas, Qt::AlignTop | Qt::AlignHCenter | Qt::TextWordWrap, text)
                            .adjusted(-6, -4, 6, 4);
    draw_text(painter, place, text, Qt::AlignCenter | Qt::TextWordWrap);
}
