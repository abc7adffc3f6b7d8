#include "true_cuts.h"

#include "ORV_roiimg.h"
#include "keygen.h"
#include "unit_parting.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>

namespace {

constexpr double enough = 0.9;    // of the pixels

using label_pair = std::pair<int, int>;

class cut_scorer {
public:
    cut_scorer(const truth& known, const roidb& rois, const physical_scale& scale)
        : _known(known), _rois(rois), _step(scale.plane_step())
    {
        for (const auto& [key, r] : known.rois)
            for (const int label : r.labels)
                _of[{decode(key).t(), label}].push_back(key);
    }

    [[nodiscard]] cut_scores score()
    {
        cut_scores scores;
        const std::set<timed_pair> joined = joined_pairs();
        for (const timed_pair& pair : joined)
            add(pair, scores.joined_known, scores.joined);
        for (const timed_pair& pair : stacked_pairs())
            if (!joined.contains(pair))
                add(pair, scores.stacked_known, scores.stacked);
        return scores;
    }

private:
    using timed_pair = std::pair<int, label_pair>;    // labels ascending

    [[nodiscard]] std::set<timed_pair> joined_pairs() const
    {
        std::set<timed_pair> pairs;
        for (const auto& [key, r] : _known.rois)
            if (r.parts.size() == 2)
                pairs.insert({decode(key).t(), std::minmax(r.parts[0].label, r.parts[1].label)});
        return pairs;
    }

    [[nodiscard]] std::set<timed_pair> stacked_pairs()
    {
        std::map<int, std::vector<std::vector<keyed_raster>>> nuclei;    // by time point; ROIs by plane
        std::map<const roi_mask*, int> labels;
        for (const auto& [nucleus, keys] : _of) {
            if (keys.empty() ||
                std::ranges::any_of(keys, [&](auto& key) { return _known.rois.at(key).labels.size() != 1; }))
                continue;
            auto& rasters = nuclei[nucleus.first].emplace_back();
            for (const std::string& key : keys)
                rasters.emplace_back(key, raster(_rois.db.at(key)));
            labels[rasters.front().second] = nucleus.second;
        }
        std::set<timed_pair> pairs;
        for (const auto& [t, rasters] : nuclei)
            for (const auto& lower : rasters)
                for (const auto& upper : rasters)
                    if (&lower != &upper && goes_on(*lower.back().second, *upper.front().second))
                        pairs.insert(
                            {t, std::minmax(labels[lower.front().second], labels[upper.front().second])});
        return pairs;
    }

    // As a chain of ROIs would, also across a missing plane.
    [[nodiscard]] static bool goes_on(const roi_mask& top, const roi_mask& bottom)
    {
        constexpr double share = 0.3;
        const int gap = bottom.z() - top.z();
        return gap >= 1 && gap <= 2 &&
               shared_pixels(top, bottom) >= share * std::min(top.size(), bottom.size());
    }

    void add(const timed_pair& pair, cut_score& with_parents, cut_score& without)
    {
        const auto& [t, labels] = pair;
        const auto rasters = rasters_of(t, labels);
        add(rasters, labels, {}, without);
        const auto a = centre_before(t, labels.first);
        const auto b = centre_before(t, labels.second);
        if (!a || !b)
            return;
        parting_request how;
        how.centres = std::pair(*a, *b);
        add(rasters, labels, how, with_parents);
    }

    // What the truth tells of the two nuclei's ROIs, each once.
    [[nodiscard]] std::vector<keyed_raster> rasters_of(int t, label_pair labels)
    {
        std::set<std::string> keys;
        for (const int label : {labels.first, labels.second})
            keys.insert(_of[{t, label}].begin(), _of[{t, label}].end());
        std::vector<keyed_raster> rasters;
        for (const std::string& key : keys)
            rasters.emplace_back(key, raster(_rois.db.at(key)));
        return rasters;
    }

    [[nodiscard]] const roi_mask* raster(const roi& r)
    {
        _owned.push_back(std::make_unique<roiimg>(r));
        _owned.back()->map();
        return _owned.back().get();
    }

    // Of its own outlines, or of its mother's.
    [[nodiscard]] std::optional<pos3d> centre_before(int t, int label)
    {
        for (const int l : {label, _known.mother_of(label)}) {
            std::vector<keyed_raster> own;
            for (const std::string& key : _of[{t - 1, l}])
                if (_known.rois.at(key).labels.size() == 1)
                    own.emplace_back(key, raster(_rois.db.at(key)));
            if (own.empty())
                continue;
            pos3d sum;
            const auto pixels = pixels_of(own, _step);
            for (const pos3d& p : pixels)
                sum = sum + p;
            return sum / static_cast<double>(pixels.size());
        }
        return std::nullopt;
    }

    void add(const std::vector<keyed_raster>& rasters, label_pair labels, const parting_request& how,
             cut_score& score)
    {
        ++score.of;
        const auto parted = part_rasters(rasters, _step, how);
        score.right += parted && is_right(*parted, labels);
    }

    [[nodiscard]] bool is_right(const unit_parting& parted, label_pair labels)
    {
        std::map<std::pair<int, roi_parting::side>, double> pixels;    // of a label, on a side
        for (const roi_parting& r : parted.rois)
            count(r, pixels);
        using enum roi_parting::side;
        const auto is_half = [&](int label, int other, roi_parting::side own, roi_parting::side far) {
            const double here = pixels[{label, own}];
            return here >= enough * (here + pixels[{other, own}]) &&
                   here >= enough * (here + pixels[{label, far}]);
        };
        const auto are_halves = [&](int a, int b) {
            return is_half(a, b, plus, minus) && is_half(b, a, minus, plus);
        };
        return are_halves(labels.first, labels.second) || are_halves(labels.second, labels.first);
    }

    void count(const roi_parting& r, std::map<std::pair<int, roi_parting::side>, double>& pixels)
    {
        const truth_roi& true_roi = _known.rois.at(r.key);
        const int width = r.box.right - r.box.left + 1;
        std::vector<std::pair<int, const roi_mask*>> parts;
        for (const truth_part& p : true_roi.parts)
            parts.emplace_back(p.label, raster(p.outline));
        for (std::size_t i = 0; i < r.sides.size(); ++i) {
            if (r.sides[i] == roi_parting::side::outside)
                continue;
            const int x = r.box.left + static_cast<int>(i) % width;
            const int y = r.box.top + static_cast<int>(i) / width;
            if (parts.empty())
                ++pixels[{true_roi.labels.front(), r.sides[i]}];
            for (const auto& [label, part] : parts)
                if (part->value(x - part->top_left().x(), y - part->top_left().y()) > 0)
                    ++pixels[{label, r.sides[i]}];
        }
    }

    const truth& _known;
    const roidb& _rois;
    double _step;
    std::map<std::pair<int, int>, std::vector<std::string>> _of;    // by time point and label
    std::vector<std::unique_ptr<roiimg>> _owned;
};

}    // namespace

cut_scores score_cuts(const truth& known, const roidb& rois, const physical_scale& scale)
{
    return cut_scorer(known, rois, scale).score();
}
