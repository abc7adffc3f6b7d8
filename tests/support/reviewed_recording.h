// reviewed_recording.h - a small recording without a window, with its review; nuclei that a test writes down.
#pragma once
#include "curation_probe.h"
#include "demo_files.h"
#include "demo_presets.h"
#include "edit_scope.h"
#include "link_making.h"
#include "review.h"
#include "units.h"

#include "ORV_outline.h"

#include <gtest/gtest.h>

#include <iostream>
#include <memory>
#include <random>

inline std::unique_ptr<roidb_plus> small_demo(std::uint64_t seed)
{
    demo_options o;
    (void)apply_preset("packed", o);
    o.seed = seed;
    o.time_points = 4;
    o.planes = 20;
    o.nuclei = 10;
    o.width = o.height = 110;
    o.joined_rate = 0.1;
    o.false_rate = 0.1;
    o.missing_rate = 0.08;
    auto rois = std::make_unique<roidb_plus>(o.name);
    for (const demo_detection& d : make_recording(o).detections)
        rois->entry_plus(d.outline);
    return rois;
}

struct written_nuclei {
    std::unique_ptr<roidb_plus> m_roidb = std::make_unique<roidb_plus>("written");
    std::vector<std::vector<std::string>> units;    // their members; the first names them
};

// Blocks of very different sizes, beside each other rather than within: what lies near matters, and how large
// the others are.
constexpr std::size_t scattered_at_once = 7;

inline written_nuclei scattered(unsigned seed)
{
    std::mt19937 random(seed);
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    written_nuclei made;
    for (int t = 0; t < 5; ++t)
        for (int i = 0; i < static_cast<int>(scattered_at_once); ++i) {
            const int size = 2 + below(4) * below(3);
            const pos4i at(5 + 6 * i + below(6), 5 + below(20), 5 + below(2), t);
            std::vector<std::string>& members = made.units.emplace_back();
            for (int plane = size > 3 ? below(3) : 0; plane >= 0; --plane)
                members.push_back(put_roi(made, {at.x(), at.y(), at.z() + plane, t}, size, size));
        }
    return made;
}

class review_of_a_recording : public testing::Test {
protected:
    review_of_a_recording() : _cout(std::cout.rdbuf(nullptr)) {}
    ~review_of_a_recording() override { std::cout.rdbuf(_cout); }

    void open(std::uint64_t seed = 1)
    {
        model.open_rois(small_demo(seed));
        make();
        all.finish();
    }

    // The heads of its units.
    std::vector<std::string> open(written_nuclei made)
    {
        model.open_rois(std::move(made.m_roidb));
        std::vector<std::string> heads;
        for (const auto& members : made.units)
            heads.push_back(put_unit(model, members));
        return heads;
    }

    void open_scattered(unsigned seed)
    {
        const auto units = open(scattered(seed));
        for (std::size_t i = scattered_at_once; i < units.size(); ++i)
            if ((i * seed) % 4 > 0)
                model.link(units[i], units[i - scattered_at_once]);
        all.finish();
    }

    void make()
    {
        const EditScope step(model, "Make");
        for (int t = 0; t <= model.max_time_point(); ++t)
            model.make_units(t, making{.spares = spared::nothing});
        link_making links(model, making{.spares = spared::nothing});
        for (int t = 1; t <= model.max_time_point(); ++t)
            links.step(t);
    }

    // The first listed finding with this proposal.
    [[nodiscard]] std::optional<finding> first(proposal_kind proposal)
    {
        for (const finding* const f : all.ranked())
            if (f->proposal == proposal)
                return *f;
        return std::nullopt;
    }

    [[nodiscard]] long long pixels_at(int t) const
    {
        long long pixels = 0;
        for (const auto& [key, r] : model.rois().db)
            pixels += r.t() == t ? enclosed_pixels(r.outline()) : 0;
        return pixels;
    }

    CurationProbe model;
    review all{model};

private:
    std::streambuf* _cout;
};

// What the list tells, entry by entry.
inline std::vector<finding> copied(review& r)
{
    std::vector<finding> found;
    for (const finding* const f : r.ranked())
        for (const finding& g : r.all_of(f->unit))
            found.push_back(g);
    return found;
}
