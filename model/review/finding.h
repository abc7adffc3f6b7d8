// finding.h - a place where units or links may be wrong, and what is proposed for it.
//
// Every finding comes from one of a few rules. Its score is the share of that rule's findings that were true
// errors on recordings whose truth is known: it is fixed, and nothing is learned while the program runs.
#pragma once
#include <cstddef>
#include <span>
#include <string>
#include <vector>

enum class finding_kind : unsigned char {
    doubtful,          // two or more parents
    dead_end,          // no child before the last time point
    unlinked,          // no parent after the first time point
    two_nuclei,        // units of the time point before or after lie in it
    waist,             // narrow between two planes
    missing_plane,     // a plane is missing, and it goes on elsewhere
    volume_jump,       // larger than its parent and child, beside a unit that ends or begins
    joined_outline,    // one outline that covers a plane of its neighbour
    lone_roi,          // one ROI alone, with a link
    no_unit,           // an ROI in no unit
    two_pieces,        // two ROIs on one plane
    many_children,     // three or more
    division,          // one that may be none
    far_link,          // to a unit far away and of another size
};
constexpr std::size_t finding_kind_count = 14;

enum class proposal_kind : unsigned char {
    link,              // of the unit and the other one
    unlink,            // the same
    merge,             // both into one
    cut,               // the unit, in two
    cut_outline,       // one ROI of the unit; the part in the other unit's gap goes to that
    cut_between,       // the unit, between two planes
    false_positive,    // the unit and the others
    none,              // nothing to do
};

// What leads to a finding. The first of two rules with the same score counts more.
enum class finding_rule : unsigned char {
    inner_cut,          // two units lie in it, and it falls in two
    gap_step,           // a plane is missing, and the centre jumps there
    pieces_of_one,      // with another unit in one of the time point before or after
    second_parent,      // two parents that lie in it, or not
    third_child,        // of three children the farthest
    gap_filled,         // an outline covers what its neighbour lacks
    free_neighbour,     // no parent, or child; a free unit lies near
    inner_close,        // two units lie in it, and it may fall in two
    waist_step,         // narrow, and the centre jumps there
    second_daughter,    // no parent; beside the only child of a unit
    short_track,        // two time points, one small ROI each
    daughter_ends,      // a daughter without a child
    far_and_changed,    // a link to far away, with another volume
    beside_free,        // large, and a free unit lies in reach
    pieces_apart,       // two ROIs on one plane, and it falls in two
    pieces_together,    // two ROIs on one plane
    roi_alone,          // in no unit
    lone_beside,        // one ROI with its only link to a much larger unit
    lone_linked,        // one ROI with a link
    begins,             // no parent
    ends,               // no child
};
constexpr std::size_t finding_rule_count = 21;

struct finding {
    finding_kind kind{};
    finding_rule rule{};
    int t = 0;
    std::string unit;                 // its head; an ROI in no unit: its key
    std::vector<std::string> with;    // the heads of the others it is about
    int plane = 0;                    // cut_outline, cut_between: the ROI's plane, the lower of the two
    double score = 0;                 // 0 to 1
    proposal_kind proposal{};

    bool operator==(const finding&) const = default;
};

// How often a rule was right where the truth is known.
struct rule_record {
    finding_kind kind;    // of its findings, unless the place tells otherwise
    proposal_kind proposal;
    int right;
    int of;

    [[nodiscard]] constexpr double score() const noexcept { return static_cast<double>(right) / of; }
    // The same where enough were measured to promise it; else 0.
    [[nodiscard]] double share() const noexcept;
};
constexpr int fewest_measured = 20;

[[nodiscard]] const rule_record& record_of(finding_rule rule) noexcept;

constexpr double least_listed_score = 0.1;
constexpr double least_share_for_all = 0.9;    // of right ones, for accepting all of a rule

// In the order of a ranked list: by descending score, then by rule, time point and unit.
[[nodiscard]] bool ranks_before(const finding& a, const finding& b) noexcept;

// The words of files and of the command line: "two_nuclei", "cut_between".
[[nodiscard]] const char* word_of(finding_kind kind) noexcept;
[[nodiscard]] const char* word_of(proposal_kind kind) noexcept;

// For a person: "Two nuclei", "Dead end".
[[nodiscard]] const char* name_of(finding_kind kind) noexcept;

// Why it may be an error: "Two nuclei of time point 11 lie in it".
[[nodiscard]] std::string reason_of(const finding& f);

// What accepting it does: "Cut it in two".
[[nodiscard]] std::string proposal_of(const finding& f);
