// Tables of tracks: what is read keeps the rules of such tables, and is written and read again the same.
#include "harness.h"
#include "track_table.h"

#include <map>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto tracks = read_track_table(input_file(data, size));
    if (!tracks)
        return 0;
    std::map<std::uint32_t, track> by_label;
    for (const track& k : *tracks) {
        require(k.label > 0 && by_label.emplace(k.label, k).second, "a label is of one track");
        require(0 <= k.first && k.first <= k.last, "a track begins before it ends");
    }
    require(!tracks->empty(), "there is a track");
    for (const track& k : *tracks)
        require(k.parent == 0 || (by_label.contains(k.parent) && by_label[k.parent].last < k.first),
                "a parent ends before its child begins");
    const auto again = read_track_table(scratch().with("copy", track_table_text(*tracks)));
    require(again == tracks, "what is written reads back");
    return 0;
}
