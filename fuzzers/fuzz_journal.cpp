// Journals: whatever one tells, its steps are made exactly or not at all, and can be taken back.
#include "file_hash.h"
#include "harness.h"
#include "keygen.h"
#include "replay.h"
#include "restored_state.h"

namespace {

const char small_rois[] = "emb\n1 2 0 0 2301\n2 2 0 0 2301\n1 2 1 0 2301\n1 2 0 1 2301\n2 2 0 1 2301\n";

companions small_files()
{
    companions files;
    files.names[0] = scratch().with("emb.roi", small_rois);
    files.hashes[0] = hash_of_file(files.names[0]);
    return files;
}

auto contents_of(const restored_state& state)
{
    std::vector<std::tuple<std::string, int, int>> index;
    for (const auto& [plane, at] : state.rois->tz_xy_db)
        index.emplace_back(plane, at.x(), at.y());
    std::vector<std::string> rois;
    for (const auto& [key, r] : state.rois->db)
        rois.push_back(key + r.outline());
    return std::tuple(index, rois, state.head_members, state.members_head, state.links, state.elite,
                      state.selected, state.false_positives, state.forward, state.backward);
}

void check_undo(restored_state& state)
{
    const auto end = contents_of(state);
    std::size_t undone = 0;
    for (; state.history.can_undo(); ++undone) {
        require(undo_step(state.history.next_to_undo(), state.tables()),
                "what was made exactly is undone exactly");
        state.history.undone();
    }
    for (; undone > 0; --undone) {
        require(redo_step(state.history.next_to_redo(), state.tables()), "and made again");
        state.history.redone();
    }
    require(contents_of(state) == end, "undone and made again, the state is the same");
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const companions files = small_files();
    const std::string events(reinterpret_cast<const char*>(data), size);
    const journal read("JOURNAL 1 emb\nBASE 2026-11-21T14:32:10Z " + files.hashes[0] + "\n" + events);
    for (const journal_stretch& stretch : read.stretches()) {
        (void)unsaved_in(stretch, files);
        if (std::optional<restored_state> state = restore(stretch, files))
            check_undo(*state);
    }
    require(journal(events).good_bytes() <= size, "no more is read than there is");
    return 0;
}
