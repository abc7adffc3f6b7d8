// track_table.h - tracks as the tracking challenges keep them: a line "L B E P" each.
//
// L is the label of the track in the masks, B and E the time points where it begins and ends, both included,
// and P the label of its parent, 0 for none. Two tracks or more of one parent are a division, a single one
// goes on after a gap.
#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

struct track {
    std::uint32_t label = 0;
    int first = 0;
    int last = 0;
    std::uint32_t parent = 0;

    bool operator==(const track&) const = default;
};

// Numbers may stand between blanks and tabs, lines may end as they do elsewhere. Nothing, after one line on
// standard error that names the line, unless there is a track, labels are unique and above 0, no track ends
// before it begins, and every parent is there and ends before its child begins.
[[nodiscard]] std::optional<std::vector<track>> read_track_table(const std::string& filename);

[[nodiscard]] std::string track_table_text(const std::vector<track>& tracks);
