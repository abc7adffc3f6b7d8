#include "truth_file.h"

#include "error_line.h"
#include "keygen.h"

#include <fstream>
#include <sstream>

namespace {

class truth_builder {
public:
    // What is wrong with the line, or nothing.
    [[nodiscard]] const char* take(std::istringstream& words)
    {
        std::string keyword;
        if (!(words >> keyword))
            return nullptr;    // an empty line
        if (known.dataset.empty())
            return keyword == "NAME" && words >> known.dataset ? nullptr : "no NAME line before the others";
        if (keyword == "ROI")
            return take_roi(words, 1);
        if (keyword == "JOIN")
            return take_roi(words, 2);
        if (keyword == "PART")
            return take_part(words);
        if (keyword == "TRACK")
            return take_track(words);
        return "no ROI, JOIN, PART or TRACK line";
    }

    truth known;

private:
    const char* take_roi(std::istringstream& words, int nuclei)
    {
        std::string key;
        if (!(words >> key) || !is_roi_key(key))
            return "no ROI key";
        const auto [entry, is_new] = known.rois.try_emplace(key);
        if (!is_new)
            return "an ROI that has a line already";
        for (int i = 0, label = 0; i < nuclei; ++i) {
            if (!(words >> label) || label < 0)
                return "no label";
            if (label != 0)
                entry->second.labels.push_back(label);
        }
        return nullptr;
    }

    const char* take_part(std::istringstream& words)
    {
        std::string key;
        std::string outline;
        int label = 0;
        int x = 0;
        int y = 0;
        if (!(words >> key >> label >> x >> y >> outline))
            return "no key, label, x, y and outline";
        const auto joined = known.rois.find(key);
        if (joined == known.rois.end() || joined->second.labels.size() != 2)
            return "a part of no joined outline";
        const pos4i at = decode(key);
        joined->second.parts.push_back({label, roi(x, y, at.z(), at.t(), outline)});
        return nullptr;
    }

    const char* take_track(std::istringstream& words)
    {
        int label = 0;
        truth_track track;
        if (!(words >> label >> track.first >> track.last >> track.parent))
            return "no label, first, last and parent";
        known.tracks[label] = track;
        return nullptr;
    }
};

}    // namespace

int truth::mother_of(int label) const
{
    const auto found = tracks.find(label);
    return found == tracks.end() ? 0 : found->second.parent;
}

bool truth::are_related(int child, int parent) const
{
    return child != 0 && parent != 0 && (child == parent || mother_of(child) == parent);
}

std::optional<truth> read_truth(const std::string& filename)
{
    std::ifstream file(filename);
    if (!file) {
        error_line("Cannot open ", filename);
        return std::nullopt;
    }
    truth_builder builder;
    int number = 0;
    const char* fault = nullptr;
    for (std::string line; !fault && std::getline(file, line); ++number) {
        std::istringstream words(line);
        words.imbue(std::locale::classic());
        fault = builder.take(words);
    }
    if (!fault && (file.bad() || builder.known.dataset.empty()))
        fault = "no NAME line before the others";
    if (!fault)
        return std::move(builder.known);
    error_line(filename, ":", number, ": ", fault);
    return std::nullopt;
}
