// unit_scene.h - all units of a curation as the rules for findings see them: shapes, links, and what lies
// near.
//
// It is loaded time point by time point and then follows the steps of the curation. What a step changes is
// known by name; `around` tells whose findings may be others then.
#pragma once
#include "curation.h"
#include "unit_shape.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

struct scene_unit {
    std::string head;
    int t = 0;
    unit_shape shape;
    std::vector<scene_unit*> parents, children;    // distinct, ascending by head
    std::size_t parent_entries = 0;                // as stored: a link may be stored twice

    // Those of the time point before or after that lie in it with half their pixels or more, and those in
    // which it lies itself.
    std::vector<scene_unit*> inner_before, inner_after, outer_before, outer_after;

    // A neighbour lacks a plane there, and this unit's outline covers both of its ROIs beside it.
    struct filled_gap {
        int plane;
        scene_unit* neighbour;
    };
    std::vector<filled_gap> fills;
    std::vector<scene_unit*> filled_by;

    bool is_false = false;         // all of its ROIs are false positives
    bool is_reviewed = false;      // or elite: no proposal contradicts it
    bool is_before_gap = false;    // it is seen again some time points later
    bool is_behind_gap = false;
    std::optional<double> gain;    // of two ellipsoids, once it was asked for
};

// What a step of the curation names.
struct scene_changes {
    std::set<std::string> reshaped;    // heads whose ROIs may be others
    std::set<std::string> relinked;    // heads whose links or marks may be
    std::set<std::string> rois;        // keys that came, went, or joined or left a unit
    std::map<int, int> planes;         // how many ROIs came (went: negative)
    bool is_everything = false;        // too much to follow
};

// Of a step that was made, or taken back.
[[nodiscard]] scene_changes changes_in(const edit_step& step, bool forth = true);

class unit_scene {
public:
    explicit unit_scene(curation& model) : _model(model) {}
    ~unit_scene();
    unit_scene(const unit_scene&) = delete;
    unit_scene& operator=(const unit_scene&) = delete;

    // ---- Loading
    void begin();        // forgets all; nothing is left to load when no recording is open
    bool load_next();    // one time point; false when all are loaded
    [[nodiscard]] bool is_loaded() const noexcept { return _next_t > _last_t; }
    [[nodiscard]] int first_t() const noexcept { return _first_t; }
    [[nodiscard]] int last_t() const noexcept { return _last_t; }
    [[nodiscard]] int next_t() const noexcept { return _next_t; }

    // ---- Following (scene_following.cpp); the heads, and keys of ROIs in no unit, whose findings may be
    // others now: some may be gone. REQUIRES: is_loaded() Nothing when it has to be loaded anew.
    [[nodiscard]] std::optional<std::set<std::string>> follow(const scene_changes& changes);

    // ---- Asking
    [[nodiscard]] scene_unit* find(const std::string& head) const;
    [[nodiscard]] const std::map<std::string, scene_unit*>& units_at(int t) const;
    [[nodiscard]] const std::set<std::string>&
    loose_at(int t) const;    // ROIs in no unit, no false positives
    [[nodiscard]] bool is_flat() const noexcept { return _planes.size() < 2; }
    [[nodiscard]] bool is_set_aside(const scene_unit& u) const noexcept;
    [[nodiscard]] bool is_live(const scene_unit& u) const noexcept;    // it counts as a nucleus
    [[nodiscard]] double median_volume(int t) const;
    [[nodiscard]] double gain_of(scene_unit& u);

    // Every live unit of time point t within `reach` sums of the radii.
    void for_each_near(const scene_unit& u, int t, double reach,
                       const std::function<void(scene_unit&, double distance)>& visit) const;

    // Lets go of the pixels that were looked at.
    void release_rasters() { _rasters.clear(); }

    static constexpr double farthest_reach = 1.5;    // that a rule looks

private:
    struct time_point {
        std::map<std::string, scene_unit*> units;
        std::vector<scene_unit*> by_x;    // those with pixels, by the x of their centres
        double largest_radius = 0;
        std::set<std::string> loose;
        mutable std::optional<double> median;
    };

    [[nodiscard]] static bool lies_left_of(const scene_unit* a, const scene_unit* b);
    [[nodiscard]] const time_point* at(int t) const;
    [[nodiscard]] const std::vector<keyed_raster>& rasters_of(const std::string& head);
    scene_unit* add_unit(const std::string& head);
    void remove_unit(scene_unit& u);
    void relate(scene_unit& a, scene_unit& b);           // of successive time points, a before b
    void relate_beside(scene_unit& a, scene_unit& b);    // of one time point: does a fill b's gap?
    void relate_all(int t);                              // to the time point before, and beside each other
    void relate_to_all(scene_unit& u);
    void link_parents(scene_unit& u);
    void link_children(scene_unit& u);
    void mark(scene_unit& u) const;
    void collect_around(const scene_unit& u, std::set<std::string>& found) const;
    void collect_near(const scene_unit& u, std::set<std::string>& found) const;
    void follow_rois(const std::set<std::string>& keys, std::set<std::string>& found);
    [[nodiscard]] bool follow_planes(const std::map<int, int>& changes);
    [[nodiscard]] bool is_loose(const std::string& key) const;
    void collect_by_time(const std::set<int>& times, std::set<std::string>& found) const;

    curation& _model;
    std::unordered_map<std::string, std::unique_ptr<scene_unit>> _units;
    std::map<int, time_point> _times;
    std::map<int, int> _planes;    // to the number of ROIs
    int _first_t = 0, _last_t = -1, _next_t = 0;
    struct unit_rasters {
        std::vector<std::unique_ptr<q_roiimg>> owned;
        std::vector<keyed_raster> all;
    };
    std::map<int, std::unordered_map<std::string, unit_rasters>> _rasters;    // by time point and head
};
