#include "quick_edits.h"

#include "edit_scope.h"

#include "keygen.h"
#include "review_walk.h"
#include "status_text.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

QString tr(const char* text) { return QCoreApplication::translate("QuickEdits", text); }

}    // namespace

QuickEdits::QuickEdits(ORVBrowser& window, Places& places, MessageLine& line)
    : _window(window), _places(places), _line(line)
{
}

bool QuickEdits::has_chosen() const { return is_roi_key(_window.chosen()); }

void QuickEdits::say_none_is_chosen() { _line.say(text_of_no_choice()); }

std::set<std::string> QuickEdits::rois_of(const std::string& key, bool with_descendants)
{
    const std::string unit = _window.head(key);
    if (!is_roi_key(unit))
        return _window.reached_across_planes(key, _window.false_positives().contains(key));
    std::set<std::string> rois = _window.member(unit);
    if (with_descendants)
        for (const std::string& descendant : _window.descendants(unit))
            rois.merge(_window.member(descendant));
    return rois;
}

void QuickEdits::toggle_unit(const std::string& key, bool with_descendants)
{
    const std::set<std::string> rois = rois_of(key, with_descendants);
    const bool on = !_window.false_positives().contains(key);
    _window.set_false_positives(rois, on);
    _window.show_changes();
    _line.say((on ? tr("Marked %1 ROIs as false positives") : tr("%1 ROIs are no false positives any more"))
                  .arg(rois.size()));
}

void QuickEdits::choose(const std::string& key)
{
    const std::string unit = _window.head(key);
    if (is_roi_key(unit)) {
        _window.choose(unit);
        _window.show_changes();
    }
    _line.say(text_of_choice(_window, unit));
}

bool QuickEdits::are_linked(const std::string& a, const std::string& b)
{
    return _window.parents(a).contains(b) || _window.parents(b).contains(a);
}

void QuickEdits::toggle_link(const std::string& key)
{
    const std::string chosen = _window.chosen();
    const std::string unit = _window.head(key);
    if (are_linked(chosen, unit))
        return unlink(key);
    const unsigned long before = _window.edits();
    if (is_roi_key(unit) && has_chosen())
        _window.link_by_hand(chosen, unit);
    if (_window.edits() != before)
        _window.show_changes();
    else
        _line.say(text_of_refusal(_window, ORVBrowser::armed::add, unit));
}

void QuickEdits::swap_parents(const std::string& key)
{
    const std::string chosen = _window.chosen();
    const std::string unit = _window.head(key);
    const auto of_chosen = _window.parents(chosen);
    const auto of_unit = _window.parents(unit);
    if (!is_roi_key(unit) || of_chosen == of_unit || decode(unit).t() != decode(chosen).t()) {
        _line.say(
            tr("Only two nuclei of one time point can change parents, and not when they have the same."));
        return;
    }
    {
        const EditScope edit(_window, "Swap", chosen, unit);
        _window.release_parents(chosen);
        _window.release_parents(unit);
        for (const std::string& parent : of_unit)
            _window.link(parent, chosen);
        for (const std::string& parent : of_chosen)
            _window.link(parent, unit);
        std::set<std::string> all{chosen, unit};
        all.insert(of_chosen.begin(), of_chosen.end());
        all.insert(of_unit.begin(), of_unit.end());
        for (const std::string& each : all)
            _window.note_edited(each);
        _window.choose(chosen);    // releasing parents chooses
    }
    _window.show_changes();
}

void QuickEdits::unlink(const std::string& key)
{
    const std::string chosen = _window.chosen();
    const std::string unit = _window.head(key);
    const bool is_parent = _window.parents(chosen).contains(unit);
    if (!are_linked(chosen, unit)) {
        _line.say(tr("There is no link between this nucleus and the chosen one."));
        return;
    }
    {
        const EditScope edit(_window, "Unlink", chosen, unit);
        const std::string& parent = is_parent ? unit : chosen;
        const std::string& child = is_parent ? chosen : unit;
        while (_window.parents(child).contains(parent))    // however often it is stored
            _window.release_child(parent, child);
        _window.note_edited(chosen);
        _window.note_edited(unit);
    }
    _window.show_changes();
}

void QuickEdits::toggle_gap(const std::string& key)
{
    const std::string chosen = _window.chosen();
    const std::string unit = _window.head(key);
    if (!is_roi_key(unit)) {
        _line.say(text_of_no_unit());
        return;
    }
    if (ReviewWalk::of(_window)->toggle_gap(std::min(chosen, unit), std::max(chosen, unit)))
        _window.show_changes();
    else
        _line.say(tr("There is no gap between time points %1 and %2.")
                      .arg(decode(chosen).t())
                      .arg(decode(unit).t()));
}

long QuickEdits::pixels_of(const std::string& unit)
{
    long pixels = 0;
    for (const std::string& key : _window.member(unit)) {
        q_roiimg raster(_window.rois().find_plus(key));
        raster.map();
        pixels += raster.size();
    }
    return pixels;
}

void QuickEdits::step_along_track(bool to_child)
{
    if (!has_chosen()) {
        say_none_is_chosen();
        return;
    }
    const std::string chosen = _window.chosen();
    const std::set<std::string> next = to_child ? _window.children(chosen) : _window.parents(chosen);
    if (next.empty()) {
        _line.say(to_child ? tr("The chosen nucleus has no child.")
                           : tr("The chosen nucleus has no parent."));
        return;
    }
    const std::string unit = *std::ranges::max_element(
        next, {}, [this](const std::string& relative) { return pixels_of(relative); });
    _window.choose(unit);
    _places.settle();
    _places.show_unit(unit);
    _window.show_changes();
    _line.say(text_of_choice(_window, unit));
}
