// following_tree.h - the lineage tree of a curation, brought up to date in slices after each change.
//
// Until the new one is complete, the old one is there; of another recording, none.
#pragma once
#include "curation.h"
#include "curation_observer.h"
#include "tree_making.h"

#include <optional>
#include <string>

class following_tree : private curation_observer {
public:
    explicit following_tree(curation& model) : _model(model), _observing(model, *this) {}

    // The ancestors and descendants of a unit, itself included; "": all units.
    void show_lineage_of(const std::string& unit);
    [[nodiscard]] const std::string& lineage_shown() const noexcept { return _chosen; }

    [[nodiscard]] const lineage_tree& tree() const noexcept { return _tree; }
    [[nodiscard]] bool is_current() const;

    // Goes on bringing it up to date for about this long; false once it is.
    bool advance(int slice_ms = 10);
    void finish();    // all of it

private:
    void step_ended(edit_step& step) override { hear_of(step); }
    void step_replayed(const edit_step& step, bool) override { hear_of(step); }
    void recording_changed() override;
    void hear_of(const edit_step& step);

    curation& _model;
    const Observing _observing;
    lineage_tree _tree;
    std::optional<tree_making> _making;
    std::string _chosen;
    unsigned long _known_edits = 0;    // of the curation, that the tree, or the one in the making, knows of
    bool _is_stale = true;
};
