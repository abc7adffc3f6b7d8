#include "places.h"

#include "keygen.h"
#include "unit_names.h"

#include <QRegularExpression>
#include <QSlider>

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int stay_ms = 400;
constexpr std::size_t most_places = 200;

}    // namespace

Places::Places(ORVBrowser& window, CanvasView& view, CanvasMarks& marks)
    : QObject(&window), _window(window), _view(view), _marks(marks)
{
    setObjectName("places");
    _settle_soon.setSingleShot(true);
    _settle_soon.setInterval(stay_ms);
    connect(&_settle_soon, &QTimer::timeout, this, &Places::settle);
    for (const QSlider* slider : {window.slider_time_point, window.slider_focal_plane})
        connect(slider, &QSlider::valueChanged, &_settle_soon, qOverload<>(&QTimer::start));
}

Places* Places::of(const ORVBrowser& window)
{
    return window.findChild<Places*>("places", Qt::FindDirectChildrenOnly);
}

void Places::recording_changed()
{
    _before.clear();
    _after.clear();
    _here.reset();
    _settle_soon.start();
}

// A step to a neighbour leads to no other place.
void Places::settle()
{
    _settle_soon.stop();
    const place now = here();
    if (_here && std::abs(now.t - _here->t) + std::abs(now.z - _here->z) > 1) {
        _before.push_back(*_here);
        _after.clear();
        if (_before.size() > most_places)
            _before.erase(_before.begin());
    }
    _here = now;
}

void Places::move(place there)
{
    if (there.t != _window.time_point())
        _window.setCurrentTimePoint(there.t);
    if (there.z != _window.focal_plane())
        _window.setCurrentFocalPlane(there.z);
}

void Places::go_to(place there)
{
    settle();
    move(there);
    settle();
}

void Places::leave_for(std::vector<place>& from, std::vector<place>& to)
{
    settle();
    if (from.empty())
        return;
    to.push_back(here());
    const place there = from.back();
    from.pop_back();
    move(there);
    _here = here();
    _settle_soon.stop();
}

void Places::back() { leave_for(_before, _after); }

void Places::forward() { leave_for(_after, _before); }

// Of several, the one in the middle: nuclei are sharper there.
void Places::go_to_fullest_plane()
{
    std::vector<int> fullest{_window.focal_plane()};
    int most = 0;
    for (const auto& [z, rois] : rois_by_plane(_window)) {
        if (rois > most)
            fullest.clear();
        if (rois >= most)
            fullest.push_back(z);
        most = std::max(most, rois);
    }
    go_to({_window.time_point(), fullest[(fullest.size() - 1) / 2]});
}

void Places::go_to_next_plane(int step)
{
    const auto planes = rois_by_plane(_window);
    const int z = _window.focal_plane();
    const auto above = planes.upper_bound(z);
    const auto from = planes.lower_bound(z);
    if (step > 0 && above != planes.end())
        go_to({_window.time_point(), above->first});
    if (step < 0 && from != planes.begin())
        go_to({_window.time_point(), std::prev(from)->first});
}

void Places::go_to_time_end(bool last)
{
    go_to({last ? _window.max_time_point() : _window.min_time_point(), _window.focal_plane()});
}

std::string Places::middle_member(const std::string& unit)
{
    const std::set<std::string> members = _window.member(unit);
    if (members.empty())
        return unit;
    return *std::next(members.begin(), static_cast<std::ptrdiff_t>((members.size() - 1) / 2));
}

void Places::show_unit(const std::string& unit)
{
    if (_window.has_rois() && is_roi_key(unit))
        show_unit_at(unit, middle_member(unit));
}

void Places::show_roi(const std::string& key)
{
    const std::string unit = _window.head(key);
    if (_window.has_rois() && is_roi_key(key))
        show_unit_at(is_roi_key(unit) ? unit : key, key);
}

void Places::show_unit_at(const std::string& unit, const std::string& member)
{
    const pos4i at = decode(member);
    move({at.t(), at.z()});
    settle();
    _view.reveal(_marks.box_of(unit, at.z()));
    _marks.ring(unit);
}

bool Places::go_to_typed(const std::string& text)
{
    static const QRegularExpression numbers("^\\s*(\\d{1,8})(?:\\s+(\\d{1,4}))?\\s*$");
    const QString typed = QString::fromStdString(text).trimmed();
    const std::string key = typed.toStdString();
    settle();
    if (is_roi_key(key) && _window.rois().db.contains(key)) {
        show_roi(key);
        return true;
    }
    const QRegularExpressionMatch match = numbers.match(typed);
    if (match.hasMatch() && match.hasCaptured(2)) {
        go_to({match.captured(1).toInt(), match.captured(2).toInt()});
        return true;
    }
    const auto unit = find_unit(_window, key);
    if (unit)
        show_unit(*unit);
    return unit.has_value();
}

void lead_to_unit(ORVBrowser& window, const std::string& unit)
{
    const QPointer<Places> places(Places::of(window));
    if (places)
        places->settle();
    window.view(unit);
    if (places)
        places->show_unit(unit);
}
