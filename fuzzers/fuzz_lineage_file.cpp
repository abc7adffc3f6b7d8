// Lineage files: what is taken over is sound, and it is written and read again the same.
#include "harness.h"
#include "keygen.h"
#include "lineage_file.h"

namespace {

// Keys that a person sees, and some beyond the range in which keys are in order.
roidb small_roidb()
{
    roidb rois("emb");
    for (int t = 0; t < 3; ++t)
        for (int z = 0; z < 2; ++z)
            for (int x = 1; x < 3; ++x)
                rois.entry(roi(x, 2, z, t, "2301"));
    for (const pos4i p : {pos4i(1000, 2, 0, 1), pos4i(-5, 2, 0, 1), pos4i(1, 2, 0, 1000), pos4i(1, 2, 0, -1)})
        rois.entry(roi(p, "2301"));
    return rois;
}

void check_sound(const lineage& units, const roidb& rois)
{
    const auto heads = heads_of_members(units);
    require(heads.size() == units.head_members.size(), "an ROI is in one unit");
    for (const auto& [member, head] : heads) {
        require(rois.db.contains(member), "a member is an ROI");
        require(heads.contains(head) && heads.at(head) == head, "a unit holds the ROI that names it");
        require(decode(member).t() == decode(head).t(), "a unit lies at one time point");
    }
    for (const auto& [child, parent] : units.links) {
        require(units.head_members.contains(child) && units.head_members.contains(parent),
                "a link joins two units");
        require(decode(child).t() == decode(parent).t() + 1, "a parent is one time point earlier");
    }
    for (const std::string& head : units.elite)
        require(units.head_members.contains(head), "an elite mark is on a unit");
    for (const auto& [earlier, later] : units.gaps)
        require(units.head_members.contains(earlier) && units.head_members.contains(later) &&
                    decode(later).t() > decode(earlier).t() + 1,
                "a gap lies between two units");
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const roidb rois = small_roidb();
    const auto units = read_lineage(input_file(data, size), "emb", rois);
    if (!units)
        return 0;
    check_sound(*units, rois);
    const std::string copy = scratch().path("copy");
    require(write_lineage(copy, "emb", *units), "a file is written");
    const auto again = read_lineage(copy, "emb", rois);
    require(again && in_order(again->head_members) == in_order(units->head_members) &&
                in_order(again->links) == in_order(units->links) && again->elite == units->elite &&
                again->edited == units->edited && again->reviewed == units->reviewed &&
                again->dismissed == units->dismissed && again->gaps == units->gaps &&
                again->called == units->called,
            "what is written reads back");
    return 0;
}
