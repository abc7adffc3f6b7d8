// lineage_access.h - what the lineage page, the tree and the help may know of the window and change in it.
//
// The one friend of the window: everything else goes through the window's slots.
#pragma once
#include "lineage_file.h"
#include "orvbrowser.h"

class LineageAccess {
public:
    explicit LineageAccess(ORVBrowser& window) : _window(&window) {}

    [[nodiscard]] ORVBrowser& window() const noexcept { return *_window; }

    // ---- Asking
    [[nodiscard]] bool is_open() const noexcept;
    [[nodiscard]] bool is_busy() const noexcept;            // a run is going on
    [[nodiscard]] bool is_making_units() const noexcept;    // those of a time point
    [[nodiscard]] unsigned long edits() const noexcept;     // changes whenever units, links or elite marks do
    [[nodiscard]] unsigned long recording() const noexcept;    // changes whenever a recording opens or closes
    [[nodiscard]] int time_point() const noexcept;
    [[nodiscard]] int min_time_point() const noexcept;
    [[nodiscard]] int max_time_point() const noexcept;
    [[nodiscard]] const std::string& dataset() const noexcept;
    [[nodiscard]] const roidb_plus& rois() const noexcept;    // REQUIRES: is_open()
    [[nodiscard]] const std::multimap<std::string, std::string>& head_members() const noexcept;
    [[nodiscard]] const std::multimap<std::string, std::string>& links() const noexcept;
    [[nodiscard]] const std::set<std::string>& elite() const noexcept;
    [[nodiscard]] const std::set<std::string>& doubtful() const noexcept;    // as of search_doubt_units()
    [[nodiscard]] std::string chosen_head() const;                           // the lineage head, or ""
    [[nodiscard]] QColor color(int index) const;
    [[nodiscard]] std::set<std::string> units(int t) const;
    [[nodiscard]] std::set<std::string> ancestors(const std::string& unit) const;

    // ---- Changing

    // Makes units of the ROIs of time point t that are not removed and in no unit: plane by plane from
    // the lowest, each becomes the head of a new unit, which takes in those on neighbouring planes
    // that share more than `overlap` of the larger outline (0: one pixel), and so on. Lets events be
    // processed: REQUIRES that the caller asks its own run afterwards whether it is alive.
    void make_units(int t, double overlap);

    void drop_links_into(int t);    // those whose child lies at time point t
    void set_elite(const std::set<std::string>& heads, bool on);

    // Shows the members of a unit as if the pointer were on them, until it moves.
    void highlight(const std::string& head);

    // Shows what has changed and lets pending events be processed.
    void finish();

    // The lineage as it can be saved: without members that are no ROIs any more, and what names them.
    [[nodiscard]] lineage current() const;
    void replace(lineage units);

private:
    ORVBrowser* _window;
};
