// shown_nuclei.h - what the ROIs of a recording show of the nuclei that the truth knows.
#pragma once
#include "truth_file.h"

#include "ORV_outline.h"
#include "ORV_roidb.h"
#include "ORV_roiimg.h"
#include "keygen.h"

#include <algorithm>
#include <compare>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

struct nucleus {
    int t = 0;
    int label = 0;    // 0: none

    auto operator<=>(const nucleus&) const = default;
};

using key_set = std::set<std::string>;

// What an ROI shows of a nucleus.
struct claim {
    int label = 0;
    double pixels = 0;
};

using claims = std::vector<claim>;

class shown_nuclei {
public:
    shown_nuclei(const truth& known, const roidb& rois)
    {
        index_parts(known);
        for (const auto& [key, r] : rois.db)
            enter(key, r, known);
        for (const auto& [key, true_roi] : known.rois)
            enter_missing(key, true_roi);
    }

    [[nodiscard]] const claims& claims_of(const std::string& key) const
    {
        static const claims nothing;
        const auto found = _claims.find(key);
        return found == _claims.end() ? nothing : found->second;
    }

    // What all of its pixels are of; label 0: of none.
    [[nodiscard]] const claims& pixels_in(const std::string& key) const
    {
        static const claims nothing;
        const auto found = _all_pixels.find(key);
        return found == _all_pixels.end() ? nothing : found->second;
    }

    // The ROIs that show each nucleus; what was to show it and is there no more counts as one.
    [[nodiscard]] const std::map<nucleus, key_set>& rois() const noexcept { return _rois; }

    [[nodiscard]] double pixels_of(const nucleus& n) const
    {
        const auto found = _pixels.find(n);
        return found == _pixels.end() ? 0 : found->second;
    }

private:
    struct part {
        std::string joined;    // key of the outline that it is part of
        int label;
        std::unique_ptr<roiimg> raster;
        bool is_shown = false;
    };

    static double area(const roi& r)
    {
        return static_cast<double>(std::max(1LL, enclosed_pixels(r.outline())));
    }

    void index_parts(const truth& known)
    {
        for (const auto& [key, true_roi] : known.rois)
            for (const truth_part& p : true_roi.parts) {
                auto raster = std::make_unique<roiimg>(p.outline);
                raster->map();
                const nucleus of{p.outline.t(), p.label};
                _pixels[of] += raster->size();
                _parts[{p.outline.t(), p.outline.z()}].push_back({key, p.label, std::move(raster)});
            }
    }

    void enter(const std::string& key, const roi& r, const truth& known)
    {
        claims& own = _claims[key];
        const auto found = known.rois.find(key);
        if (found != known.rois.end() && found->second.parts.empty())
            for (const int label : found->second.labels) {
                const double pixels = area(r) / static_cast<double>(found->second.labels.size());
                own.push_back({label, pixels});
                _pixels[{r.t(), label}] += pixels;
            }
        if (const auto parts = _parts.find({r.t(), r.z()}); parts != _parts.end())
            claim_parts(r, parts->second, own, _all_pixels[key]);
        if (own.empty() && _all_pixels[key].empty())
            _all_pixels[key] = {{0, area(r)}};
        else if (_all_pixels[key].empty())
            _all_pixels[key] = own;
        for (const claim& c : own)
            _rois[{r.t(), c.label}].insert(key);
    }

    static void claim_parts(const roi& r, std::vector<part>& parts, claims& own, claims& all)
    {
        roiimg raster(r);
        raster.map();
        for (part& p : parts) {
            const int shared = shared_pixels(raster, *p.raster);
            if (shared > 0)
                all.push_back({p.label, static_cast<double>(shared)});
            if (2 * shared <= p.raster->size())
                continue;
            own.push_back({p.label, static_cast<double>(shared)});
            p.is_shown = true;
        }
    }

    void enter_missing(const std::string& key, const truth_roi& true_roi)
    {
        const pos4i at = decode(key);
        if (true_roi.parts.empty() && !_claims.contains(key))
            for (const int label : true_roi.labels)
                _rois[{at.t(), label}].insert(key);
        if (true_roi.parts.empty())
            return;
        for (const part& p : _parts[{at.t(), at.z()}])
            if (p.joined == key && !p.is_shown)
                _rois[{at.t(), p.label}].insert("part of " + key);
    }

    std::map<std::string, claims> _claims;
    std::map<std::string, claims> _all_pixels;
    std::map<nucleus, key_set> _rois;
    std::map<nucleus, double> _pixels;
    std::map<std::pair<int, int>, std::vector<part>> _parts;    // by time point and focal plane
};
