// The review of the large recording: its list of findings and the lineage as a tree, kept up to date. In the
// window that shows the next finding the tree is closed.
#include "bench_window.h"
#include "topics.h"

#include "following_tree.h"
#include "pages.h"
#include "review.h"
#include "review_walk.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace {

constexpr double rois = 126285;    // of the large recording
constexpr int edits = 500;
constexpr int steps = 100;
constexpr double frame_seconds = 0.016;

// With its units and links; those who follow it are made by whoever wants them.
struct recording {
    explicit recording(const std::string& filename) : window(filename)
    {
        const SilentStream quiet(std::cout);
        window.make_units();
        window.make_links();
        links.assign(window.m_linkage_multimap.begin(), window.m_linkage_multimap.end());
    }

    // Links removed and put back, all over the recording.
    void edit(const std::function<void()>& after)
    {
        const SilentStream quiet(std::cout);
        for (int i = 0; i < edits / 2; ++i) {
            const auto& [child, parent] = links[static_cast<std::size_t>(i) * links.size() / edits];
            window.release_child(parent, child);
            after();
            window.link(parent, child);
            after();
        }
    }

    BenchWindow window;
    std::vector<std::pair<std::string, std::string>> links;    // child, parent
};

struct followed_recording : recording {
    explicit followed_recording(const std::string& filename) : recording(filename) { list.finish(); }
    review list{window};
};

// A window with pages, on view.
struct walked_recording : recording {
    explicit walked_recording(const std::string& filename) : recording(filename)
    {
        add_pages(window);
        window.show();
        ReviewWalk::of(window)->begin();
        while (!ReviewWalk::of(window)->is_made())
            QCoreApplication::processEvents();
    }
};

// Made when it is used first: a filter may leave it out.
template <class Made>
std::function<Made&()> made_once(const std::string& filename)
{
    return [filename, made = std::make_shared<std::unique_ptr<Made>>()]() -> Made& {
        if (!*made)
            *made = std::make_unique<Made>(filename);
        return **made;
    };
}

double make_rasters(const curation& model)
{
    return seconds_of([&] {
        for (const auto& [key, r] : model.rois().db) {
            q_roiimg raster(r);
            raster.map();
            benchmark::DoNotOptimize(raster.size());
        }
    });
}

double walk_over_units_and_links(const curation& model)
{
    return seconds_of([&] {
        std::size_t bytes = 0;
        for (const auto* const entries : {&model.head_members(), &model.links()})
            for (const auto& [unit, other] : *entries)
                bytes += unit.size() + other.size();
        benchmark::DoNotOptimize(bytes);
    });
}

}    // namespace

std::vector<comparison> review_comparisons(const bench_data& data)
{
    const auto plain = made_once<recording>(data.large());
    const auto followed = made_once<followed_recording>(data.large());
    const auto walked = made_once<walked_recording>(data.large());
    return {
        {"make the list of findings, large recording", "the rasters", 6, "ROI", rois,
         [=] {
             review list(plain().window);
             return seconds_of([&] { list.finish(); });
         },
         [=] { return make_rasters(plain().window); }},
        {"an edit, its findings and counts", "one frame", 1, "link", edits,
         [=] {
             auto& r = followed();
             return seconds_of([&] { r.edit([&] { benchmark::DoNotOptimize(r.list.counts().open); }); });
         },
         [] { return frame_seconds * edits; }},
        {"bring the tree up to date", "one walk over units and links", 4, "ROI", rois,
         [=] {
             following_tree tree(plain().window);
             return seconds_of([&] { tree.finish(); });
         },
         [=] { return walk_over_units_and_links(plain().window); }},
        {"show the next finding", "a step to another time point", 2, "step", steps,
         [=] {
             ReviewWalk& walk = *ReviewWalk::of(walked().window);
             return seconds_of([&] {
                 for (int i = 0; i < steps; ++i) {
                     walk.next();
                     QCoreApplication::processEvents();
                 }
             });
         },
         [=] {
             BenchWindow& w = walked().window;
             return seconds_of([&] {
                 for (int i = 0; i < steps; ++i) {
                     w.setCurrentTimePoint((w.time_point() + 37) % w.max_time_point());
                     QCoreApplication::processEvents();
                 }
             });
         }},
    };
}
