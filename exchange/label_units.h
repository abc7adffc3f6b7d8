// label_units.h - label images as ROIs and units.
#pragma once
#include "ORV_outline.h"
#include "ORV_roidb.h"
#include "lineage_file.h"
#include "tiff_reader.h"

#include <cstdint>
#include <future>
#include <map>
#include <set>
#include <string>
#include <vector>

// The units of one time point by their labels: label to head.
using labelled_units = std::map<std::uint32_t, std::string>;

// Takes the planes of time points, in ascending order of time point and plane, and makes an ROI of each piece
// of a label (pixels that are connected through their edges; holes are filled), and a unit of each label.
class label_units {
public:
    // REQUIRES: `rois` outlives this object
    explicit label_units(roidb& rois) : _rois(&rois) {}

    // Begins with the plane, and goes on with it while the caller fetches the next one. `page` then holds
    // some other page, whose memory may be used again.
    void take_plane(int t, int z, label_page& page);

    // The units of the time point whose planes were taken since the last call.
    [[nodiscard]] labelled_units finish_time_point(lineage& units);

    // Labels with two or more pieces in one plane, counted once a plane.
    // REQUIRES for both: the time point is finished
    [[nodiscard]] std::size_t split_labels() const noexcept { return _split_labels; }

    // Pixels of holes, which an ROI covers although they have no label or another one.
    [[nodiscard]] std::size_t hole_pixels() const noexcept { return _hole_pixels; }

private:
    void finish_plane();

    roidb* _rois;
    int _t = 0;    // of the plane that is worked on
    int _z = 0;
    label_page _page;
    std::map<std::uint32_t, std::set<std::string>> _members;    // of the time point being taken
    std::size_t _split_labels = 0;
    std::size_t _hole_pixels = 0;
    std::future<std::vector<labelled_region>> _regions;    // last: it ends before what it reads
};
