// tree_making.h - a lineage tree made piece by piece, so that a window stays alive meanwhile.
#pragma once
#include "lineage_tree.h"
#include "set_aside.h"
#include "unit_names.h"

#include <array>
#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

class tree_making {
public:
    // Of all units; with `chosen`, of its ancestors, itself and its descendants.
    tree_making(curation& model, std::string chosen);

    // Goes on for about this long; false once the tree is complete. Edits between two slices do no harm, but
    // the tree may have missed them.
    bool advance(int slice_ms);
    [[nodiscard]] lineage_tree take() { return std::move(_tree); }

private:
    // Each does one piece of its work; true once there is no more.
    bool find_related();
    bool add_units();
    bool hang_children();
    bool find_ends();
    bool take_notes();
    bool find_names();
    bool name_nodes();
    bool join_branches();
    bool order_all();
    bool set_all_columns();
    bool set_all_rows();
    bool sort_rows();

    using stage = bool (tree_making::*)();
    static const std::array<stage, 12> stages;

    void add_unit(const std::string& unit, std::size_t rois, bool is_false);
    void hang(std::size_t child, std::vector<std::size_t>& parents);
    void take_note(std::string_view note);
    [[nodiscard]] std::string name_of_node(const tree_node& node) const;

    curation& _model;
    const std::string _chosen;
    const bool _is_whole;
    const recording_span _span;
    std::set<std::string> _related;
    unit_name_table _names;
    std::vector<std::size_t> _roots;
    std::vector<bool> _is_linked;    // by node
    lineage_tree _tree;
    std::size_t _stage = 0;
    std::string _last;        // entry of the model that was looked at
    std::size_t _next = 0;    // node, link or row to be looked at
};
