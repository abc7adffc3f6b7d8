#include "finding.h"

#include "keygen.h"

#include <tuple>

namespace {

using fk = finding_kind;
using pk = proposal_kind;

// By finding_rule. The numbers are those of 22 synthetic recordings and of a whole embryo together; of the
// rules after the comment, those of the recordings of docs/review.md.
constexpr rule_record records[] = {
    {fk::two_nuclei, pk::cut, 260 + 421, 263 + 449},
    {fk::missing_plane, pk::cut_between, 40 + 495, 57 + 495},
    {fk::unlinked, pk::merge, 19 + 45, 23 + 46},
    {fk::doubtful, pk::unlink, 1, 1},         // no nucleus has two parents,
    {fk::many_children, pk::unlink, 1, 1},    // and none three children
    {fk::joined_outline, pk::cut_outline, 55, 56 + 8},
    {fk::dead_end, pk::link, 21 + 70, 25 + 82},
    {fk::two_nuclei, pk::cut, 11, 13},
    {fk::waist, pk::cut_between, 18, 26},
    {fk::unlinked, pk::link, 33 + 86, 44 + 160},
    {fk::lone_roi, pk::false_positive, 30, 36 + 21},
    {fk::division, pk::unlink, 9 + 26, 39 + 43},
    {fk::far_link, pk::unlink, 13 + 38, 36 + 99},
    {fk::volume_jump, pk::cut, 14 + 59, 21 + 248},
    {fk::two_pieces, pk::cut, 1, 2},
    {fk::two_pieces, pk::none, 1, 4},
    {fk::no_unit, pk::none, 1, 4},
    {fk::lone_roi, pk::unlink, 6, 14},
    {fk::lone_roi, pk::none, 1, 5},
    {fk::unlinked, pk::none, 8 + 16, 106 + 41},
    {fk::dead_end, pk::none, 90 + 66, 393 + 735},
};
static_assert(std::size(records) == finding_rule_count);

struct kind_words {
    const char* word;
    const char* name;
};

constexpr kind_words kinds[] = {
    {"doubtful", "Doubtful"},     {"dead_end", "Dead end"},
    {"unlinked", "Unlinked"},     {"two_nuclei", "Two nuclei"},
    {"waist", "Waist"},           {"missing_plane", "Missing plane"},
    {"volume_jump", "Volume"},    {"joined_outline", "Joined outline"},
    {"lone_roi", "Lone ROI"},     {"no_unit", "In no unit"},
    {"two_pieces", "Two pieces"}, {"many_children", "Many children"},
    {"division", "Division"},     {"far_link", "Far link"},
};
static_assert(std::size(kinds) == finding_kind_count);

constexpr const char* proposal_words[] = {"link",        "unlink",      "merge",          "cut",
                                          "cut_outline", "cut_between", "false_positive", "none"};

std::string time_of_other(const finding& f)
{
    return f.with.empty() ? std::string("another time point")
                          : "time point " + std::to_string(decode(f.with.front()).t());
}

}    // namespace

double rule_record::share() const noexcept { return of >= fewest_measured ? score() : 0; }

const rule_record& record_of(finding_rule rule) noexcept { return records[static_cast<std::size_t>(rule)]; }

bool ranks_before(const finding& a, const finding& b) noexcept
{
    return std::tie(b.score, a.rule, a.t, a.unit) < std::tie(a.score, b.rule, b.t, b.unit);
}

const char* word_of(finding_kind kind) noexcept { return kinds[static_cast<std::size_t>(kind)].word; }

const char* name_of(finding_kind kind) noexcept { return kinds[static_cast<std::size_t>(kind)].name; }

const char* word_of(proposal_kind kind) noexcept { return proposal_words[static_cast<std::size_t>(kind)]; }

std::string reason_of(const finding& f)
{
    const std::string planes = std::to_string(f.plane) + " and " + std::to_string(f.plane + 1);
    switch (f.rule) {
    case finding_rule::inner_cut:
    case finding_rule::inner_close:
        return "Two nuclei of " + time_of_other(f) + " lie in it";
    case finding_rule::gap_step:
        return "A plane is missing above plane " + std::to_string(f.plane) + ", and it goes on elsewhere";
    case finding_rule::pieces_of_one:
        return "It lies with another unit in one nucleus of the time point before or after";
    case finding_rule::second_parent:
        return "It has more than one parent";
    case finding_rule::third_child:
        return "It has three or more children";
    case finding_rule::gap_filled:
        return "Its outline of plane " + std::to_string(f.plane) +
               " covers the plane that its neighbour lacks";
    case finding_rule::free_neighbour:
        return std::string(f.kind == fk::dead_end ? "It has no child" : "It has no parent") +
               ", and a free unit of " + time_of_other(f) + " lies near";
    case finding_rule::waist_step:
        return "It is narrow between planes " + planes + ", and its centre jumps there";
    case finding_rule::second_daughter:
        return "It has no parent, and lies opposite the only child of a unit of " + time_of_other(f);
    case finding_rule::short_track:
        return "A small ROI of two time points alone";
    case finding_rule::daughter_ends:
        return "A daughter that has no child";
    case finding_rule::far_and_changed:
        return "Its parent lies far away and has another volume";
    case finding_rule::beside_free:
        return "It is larger than its parent and child, and a free unit of " + time_of_other(f) +
               " lies near";
    case finding_rule::pieces_apart:
    case finding_rule::pieces_together:
        return "Two of its ROIs lie on plane " + std::to_string(f.plane);
    case finding_rule::roi_alone:
        return "An ROI in no unit";
    case finding_rule::lone_beside:
        return "One ROI alone, linked to a much larger unit";
    case finding_rule::lone_linked:
        return "One ROI alone";
    case finding_rule::begins:
        return "It has no parent";
    case finding_rule::ends:
        return "It has no child";
    }
    return {};
}

std::string proposal_of(const finding& f)
{
    switch (f.proposal) {
    case proposal_kind::link:
        return "Link it to the unit of " + time_of_other(f);
    case proposal_kind::unlink:
        return "Remove its link to the unit of " + time_of_other(f);
    case proposal_kind::merge:
        return "Merge the two";
    case proposal_kind::cut:
        return "Cut it in two";
    case proposal_kind::cut_outline:
        return "Cut its outline of plane " + std::to_string(f.plane) + " in two";
    case proposal_kind::cut_between:
        return "Cut it above plane " + std::to_string(f.plane);
    case proposal_kind::false_positive:
        return "Mark it as false positive";
    case proposal_kind::none:
        return "Nothing to do";
    }
    return {};
}
