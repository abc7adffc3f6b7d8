// The page "Lineage": units and links made over all time points, after a dry run where there are some
// already.
#include "busy_run.h"
#include "edit_scope.h"
#include "lineage_page.h"
#include "link_making.h"
#include "making_dialog.h"
#include "orvbrowser.h"

#include <QPointer>
#include <QProgressBar>
#include <QScopeGuard>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <utility>

// Runs step() for the time points from `first` to the last, and lets events be processed in between.
bool LineagePage::run_over_time(int first, const std::function<void(int)>& step)
{
    const int last = _window.max_time_point();
    BusyRun run(_window);
    const QPointer<LineagePage> self(this);
    const auto hide_progress = qScopeGuard([self] {
        if (self)
            self->progress->hide();
    });
    _stop_asked = false;
    progress->setRange(_window.min_time_point(), std::max(last, _window.min_time_point() + 1));
    progress->show();
    for (int t = first; t <= last && !_stop_asked; ++t) {
        progress->setValue(t);
        step(t);
        if (!run.alive() || !run.process_events())
            return false;
        run.checkpoint();
    }
    return !_stop_asked;
}

making LineagePage::chosen_making() const
{
    return {static_cast<unit_rule>(rule->currentIndex()), overlap->value(), spared::what_is};
}

// Where there are units, what would come of it is said first. False when nothing is to be done.
bool LineagePage::ask_about_units(making& how)
{
    if (_window.head_members().empty())
        return true;
    making_counts counts;
    const QPointer<LineagePage> self(this);
    std::map<spared, std::set<std::string>> gone_before;
    const bool is_counted = run_over_time(_window.min_time_point(), [&](int t) {
        counts.now += _window.heads_at(t).size();
        for (const auto& [spares, count] : {std::pair(spared::nothing, &counts.all_anew),
                                            {spared::what_is, &counts.only_free},
                                            {spared::touched, &counts.untouched}}) {
            auto after = _window.units_after_making(t, {how.rule, how.share, spares});
            if (!self || !after)    // a handler deleted the window, or closed the recording
                return;
            count->after += after->number;
            count->links_gone += _window.links_of(gone_before[spares], after->gone, t);
            gone_before[spares] = std::move(after->gone);
        }
    });
    if (!self || !is_counted)
        return false;
    const std::optional<spared> answer = ask_what_to_spare(this, tr("Make units? -- ORVBrowser"), tr("units"),
                                                           tr("Only ROIs in no unit"), counts);
    how.spares = answer.value_or(spared::what_is);
    return answer && self && _window.isOpen();
}

bool LineagePage::ask_about_links(making& how)
{
    if (_window.links().empty())
        return true;
    making_counts counts;
    counts.now = _window.links().size();
    const QPointer<LineagePage> self(this);
    bool is_counted = false;
    for (const auto& [spares, count] : {std::pair(spared::nothing, &counts.all_anew),
                                        {spared::what_is, &counts.only_free},
                                        {spared::touched, &counts.untouched}}) {
        link_making links(_window, {how.rule, how.share, spares});
        is_counted = run_over_time(_window.min_time_point() + 1,
                                   [&, to = count](int t) { to->after += links.count(t).value_or(0); });
        if (!is_counted || !self)    // the window may be gone
            return false;
    }
    const std::optional<spared> answer = ask_what_to_spare(this, tr("Make links? -- ORVBrowser"), tr("links"),
                                                           tr("Only units without a parent"), counts);
    how.spares = answer.value_or(spared::what_is);
    return answer && self && _window.isOpen();
}

void LineagePage::make_all_units()
{
    making how = chosen_making();
    if (!ask_about_units(how))
        return;
    const QPointer<LineagePage> self(this);
    {
        const EditScope edit(_window, "Make units");
        (void)run_over_time(_window.min_time_point(), [&](int t) { _window.curation::make_units(t, how); });
    }
    if (self)
        _window.finish();
}

void LineagePage::make_all_links()
{
    making how = chosen_making();
    if (!ask_about_links(how))
        return;
    const QPointer<LineagePage> self(this);
    {
        const EditScope edit(_window, "Make links");
        link_making links(_window, how);
        (void)run_over_time(_window.min_time_point() + 1, [&](int t) { (void)links.step(t); });
    }
    if (self)
        _window.finish();
}
