// monkey_window.h - the window as the program puts it together, and what holds in it between actions.
#pragma once
#include "../support/curation_probe.h"
#include "../support/editing.h"
#include "canvas_view.h"
#include "edit_scope.h"
#include "history_page.h"
#include "lineage_page.h"
#include "link_making.h"
#include "pages.h"
#include "review_page.h"
#include "review_walk.h"

#include <algorithm>

class MonkeyWindow : public WindowProbe {
public:
    MonkeyWindow()
    {
        setApplication(qApp);
        add_pages(*this);
        page = findChild<LineagePage*>();
    }

    LineagePage* page = nullptr;

    // The first rule of undo that is broken, or nothing: all steps back lead to the state of the start, as
    // far as it was seen, and forth again to that of now.
    [[nodiscard]] const char* broken_rule_of_undo()
    {
        if (!isOpen())
            return nullptr;
        const auto now = state_of(*this);
        const std::size_t done = work().history().position();
        while (can_undo())
            undo();
        const bool is_start =
            work().history().position() > 0 || _start_of != recording() || _start == state_of(*this);
        while (work().history().position() < done && can_redo())
            redo();
        return !is_start                ? "undoing everything gives the state of the start"
               : now != state_of(*this) ? "redoing everything gives the state of the end"
                                        : nullptr;
    }

    void make_units_and_links()
    {
        if (!isOpen() || is_busy())
            return;
        const EditScope step(*this, "Make");
        for (int t = m_min_time_point; t <= m_max_time_point; ++t)
            curation::make_units(t, making());
        link_making links(*this, making());
        for (int t = m_min_time_point + 1; t <= m_max_time_point; ++t)
            links.step(t);
        ReviewWalk::of(*this)->begin();
    }

    // What the list of findings has made of all edits so far is what a list made anew finds. It may still be
    // in the making.
    [[nodiscard]] bool lists_what_is_found()
    {
        ReviewWalk* const walk = ReviewWalk::of(*this);
        walk->begin();
        if (!walk->is_made())
            return true;
        review anew(*this);
        anew.finish();
        const review_counts &followed = walk->counts(), &counted = anew.counts();
        return followed.open == counted.open && followed.units == counted.units &&
               followed.reviewed == counted.reviewed && followed.kinds == counted.kinds &&
               std::ranges::all_of(walk->listed(), [&](const finding* f) {
                   const finding* const found = anew.of(f->unit);
                   return found && *found == *f;
               });
    }

    void remember_start()
    {
        if (!isOpen() || work().history().end() > 0 || _start_of == recording())
            return;
        _start = state_of(*this);
        _start_of = recording();
    }

    // The first rule that is broken, or nothing.
    [[nodiscard]] const char* broken_rule()
    {
        for (const auto& [at, low, high, slider, field] :
             {std::tuple(m_time_point, m_min_time_point, m_max_time_point, slider_time_point,
                         lineEdit_time_point),
              {m_focal_plane, m_min_focal_plane, m_max_focal_plane, slider_focal_plane,
               lineEdit_focal_plane}})
            if (at < low || at > high || slider->minimum() != low || slider->maximum() != high ||
                slider->value() != at || field->text() != QString::number(at))
                return "the position is within its bounds, and its controls show it";
        if (!std::ranges::all_of(findChildren<QWidget*>(),
                                 [this](auto* w) { return w->isEnabled() == may_be_used(w); }))
            return "controls are enabled as the recording is open or closed";
        if (cursor().shape() == Qt::WaitCursor || is_busy() || m_auto_split || m_auto_make_units ||
            page->auto_split->isChecked() || m_auto != pushButton_auto->isChecked() || !updatesEnabled())
            return "a run leaves nothing behind";
        if (!isOpen())
            return nullptr;
        if (!shows_what_is_under_the_pointer())
            return "each screen pixel belongs to the picture pixel that it shows";
        return isVisible() && !shows_state() ? "the canvas shows the state" : broken_state_rule(*this);
    }

private:
    decltype(state_of(std::declval<const WindowProbe&>())) _start;
    unsigned long _start_of = 0;    // the recording that it is of

    [[nodiscard]] bool may_be_used(const QWidget* w) const
    {
        if (qobject_cast<const HistoryPage*>(w->parentWidget()) ||
            qobject_cast<const ReviewPage*>(w->parentWidget()))    // tests of their own
            return w->isEnabled();
        const bool is_button = qobject_cast<const QPushButton*>(w);
        if (w == lineEdit_dataset || w == page->stop)
            return w == lineEdit_dataset && !isOpen();
        if (is_button && (w->parentWidget() == file || w == page->help || w == page->import_labels ||
                          w == pushButton_select_all))
            return true;
        return (is_button && w->window() == this) || w == lineEdit_time_point || w == lineEdit_focal_plane ||
                       w == page->overlap
                   ? isOpen()
                   : w->isEnabled();
    }

    [[nodiscard]] bool shows_what_is_under_the_pointer() const
    {
        const view_transform& view = CanvasView::of(*this)->view();
        const QPoint s = frame_canvas->rect().center();
        const QPoint p = view.picture_pixel(s);
        return view.scale() >= view.smallest_scale && view.scale() <= view.largest_scale &&
               view.screen_area({p, QSize(1, 1)}).contains(s);
    }

    // A picture made afresh is the one that is shown.
    [[nodiscard]] bool shows_state()
    {
        const QImage shown = frame_canvas->picture().toImage();
        dirty = true;
        paintEvent(nullptr);
        return shown == frame_canvas->picture().toImage();
    }
};
