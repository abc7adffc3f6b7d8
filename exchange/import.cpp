#include "import.h"

#include "error_line.h"
#include "import_files.h"
#include "label_units.h"
#include "roi_reader.h"
#include "track_table.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <utility>

namespace {

namespace fs = std::filesystem;

// The table of tracks of a challenge folder: the one in it or, one or two levels down, the only one.
std::optional<fs::path> find_table(const std::string& source)
{
    std::vector<fs::path> found;
    std::error_code error;
    for (fs::recursive_directory_iterator entry(source, error), end; !error && entry != end;
         entry.increment(error)) {
        if (entry->path().filename().string().ends_with("_track.txt"))
            found.push_back(entry->path());
        if (entry.depth() >= 2)
            entry.disable_recursion_pending();
    }
    const auto here = std::ranges::find(found, fs::path(source), &fs::path::parent_path);
    if (!error && here != found.end() && found.size() > 1)
        std::erase_if(found, [&](const fs::path& p) { return p.parent_path() != fs::path(source); });
    if (error)
        error_line("Cannot open ", source);
    else if (found.size() != 1)
        error_line(source, ": ", found.empty() ? "no" : "more than one", " table of tracks (*_track.txt)");
    return !error && found.size() == 1 ? std::optional(found.front()) : std::nullopt;
}

std::string mask_prefix(const fs::path& table)
{
    return table.filename().string().starts_with("man") ? "man_track" : "mask";
}

// "time points 3, 4 and 12 more", so that a line stays a line.
std::string some_of(const std::vector<std::string>& items)
{
    constexpr std::size_t most = 8;
    std::string text;
    for (std::size_t i = 0; i < std::min(items.size(), most); ++i)
        text += (i > 0 ? ", " : "") + items[i];
    return items.size() > most ? text + " and " + std::to_string(items.size() - most) + " more" : text;
}

class importer {
public:
    importer(const import_request& request, import_report& report, const run_callbacks& callbacks)
        : _request(request), _report(report),
          _callbacks(callbacks), _made{roidb(request.name), {}, request.info}
    {
    }

    outcome run()
    {
        std::optional<std::vector<track>> tracks;
        auto series = find_source(tracks);
        if (!series)
            return outcome::refused;
        image_stack labels(std::move(*series), _request.window);
        if (!labels.open())
            return outcome::refused;
        if (const outcome read = read_labels(labels); read != outcome::done)
            return read;
        note_missing_times(labels);
        if (tracks)
            link(*tracks, labels);
        describe(labels);
        count();
        return write_imported(_request, _made, labels, part_of(_callbacks, share_of_labels(), 1));
    }

private:
    std::optional<file_series> find_source(std::optional<std::vector<track>>& tracks)
    {
        if (_request.kind == import_kind::labels)
            return find_series(_request.source);
        const auto table = find_table(_request.source);
        if (!table)
            return std::nullopt;
        tracks = read_track_table(table->string());
        return tracks ? find_frames(table->parent_path().string(), mask_prefix(*table)) : std::nullopt;
    }

    // Images are read twice and packed.
    [[nodiscard]] double share_of_labels() const { return _request.images.empty() ? 1 : 0.1; }

    outcome read_labels(image_stack& labels)
    {
        label_units maker(_made.rois, _made.units);
        const int steps = static_cast<int>(labels.times().size());
        const run_callbacks reading = part_of(_callbacks, 0, share_of_labels());
        for (int i = 0; i < steps; ++i) {
            if (!reading.step(i, steps))
                return outcome::stopped;
            const int t = labels.times()[i];
            const bool is_read = labels.read(i, [&](int z, label_page& page) {
                maker.take_plane(t, z, page);
                return true;
            });
            if (!is_read)
                return outcome::refused;
        }
        _units = maker.finish();
        _report.losses = maker.losses();
        if (const auto pieces = std::ranges::count(_report.losses, "piece", &loss::kind); pieces > 0)
            note(std::to_string(pieces) + " further pieces of labels in a plane: an ROI each");
        if (maker.hole_pixels() > 0)
            note(std::to_string(maker.hole_pixels()) +
                 " pixels of holes are covered by the outline around them");
        return outcome::done;
    }

    void note(std::string line) { _report.notes.push_back(std::move(line)); }

    void note_missing_times(const image_stack& labels)
    {
        std::vector<std::string> missing;
        const std::vector<int>& times = labels.times();
        for (int t = 0; t < times.back(); ++t)
            if (!std::ranges::binary_search(times, t))
                missing.push_back(std::to_string(t));
        if (!missing.empty())
            note("no images of time point " + some_of(missing));
    }

    // The time points of a track at which its label is shown, with the heads of its units.
    [[nodiscard]] std::vector<std::pair<int, std::string>> shown(const track& k) const
    {
        std::vector<std::pair<int, std::string>> found;
        const int origin = _request.window.times ? _request.window.times->first : 0;
        for (auto at = _units.lower_bound(k.first - origin);
             at != _units.end() && at->first <= k.last - origin; ++at)
            if (const auto unit = at->second.find(k.label); unit != at->second.end())
                found.emplace_back(at->first, unit->second);
        return found;
    }

    void join(const std::pair<int, std::string>& earlier, const std::pair<int, std::string>& later,
              const track& k)
    {
        if (later.first == earlier.first + 1) {
            _made.units.links.emplace(later.second, earlier.second);
            return;
        }
        _made.units.gaps.emplace(earlier.second, later.second);
        _report.losses.push_back({"gap", later.second, "track " + std::to_string(k.label)});
    }

    void link(const std::vector<track>& tracks, const image_stack& labels)
    {
        std::map<std::uint32_t, std::vector<std::pair<int, std::string>>> units;
        std::vector<std::string> interrupted;
        for (const track& k : tracks) {
            auto& found = units[k.label] = shown(k);
            for (std::size_t i = 1; i < found.size(); ++i)
                join(found[i - 1], found[i], k);
            if (static_cast<long long>(found.size()) != expected(k, labels))
                interrupted.push_back(std::to_string(k.label));
        }
        for (const track& k : tracks)
            if (k.parent != 0 && !units[k.label].empty() && !units[k.parent].empty())
                join(units[k.parent].back(), units[k.label].front(), k);
        if (!interrupted.empty())
            note("labels that are missing at some time points of their track: " + some_of(interrupted));
        note_strangers(units);
    }

    // At how many time points of what is read the track says its label is.
    [[nodiscard]] long long expected(const track& k, const image_stack& labels) const
    {
        const int origin = _request.window.times ? _request.window.times->first : 0;
        const int last = _request.window.times ? labels.times().back() : k.last;
        return std::max(0, std::min(k.last - origin, last) - std::max(k.first - origin, 0) + 1);
    }

    // Labels of the masks that the table does not know, or not at that time point.
    void note_strangers(const std::map<std::uint32_t, std::vector<std::pair<int, std::string>>>& units)
    {
        std::size_t known = 0;
        std::size_t all = 0;
        for (const auto& [label, found] : units)
            known += found.size();
        std::vector<std::string> strangers;
        for (const auto& [t, labels] : _units) {
            all += labels.size();
            for (const auto& [label, head] : labels)
                if (const auto k = units.find(label);
                    k == units.end() || !std::ranges::binary_search(k->second, std::pair(t, head))) {
                    strangers.push_back(std::to_string(label) + " at " + std::to_string(t));
                    _report.losses.push_back({"no_track", head, "label " + std::to_string(label)});
                }
        }
        if (known < all)
            note("labels that are in no track, left without links: " + some_of(strangers));
    }

    void describe(const image_stack& labels)
    {
        recording_info& info = _made.info;
        info.scale.pixel_um *= _request.window.bin;
        info.focal_planes = key_range{labels.planes().front(), labels.planes().back()};
        info.time_points = key_range{labels.times().front(), labels.times().back()};
        info.image_size = pixel_size{labels.width(), labels.height()};
    }

    void count()
    {
        _report.rois = _made.rois.db.size();
        for (const auto& [t, labels] : _units)
            _report.units += labels.size();
        _report.links = _made.units.links.size();
        _report.gaps = _made.units.gaps.size();
    }

    const import_request& _request;
    import_report& _report;
    const run_callbacks& _callbacks;
    imported_recording _made;
    std::map<int, labelled_units> _units;    // by time point
};

}    // namespace

outcome import_recording(const import_request& request, import_report& report, const run_callbacks& callbacks)
{
    report = {};
    if (!is_word(request.name) || request.name.find('/') != std::string::npos ||
        request.name.starts_with('.')) {
        error_line("A recording needs a name of one word without /: ", request.name);
        return outcome::refused;
    }
    if (!is_free(request))
        return outcome::refused;
    return importer(request, report, callbacks).run();
}
