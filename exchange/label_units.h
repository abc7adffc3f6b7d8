// label_units.h - label images as ROIs and units.
#pragma once
#include "ORV_roidb.h"
#include "lineage_file.h"
#include "loss_report.h"
#include "tiff_reader.h"

#include <cstdint>
#include <future>
#include <map>
#include <span>
#include <string>
#include <vector>

// The units of one time point by their labels: label to head.
using labelled_units = std::map<std::uint32_t, std::string>;

// Takes planes and makes an ROI of each piece of a label (pixels that are connected through their edges;
// holes are filled), and a unit of each label of a time point.
class label_units {
public:
    // REQUIRES: both outlive this object
    label_units(roidb& rois, lineage& units) : _rois(rois), _lineage(units) {}

    // Planes come in ascending order of time point and plane. They are worked on while the caller fetches the
    // next ones. `page` then holds some other page, whose memory may be used again.
    void take_plane(int t, int z, label_page& page);

    // Ends the work: all ROIs and units are there. By time point, those without a label left out.
    [[nodiscard]] std::map<int, labelled_units> finish();

    // ROIs beyond the first of a label in a plane ("piece"), and ROIs with holes, which they cover although
    // the pixels have no label or another one ("hole"), by their keys. REQUIRES: finish()
    [[nodiscard]] const std::vector<loss>& losses() const noexcept { return _losses; }

    // REQUIRES: finish()
    [[nodiscard]] long long hole_pixels() const noexcept { return _hole_pixels; }

private:
    struct labelled_plane {
        int t = 0;
        int z = 0;
        label_page page = {};
    };
    struct found_roi {
        std::uint32_t label = 0;
        std::string key = {};
        roi r = {};
        bool is_piece = false;    // of a label that has another one in its plane
        long long hole_pixels = 0;
    };
    using found_rois = std::vector<found_roi>;    // ascending by key

    // Several planes in one go: handing over takes time, too.
    struct batch {
        std::vector<labelled_plane> planes = {};    // pages beyond `count` are kept for their memory
        std::size_t count = 0;
        std::size_t pixels = 0;
    };

    static void outline_plane(labelled_plane& plane, found_rois& found);
    static found_rois outline_planes(std::span<labelled_plane> planes);
    void hand_over();
    void collect();

    roidb& _rois;
    lineage& _lineage;
    std::map<int, labelled_units> _units;
    batch _taken;
    batch _at_work;
    std::vector<loss> _losses;
    long long _hole_pixels = 0;
    std::future<found_rois> _found;    // last: it ends before what it reads
};
