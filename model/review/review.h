// review.h - a review that ends: what may be wrong in a recording, in order of how likely it is, what is
// proposed for each, and what a person decides.
//
// The list follows the curation: after each step, undo and redo it is brought up to date around what has
// changed. It is made once, in slices; until it is, and while the recording is closed, it is empty. No window
// here.
#pragma once
#include "curation.h"
#include "curation_observer.h"
#include "finding.h"
#include "finding_list.h"
#include "unit_scene.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

struct review_counts {
    std::size_t open = 0;        // findings that are listed: one a unit
    std::size_t total = 0;       // the most that there were, open and dismissed, since the list was made
    std::size_t units = 0;       // but for false ones and those set aside
    std::size_t reviewed = 0;    // of these
    std::map<finding_kind, std::size_t> kinds;    // of the open ones

    // 0 to 1; all of no units are reviewed.
    [[nodiscard]] double reviewed_share() const noexcept
    {
        return units > 0 ? static_cast<double>(reviewed) / static_cast<double>(units) : 1;
    }
};

// What became of several proposals accepted at once.
struct review_summary {
    std::size_t accepted = 0;
    std::size_t left = 0;    // could not be carried out, or were no findings any more
};

class review : private curation_observer {
public:
    explicit review(curation& model);
    ~review() override;

    // ---- Making the list (review.cpp)
    // Goes on making it for about this long; false once it is complete. It begins anew when the recording, or
    // a great part of it at once, has changed.
    bool advance(int slice_ms = 10);
    void finish();    // all of it
    [[nodiscard]] bool is_complete();
    [[nodiscard]] double progress() const noexcept;    // 0 to 1

    // ---- The list
    // Changes whenever anything below, counts included, may have changed.
    [[nodiscard]] unsigned long revision();
    // Called whenever revision() has changed, in the call that changed it: be quick, and edit nothing.
    std::function<void()> on_change;

    // Open findings, the best one of each unit, ranked: descending by score. The pointers are good until the
    // next change.
    [[nodiscard]] const std::vector<const finding*>& ranked();
    // The listed finding of a unit (or ROI in no unit), or null.
    [[nodiscard]] const finding* of(const std::string& unit);
    // All that may be wrong with a unit, dismissed ones left out, the best one first; lower scores included.
    [[nodiscard]] std::vector<finding> all_of(const std::string& unit);
    // The units with an open finding of this kind, be it listed or behind a better one: for walks.
    [[nodiscard]] const std::set<std::string>& units_with(finding_kind kind);

    // ---- Counts
    [[nodiscard]] const review_counts& counts();
    // The ancestors and descendants of a unit, itself included, and their other descendants.
    [[nodiscard]] std::set<std::string> lineage_of(const std::string& unit);
    // The earliest ancestor, the one with the smallest key of several: names a lineage.
    [[nodiscard]] std::string root_of(const std::string& unit);
    [[nodiscard]] review_counts counts_of(const std::set<std::string>& units);    // total: the open ones

    // ---- What a person decides; each a step of undo (review_decisions.cpp)
    // Carries the proposal out and notes its units as edited and reviewed; "none" notes it as dismissed. The
    // offset is that of a cut, see preview(). False, one line and nothing changed when it cannot be done.
    bool accept(const finding& f, double offset = 0);
    void dismiss(const finding& f);
    void take_back(const finding& f);    // the dismissal
    void set_reviewed(const std::string& unit, bool on);
    [[nodiscard]] bool is_reviewed(const std::string& unit) const;
    // That a nucleus is not shown for some time points: dismisses the dead end and the unlinked unit. False
    // when they are not at least two time points apart.
    bool acknowledge_gap(const std::string& earlier, const std::string& later);
    [[nodiscard]] bool is_gap(const std::string& earlier, const std::string& later) const;
    bool take_back_gap(const std::string& earlier, const std::string& later);    // false when there is none

    // ---- Accepting all of a rule at once
    struct alike {
        std::size_t number = 0;    // of open findings of the same rule
        double share = 0;          // of right ones, where the truth was known
        [[nodiscard]] bool is_offered() const noexcept { return number > 1 && share >= least_share_for_all; }
    };
    // Of some open findings, those of the rule and proposal of f.
    [[nodiscard]] static alike all_like(const finding& f, const std::vector<const finding*>& among);
    // One step. carry_on is asked between two; once it answers no, the rest is left.
    review_summary accept_all_like(const finding& f, const std::vector<const finding*>& among,
                                   const std::function<bool()>& carry_on = {});

    // ---- What would be, without doing it
    // The cut of a finding that proposes one, moved along its normal by so many pixel widths.
    [[nodiscard]] std::optional<unit_parting> preview(const finding& f, double offset = 0);
    // A finding that proposes to cut this unit, for a person who sees two nuclei in it.
    [[nodiscard]] finding cut_by_hand(const std::string& unit) const;

private:
    void step_ended(edit_step& step) override { follow(changes_in(step)); }
    void step_replayed(const edit_step& step, bool forth) override { follow(changes_in(step, forth)); }
    void recording_changes() override;
    void recording_changed() override { begin_anew(); }

    void begin_anew();
    void begin_anew_if_stale();
    void follow(const scene_changes& changes);
    void find_all_at(int t);
    void find_again(const std::string& key);
    void count(const std::string& key, const scene_unit* u);
    void set_open(const std::string& key, std::vector<finding> found);
    [[nodiscard]] bool is_dismissed(const finding& f) const;
    [[nodiscard]] bool is_in_gap(const finding& f) const;
    void has_changed();

    bool carry_out(const finding& f, double offset);
    bool carry_out_link(const std::string& unit, const std::string& other);
    bool carry_out_unlink(const std::string& child, const std::string& parent);
    bool carry_out_cut(const finding& f, double offset);
    [[nodiscard]] parting_request request_of(const finding& f, double offset);
    [[nodiscard]] std::set<std::string> free_around(const std::string& unit) const;
    void note_edited(const std::set<std::string>& rois);    // the units that these are in

    curation& _model;
    const Observing _observing;
    unit_scene _scene;
    finding_list _list;
    int _next_t = 0;    // whose findings are to be found next, once the scene is loaded
    bool _is_complete = false;
    review_counts _counts;
    std::unordered_map<std::string, bool> _counted;    // units, and whether they are reviewed
    std::size_t _most = 0;
    unsigned long _revision = 1;
    unsigned long _known_edits = 0;    // of the curation, that the list knows of
};
