// tails.h - where nuclei came from and where they go: lines between the centroids of linked units.
#pragma once
#include "curation.h"

#include <map>
#include <set>
#include <string>
#include <vector>

struct tail_segment {
    enum class part { before, after, daughters };

    part of;
    pos3d from;    // pixels, pixels, focal planes
    pos3d to;
};

class tails {
public:
    explicit tails(curation& model) : _model(model) {}

    // Of units of one time point, `steps` time points back and forward; and lines between those at time
    // point t and their sisters, the other daughters of a mother one time point before.
    [[nodiscard]] std::vector<tail_segment> of(const std::set<std::string>& units, int steps, int t);

    // Those of time point t that lie within `planes` of focal plane z.
    [[nodiscard]] std::set<std::string> near_plane(int t, int z, int planes);

private:
    using relatives = std::set<std::string> (curation::*)(std::string);

    // All that were reached, the units among them.
    std::set<std::string> follow(std::vector<tail_segment>& found, std::set<std::string> units, int steps,
                                 tail_segment::part part, relatives next);
    void join_daughters(std::vector<tail_segment>& found, const std::set<std::string>& units);
    void add(std::vector<tail_segment>& found, tail_segment::part part, const std::string& from,
             const std::string& to);
    [[nodiscard]] pos3d centroid(const std::string& unit);
    void forget_old_centroids();

    curation& _model;
    std::map<std::string, pos3d> _centroids;    // of units as they were at these edits
    unsigned long _edits = 0;
    unsigned long _recording = 0;
    unsigned long _revision = 0;
};
