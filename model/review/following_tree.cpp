#include "following_tree.h"

void following_tree::show_lineage_of(const std::string& unit)
{
    _is_stale = _is_stale || unit != _chosen;
    _chosen = unit;
}

// What is changed without a step, as when work is taken up, is noticed by the count of edits.
bool following_tree::is_current() const { return !_is_stale && !_making && _known_edits == _model.edits(); }

bool following_tree::advance(int slice_ms)
{
    if (_is_stale || _known_edits != _model.edits()) {
        _is_stale = false;
        _known_edits = _model.edits();
        _making.emplace(_model, _chosen);
    }
    if (!_making)
        return false;
    if (_making->advance(slice_ms))
        return true;
    _tree = _making->take();
    _making.reset();
    return false;
}

void following_tree::finish()
{
    while (advance(1000)) {
    }
}

void following_tree::recording_changed()
{
    _tree = {};
    _making.reset();
    _is_stale = true;
}

// Names and dismissals are in the file of the lineage; ROIs tell whether a recording is flat.
void following_tree::hear_of(const edit_step& step)
{
    for (const kept_in file : {kept_in::lineage, kept_in::false_positives, kept_in::rois})
        _is_stale = _is_stale || step.concerns(file);
}
