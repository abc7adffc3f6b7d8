// monkey_window.h - the window as the program puts it together, and what holds in it between actions.
#pragma once
#include "../support/open_window.h"
#include "keygen.h"
#include "lineage_page.h"

#include <algorithm>

class MonkeyWindow : public WindowProbe {
public:
    MonkeyWindow()
    {
        setApplication(qApp);
        tabWidget_control_panel->addTab(page, "Lineage");
    }

    [[nodiscard]] bool is_open() const { return access.is_open(); }

    LineagePage* const page = new LineagePage(*this);
    const LineageAccess access{*this};

    // The first rule that is broken, or nothing.
    [[nodiscard]] const char* broken_rule()
    {
        const auto all = [](const auto& entries, const auto& rule) {
            return std::all_of(entries.begin(), entries.end(), rule);
        };
        if (!shows(m_time_point, m_min_time_point, m_max_time_point, *slider_time_point,
                   *lineEdit_time_point) ||
            !shows(m_focal_plane, m_min_focal_plane, m_max_focal_plane, *slider_focal_plane,
                   *lineEdit_focal_plane))
            return "the position is within its bounds, and its controls show it";
        if (!all(findChildren<QWidget*>(),
                 [this](const QWidget* w) { return w->isEnabled() == may_be_used(w); }))
            return "controls are enabled as the recording is open or closed";
        if (cursor().shape() == Qt::WaitCursor || access.is_busy() || m_auto_split || m_auto_make_units ||
            page->auto_split->isChecked() || m_auto != pushButton_auto->isChecked() || !updatesEnabled())
            return "a run leaves nothing behind";
        if (!is_open())
            return nullptr;
        if (m_roidb->db.size() > m_roidb->tz_xy_db.size() || !all(m_roidb->db, [this](const auto& entry) {
                return entry.first == keygen(entry.second) && is_indexed(entry.second);
            }))
            return "each ROI has an entry in the index (a record that a file holds twice has two)";
        if (m_head_members.size() != m_members_head.size() ||
            !all(m_head_members, [this](const auto& unit) { return head(unit.second) == unit.first; }))
            return "heads and members mirror each other";
        if (!all(m_head_members, [this](const auto& unit) {
                return m_roidb->db.contains(unit.second) && head(unit.first) == unit.first &&
                       decode(unit.first).t() == decode(unit.second).t();
            }))
            return "a unit is made of ROIs of one time point, its head among them";
        std::set<std::pair<std::string, std::string>> links;
        if (!all(m_linkage_multimap, [&](const auto& link) {
                return decode(link.first).t() == decode(link.second).t() + 1 && links.insert(link).second &&
                       m_head_members.contains(link.first) && m_head_members.contains(link.second);
            }))
            return "a link joins two units one time point apart, once";
        if (!all(m_elite_head_roi_set,
                 [this](const auto& h) { return m_head_members.contains(h) || h == "N/A"; }))
            return "an elite mark is on a unit";
        if (!all(m_q_roiimgdb->db, [this](const auto& entry) {
                const auto r = m_roidb->db.find(entry.first);
                return keygen(*entry.second) == entry.first &&
                       (r == m_roidb->db.end() ||
                        q_roiimg(r->second).qpointarray() == entry.second->qpointarray());
            }))
            return "a cached raster is that of its ROI";
        return isVisible() && !shows_state() ? "the canvas shows the state" : nullptr;
    }

private:
    [[nodiscard]] static bool shows(int position, int low, int high, QSlider& slider, QLineEdit& field)
    {
        return low <= position && position <= high && slider.minimum() == low && slider.maximum() == high &&
               slider.value() == position && field.text() == QString::number(position);
    }

    [[nodiscard]] bool may_be_used(const QWidget* w) const
    {
        const bool is_button = qobject_cast<const QPushButton*>(w);
        if (w == lineEdit_dataset || w == page->stop)
            return w == lineEdit_dataset && !is_open();
        if (is_button && (w->parentWidget() == file || w == page->help || w == pushButton_select_all))
            return true;
        return (is_button && w->window() == this) || w == lineEdit_time_point || w == lineEdit_focal_plane ||
                       w == page->overlap
                   ? is_open()
                   : w->isEnabled();
    }

    [[nodiscard]] bool is_indexed(const roi& r) const
    {
        const auto [first, last] = m_roidb->tz_xy_db.equal_range(keygen(pos4i(0, 0, r.z(), r.t())));
        return std::any_of(first, last, [&](const auto& at) { return at.second == pos2i(r.x(), r.y()); });
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
