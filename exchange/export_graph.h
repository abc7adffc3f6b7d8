// export_graph.h - units and links as numbers, in the form that all formats are written from.
#pragma once
#include "ORV_pos.h"
#include "export.h"
#include "q_roiimg.h"

#include <memory>
#include <optional>
#include <vector>

struct export_unit {
    std::string head;
    int t = 0;
    std::string name = {};                // what it is called, inherited names included; or ""
    std::vector<const roi*> rois = {};    // in the order of their keys
    pos3d centre = {};                    // of its pixels, micrometres; pixel 0 and plane 0 lie at 0
    double volume = 0;                    // cubic micrometres: pixels times the distance of planes
    double radius = 0;    // micrometres, of the sphere of that volume; in one plane of the circle
    int planes = 0;       // in which it has ROIs
    bool is_false_positive = false;
    std::vector<std::size_t> parents = {};          // ascending
    std::vector<std::size_t> children = {};         // ascending
    std::optional<std::size_t> parent = {};         // the one that is kept where there can be one only
    std::vector<std::size_t> kept_children = {};    // of which this is the one
    int tracklet = 0;    // from 1: the longest chain without branching, also over gaps
    int lineage = 0;     // from 1: what hangs together
};

struct export_graph {
    std::vector<export_unit> units;    // in the order of (t, head)
    bool is_flat = false;              // all of it lies in one plane

    // All links, gaps among them, in ascending order of (child, parent).
    [[nodiscard]] std::vector<std::pair<std::size_t, std::size_t>> edges() const;    // parent, child
};

enum class false_units { kept, left_out };

// A unit is false when all its ROIs are false positives; of others, those ROIs are left out. Nothing when it
// was stopped.
[[nodiscard]] std::optional<export_graph> make_graph(const export_request& request, false_units how,
                                                     loss_report& report, const run_callbacks& callbacks);

// What no format holds, or not this one: dismissals, marks and names.
enum class notes_kept { none, marks_and_names };
void report_notes(const export_request& request, notes_kept kept, loss_report& report);

using unit_images = std::vector<std::unique_ptr<q_roiimg>>;
[[nodiscard]] unit_images images_of(const export_unit& unit);

// Where the outline turns, in pixels from the top-left corner of the image. The last corner is not the first
// again.
[[nodiscard]] std::vector<pos2i> corners_of(const roi& r);

// At most twelve digits, the same text everywhere, always with a point: 3.0, 0.105.
[[nodiscard]] std::string real_text(double value);
