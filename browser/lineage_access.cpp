#include "lineage_access.h"

#include "keygen.h"
#include "long_run.h"
#include "plane_walk.h"

#include <QScopeGuard>

#include <utility>

bool LineageAccess::is_open() const noexcept { return _window->isOpen(); }
bool LineageAccess::is_busy() const noexcept { return _window->m_runs > 0; }
bool LineageAccess::is_making_units() const noexcept { return _window->m_auto_make_units; }
unsigned long LineageAccess::edits() const noexcept { return _window->m_edits; }
unsigned long LineageAccess::recording() const noexcept { return _window->m_recording; }
int LineageAccess::time_point() const noexcept { return _window->m_time_point; }
int LineageAccess::min_time_point() const noexcept { return _window->m_min_time_point; }
int LineageAccess::max_time_point() const noexcept { return _window->m_max_time_point; }
const std::string& LineageAccess::dataset() const noexcept { return _window->m_dataset; }
const roidb_plus& LineageAccess::rois() const noexcept { return *_window->m_roidb; }

const std::multimap<std::string, std::string>& LineageAccess::head_members() const noexcept
{
    return _window->m_head_members;
}

const std::multimap<std::string, std::string>& LineageAccess::links() const noexcept
{
    return _window->m_linkage_multimap;
}

const std::set<std::string>& LineageAccess::elite() const noexcept { return _window->m_elite_head_roi_set; }

const std::set<std::string>& LineageAccess::doubtful() const noexcept
{
    return _window->m_falsely_grouped_units_candidates;
}

std::string LineageAccess::chosen_head() const
{
    const auto& chosen = _window->m_lineage_mode_roi_set;
    return chosen.empty() ? std::string() : *chosen.begin();
}

QColor LineageAccess::color(int index) const { return _window->color[index]; }

std::set<std::string> LineageAccess::units(int t) const { return _window->units(t); }

std::set<std::string> LineageAccess::ancestors(const std::string& unit) const
{
    return _window->subset_of_unit_from(unit);
}

// A unit is entered once it is complete: what a handler does meanwhile never meets half of one.
void LineageAccess::make_units(int t, double overlap)
{
    LongRun run(*_window);
    _window->m_auto_make_units = true;
    const auto done = qScopeGuard([window = QPointer<ORVBrowser>(_window)] {
        if (window)    // a handler may delete it
            window->m_auto_make_units = false;
    });
    const auto& heads = _window->m_members_head;
    const auto& rois = _window->m_roidb->db;
    std::set<int> planes;
    const auto [first, last] = at_time_point(rois, t);
    for (auto entry = first; entry != last; ++entry)
        planes.insert(entry->second.z());
    for (const int z : planes) {
        PlaneWalk walk(*_window->m_roidb, *_window->m_q_roiimgdb, t, z);
        while (plane_roi* const r = walk.next()) {
            if (heads.contains(*r->key) || _window->m_removed_roi_set.contains(*r->key))
                continue;
            const std::string key = *r->key;
            std::set<std::string> members;
            _window->flood(*r->record, t, z, 0.0, overlap, [&](const std::string& reached) {
                return !heads.contains(reached) && members.insert(reached).second;
            });
            if (!run.alive())
                return;
            members.insert(key);    // without a pixel it is not reached
            std::erase_if(members, [&](const std::string& member) {
                return heads.contains(member) || !rois.contains(member);
            });
            if (!members.empty())
                _window->register_unit(members.contains(key) ? key : *members.begin(), members);
        }
    }
}

void LineageAccess::drop_links_into(int t)
{
    const auto [first, last] = at_time_point(_window->m_linkage_multimap, t);
    _window->m_linkage_multimap.erase(first, last);
    ++_window->m_edits;
}

void LineageAccess::set_elite(const std::set<std::string>& heads, bool on)
{
    for (const std::string& head : heads) {
        if (on)
            _window->m_elite_head_roi_set.insert(head);
        else
            _window->m_elite_head_roi_set.erase(head);
    }
    ++_window->m_edits;
    _window->show_changes();
}

void LineageAccess::highlight(const std::string& head)
{
    _window->m_mouse_over_roi_set = _window->member(head);
    _window->show_changes();
}

void LineageAccess::finish() { _window->finish(); }

lineage LineageAccess::current() const
{
    lineage units;
    for (const auto& [head, member] : _window->m_head_members)
        if (rois().db.contains(member))
            units.head_members.emplace_hint(units.head_members.end(), head, member);
    const auto is_unit = [&](const std::string& head) { return units.head_members.contains(head); };
    for (const auto& [child, parent] : _window->m_linkage_multimap)
        if (is_unit(child) && is_unit(parent))
            units.links.emplace_hint(units.links.end(), child, parent);
    for (const std::string& head : _window->m_elite_head_roi_set)
        if (is_unit(head))
            units.elite.insert(units.elite.end(), head);
    return units;
}

void LineageAccess::replace(lineage units)
{
    _window->m_members_head = heads_of_members(units);
    _window->m_head_members = std::move(units.head_members);
    _window->m_linkage_multimap = std::move(units.links);
    _window->m_elite_head_roi_set = std::move(units.elite);
    // What was picked may be no unit any more.
    _window->m_lineage_mode_roi_set.clear();
    _window->m_split_parents.clear();
    _window->m_falsely_grouped_units_candidates.clear();
    ++_window->m_edits;
    _window->show_changes();
}
