#include "ctc_check.h"

#include "error_line.h"
#include "image_stack.h"
#include "track_table.h"

#include <algorithm>
#include <set>

namespace {

using label_set = std::set<std::uint32_t>;

template <class Label>
void collect(const std::vector<Label>& pixels, label_set& labels)
{
    constexpr std::size_t block = 64;    // most are background and passed over together
    Label last = 0;                      // labels come in runs
    for (std::size_t first = 0; first < pixels.size(); first += block) {
        const std::size_t end = std::min(first + block, pixels.size());
        Label any = 0;
        for (std::size_t i = first; i < end; ++i)
            any = static_cast<Label>(any | pixels[i]);
        for (std::size_t i = any ? first : end; i < end; ++i)
            if (pixels[i] != last && (last = pixels[i]) != 0)
                labels.insert(last);
    }
}

label_set expected_at(int t, const std::vector<track>& tracks)
{
    label_set labels;
    for (const track& k : tracks)
        if (k.first <= t && t <= k.last)
            labels.insert(k.label);
    return labels;
}

outcome refuse(const std::string& where, const std::string& why)
{
    error_line(where, ": ", why);
    return outcome::refused;
}

outcome compare(const std::string& folder, int t, const label_set& found, const label_set& expected)
{
    const auto in_neither = [&](const label_set& from, const label_set& other) {
        return std::ranges::find_if(from, [&](std::uint32_t l) { return !other.contains(l); });
    };
    const std::string place = " at time point " + std::to_string(t);
    if (const auto lost = in_neither(expected, found); lost != expected.end())
        return refuse(folder, "label " + std::to_string(*lost) + " is not in the mask" + place);
    if (const auto extra = in_neither(found, expected); extra != found.end())
        return refuse(folder, "label " + std::to_string(*extra) + " of the mask is in no track" + place);
    return outcome::done;
}

}    // namespace

outcome check_ctc(const std::string& folder, const std::string& prefix, const std::string& table,
                  const run_callbacks& callbacks)
{
    const auto tracks = read_track_table(table);
    auto series = tracks ? find_frames(folder, prefix) : std::nullopt;
    if (!series)
        return outcome::refused;
    image_stack masks(std::move(*series), {.is_limited = false});
    if (!masks.open())
        return outcome::refused;
    const int times = static_cast<int>(masks.times().size());
    if (masks.times().back() != times - 1)
        return refuse(folder, "a mask is missing between 0 and the last time point");
    if (std::ranges::max(*tracks, {}, &track::last).last >= times)
        return refuse(folder, "a track ends after the last mask");
    for (int t = 0; t < times; ++t) {
        if (!callbacks.step(t, times))
            return outcome::stopped;
        label_set found;
        const bool is_read = masks.read(t, [&](int, const label_page& page) {
            std::visit([&](const auto& labels) { collect(labels.pixels, found); }, page);
            return true;
        });
        if (!is_read)
            return outcome::refused;
        if (const outcome same = compare(folder, t, found, expected_at(t, *tracks)); same != outcome::done)
            return same;
    }
    return outcome::done;
}
