// The colour file: only states get colours, and what is named last counts.
#include "color_file.h"
#include "harness.h"
#include "roi_colors.h"

#include <array>

namespace {

using color_table = std::array<QColor, 128>;

color_table colors_in(const std::string& filename)
{
    color_table colors;
    require(read_color_file(QString::fromStdString(filename), colors), "a file that is there opens");
    return colors;
}

// True iff the index is an OR of state codes.
bool is_state(int index)
{
    int reached = 0;
    for (const int state : {FORWARD, BACKWARD, LINEAGE, ELITE, SELECTED, REMOVED, HIGHLIGHT})
        if ((index & state) == state)
            reached |= state;
    return reached == index;
}

// True iff the toolkit takes the bytes for something else than text of one byte or more a letter.
bool is_wide(std::string_view text)
{
    return text.starts_with("\xff\xfe") || text.starts_with("\xfe\xff") ||
           text.starts_with(std::string_view("\0\0\xfe\xff", 4));
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string filename = input_file(data, size);
    const color_table colors = colors_in(filename);
    for (int index = 0; index < 128; ++index)
        require(is_state(index) || colors[static_cast<std::size_t>(index)] == QColor(Qt::white),
                "what is no state stays white");

    // In one of the two the words before the pair are even in number.
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto selected_after = [&](const char* words) {
        return colors_in(scratch().with("longer", text + words))[SELECTED];
    };
    require(is_wide(text) || selected_after("\nSELECTED #010203") == QColor(1, 2, 3) ||
                selected_after("\nblack SELECTED #010203") == QColor(1, 2, 3),
            "the last pair counts");
    return 0;
}
