// truth_file.h - what is known to be true of a recording. docs/file-formats.md describes the file.
#pragma once
#include "ORV_roi.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

// Part of a joined outline: the pixels of one of its nuclei.
struct truth_part {
    int label = 0;
    roi outline;
};

struct truth_roi {
    std::vector<int> labels;          // of the nuclei that it outlines; none: a false detection
    std::vector<truth_part> parts;    // of a joined outline, where they are known
};

// Time points inclusive.
struct truth_track {
    int first = 0;
    int last = 0;
    int parent = 0;    // 0: it did not come from a division
};

struct truth {
    std::string dataset;
    std::map<std::string, truth_roi> rois;    // by ROI key
    std::map<int, truth_track> tracks;        // by label

    // True iff a link from a nucleus to one of the next time point is right: both are the same, or mother and
    // daughter.
    [[nodiscard]] bool are_related(int child, int parent) const;

    // The label that this one divided from; 0: none.
    [[nodiscard]] int mother_of(int label) const;
};

// Nothing, and one line on standard error, when the file cannot be read or a line is wrong.
[[nodiscard]] std::optional<truth> read_truth(const std::string& filename);
