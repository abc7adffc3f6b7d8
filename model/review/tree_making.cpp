#include "tree_making.h"

#include "branch_order.h"
#include "finding.h"
#include "keygen.h"
#include "tree_layout.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

constexpr std::size_t piece = 2048;    // units, links, notes: about a millisecond

// Runs visit() on the next piece of so many, from `next` on; true once there are no more.
template <class Visit>
bool in_pieces(std::size_t& next, std::size_t all, std::size_t at_once, const Visit& visit)
{
    const std::size_t end = std::min(all, next + at_once);
    for (; next < end; ++next)
        visit(next);
    if (next < all)
        return false;
    next = 0;
    return true;
}

// The next word of a note, which is cut off from it.
std::string_view take_word(std::string_view& text)
{
    const std::size_t end = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return word;
}

}    // namespace

const std::array<tree_making::stage, 12> tree_making::stages{
    &tree_making::find_related,    &tree_making::add_units,     &tree_making::hang_children,
    &tree_making::find_ends,       &tree_making::take_notes,    &tree_making::find_names,
    &tree_making::name_nodes,      &tree_making::join_branches, &tree_making::order_all,
    &tree_making::set_all_columns, &tree_making::set_all_rows,  &tree_making::sort_rows};

tree_making::tree_making(curation& model, std::string chosen)
    : _model(model), _chosen(std::move(chosen)), _is_whole(!model.head_members().contains(_chosen)),
      _span(span_of(model))
{
}

bool tree_making::advance(int slice_ms)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(slice_ms);
    while (_stage < stages.size()) {
        if ((this->*stages[_stage])()) {
            ++_stage;
            _last.clear();
        }
        if (_stage < stages.size() && std::chrono::steady_clock::now() >= end)
            return true;
    }
    return false;
}

// The chosen unit, its ancestors and its descendants.
bool tree_making::find_related()
{
    if (_is_whole)
        return true;
    _related.insert(_chosen);
    // Links are in the order of their children's time points: one pass finds all descendants.
    for (auto link = _model.links().lower_bound(_chosen); link != _model.links().end(); ++link)
        if (_related.contains(link->second))
            _related.insert(link->first);
    _related.merge(_model.subset_of_unit_from(_chosen));
    return true;
}

bool tree_making::add_units()
{
    const auto& members = _model.head_members();
    const auto& no_nuclei = _model.false_positives();
    auto entry = members.upper_bound(_last);
    for (std::size_t n = 0; n < piece && entry != members.end(); ++n) {
        _last = entry->first;
        std::size_t rois = 0;
        bool is_false = true;
        for (; entry != members.end() && entry->first == _last; ++entry, ++rois)
            is_false = is_false && no_nuclei.contains(entry->second);
        if (is_roi_key(_last) && (_is_whole || _related.contains(_last)))
            add_unit(_last, rois, is_false);
    }
    return entry == members.end();
}

void tree_making::add_unit(const std::string& unit, std::size_t rois, bool is_false)
{
    tree_node& node = _tree.nodes.emplace_back();
    node.unit = unit;
    node.t = decode(unit).t();
    node.is_elite = _model.elite().contains(unit);
    node.is_unlinked = !is_false && node.t > _span.first_t;    // until a link says otherwise
    node.is_dead_end = !is_false && node.t < _span.last_t;
    node.is_false = is_false;
    node.is_small = rois == 1;
    node.parent = _tree.nodes.size() - 1;
}

bool tree_making::hang_children()
{
    const auto& links = _model.links();
    _is_linked.resize(_tree.nodes.size());
    std::vector<std::size_t> parents;
    auto link = links.upper_bound(_last);
    for (std::size_t n = 0; n < piece && link != links.end(); ++n) {
        _last = link->first;
        parents.clear();
        for (; link != links.end() && link->first == _last; ++link)
            parents.push_back(_tree.find(link->second));
        hang(_tree.find(_last), parents);
    }
    return link == links.end();
}

// Under the parent with the smallest key. What is no node is nodes.size().
void tree_making::hang(std::size_t child, std::vector<std::size_t>& parents)
{
    std::vector<tree_node>& nodes = _tree.nodes;
    const bool is_node = child < nodes.size();
    if (is_node) {
        _is_linked[child] = true;
        nodes[child].is_unlinked = false;
        nodes[child].is_doubtful = !nodes[child].is_false && parents.size() > 1;
    }
    std::ranges::sort(parents);
    for (const std::size_t parent : parents) {
        if (parent == nodes.size())
            return;
        _is_linked[parent] = true;
        nodes[parent].is_dead_end = false;
        if (!is_node || nodes[parent].t >= nodes[child].t)
            continue;
        if (nodes[child].parent == child) {
            nodes[child].parent = parent;
            nodes[parent].children.push_back(child);
        } else {
            _tree.slanted.push_back({child, parent});
        }
    }
}

// What is set aside has none.
bool tree_making::find_ends()
{
    for (std::size_t i = 0; i < _tree.nodes.size(); ++i) {
        tree_node& node = _tree.nodes[i];
        if (node.is_small && is_set_aside(_span, 1, _is_linked[i]))
            node.is_dead_end = node.is_unlinked = false;
        if (node.parent == i)
            _roots.push_back(i);
    }
    return true;
}

bool tree_making::take_notes()
{
    const unit_notes& notes = _model.notes();
    auto note = notes.upper_bound(_last);
    for (std::size_t n = 0; n < piece && note != notes.end(); ++n, ++note) {
        _last = *note;
        take_note(_last);
    }
    return note == notes.end();
}

// A finding that a person has dismissed is none, nor is one on either side of a gap.
void tree_making::take_note(std::string_view note)
{
    const std::string_view kind = take_word(note);
    const auto set = [&](std::string_view unit, bool tree_node::*what, bool is) {
        if (const std::size_t i = _tree.find(std::string(unit)); i < _tree.nodes.size())
            _tree.nodes[i].*what = is;
    };
    if (kind == "REVIEWED")
        set(take_word(note), &tree_node::is_reviewed, true);
    if (kind == "GAP") {
        set(take_word(note), &tree_node::is_dead_end, false);
        set(take_word(note), &tree_node::is_unlinked, false);
    }
    if (kind != "DISMISSED")
        return;
    const std::string_view what = take_word(note);
    for (const auto& [of, is] : {std::pair(finding_kind::doubtful, &tree_node::is_doubtful),
                                 {finding_kind::dead_end, &tree_node::is_dead_end},
                                 {finding_kind::unlinked, &tree_node::is_unlinked}})
        if (what == word_of(of))
            set(take_word(note), is, false);
}

bool tree_making::find_names()
{
    _names = names_of_all(_model);
    return true;
}

std::string tree_making::name_of_node(const tree_node& node) const
{
    const auto name = _names.find(node.unit);
    return name == _names.end() ? std::string() : name->second;
}

bool tree_making::name_nodes()
{
    return in_pieces(_next, _names.empty() ? 0 : _tree.nodes.size(), piece, [this](std::size_t i) {
        tree_node& node = _tree.nodes[i];
        const std::string name = name_of_node(node);
        if (node.parent == i || name != name_of_node(_tree.nodes[node.parent]))
            node.name = name;
    });
}

bool tree_making::join_branches()
{
    constexpr std::size_t at_once = 64;    // each may look at all roots
    return in_pieces(_next, _tree.slanted.size(), at_once,
                     [this](std::size_t i) { join_branches_of(_tree.slanted[i], _tree, _roots); });
}

bool tree_making::order_all()
{
    order_nodes(_tree, _roots);
    return true;
}

bool tree_making::set_all_columns()
{
    set_columns(_tree);
    return true;
}

bool tree_making::set_all_rows()
{
    set_rows(_tree);
    return true;
}

bool tree_making::sort_rows()
{
    constexpr std::size_t at_once = 16;
    return in_pieces(_next, _tree.rows.size(), at_once, [this](std::size_t row) { sort_row(_tree, row); });
}
