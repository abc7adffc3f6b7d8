// What undo and the journal cost, without a window.
#include "bench_window.h"
#include "topics.h"

#include "curation.h"
#include "edit_scope.h"
#include "kept_work.h"
#include "keygen.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <vector>

namespace {

namespace fs = std::filesystem;

// A copy of the recording in a folder of its own, where its journal goes.
std::string fresh_copy(const bench_data& data)
{
    const fs::path folder = fs::path(data.folder) / "history";
    fs::remove_all(folder);
    fs::create_directory(folder);
    setenv("XDG_RUNTIME_DIR", folder.c_str(), 1);
    setenv("XDG_STATE_HOME", folder.c_str(), 1);
    fs::copy(data.of_size(300), folder / "work.roi");
    return folder / "work.roi";
}

std::unique_ptr<roidb_plus> read(const std::string& filename)
{
    auto rois = std::make_unique<roidb_plus>("");
    (void)rois->read_plus(filename);
    return rois;
}

void make_units_and_links(curation& model)
{
    for (int t = model.min_time_point(); t <= model.max_time_point(); ++t)
        model.make_units(t, 0);
    for (int t = model.min_time_point() + 1; t <= model.max_time_point(); ++t)
        model.makeLinkage(t);
}

// From every ROI of the first time points through the whole recording, as one step.
void track_through(curation& model)
{
    const EditScope step(model, "Track");
    model.select_all(model.min_time_point());
    for (int t = model.min_time_point(); t < model.max_time_point(); ++t)
        model.forwardTracking(t);
}

using long_work = void (*)(curation&);

double run_without_history(const std::string& file, long_work run)
{
    curation model;
    model.open_rois(read(file));
    return seconds_of([&] { run(model); });
}

double run_with_history(const std::string& file, long_work run)
{
    fs::remove(fs::path(file).replace_extension(".journal"));
    curation model;
    kept_work work(model);
    (void)work.open(file);
    return seconds_of([&] { run(model); });
}

void print_ratio(const std::string& file, const char* what, long_work run)
{
    double without = 1e9;
    double with = 1e9;
    for (int i = 0; i < 3; ++i) {
        without = std::min(without, run_without_history(file, run));
        with = std::min(with, run_with_history(file, run));
    }
    std::printf("| %s, with history and journal against without | %.2f |\n", what, with / without);
}

void print_edits(curation& model, kept_work& work)
{
    const SilentStream quiet(std::cout);
    const std::set<std::string> units = model.units(model.max_time_point());
    const std::vector<std::string> some(units.begin(), std::next(units.begin(), 500));
    const double marks =
        seconds_of([&] { std::ranges::for_each(some, [&](auto& u) { model.toggle_elite(u); }); });
    const double links =
        seconds_of([&] { std::ranges::for_each(some, [&](auto& u) { model.release_parents(u); }); });
    const double merges = seconds_of([&] {
        for (std::size_t i = 0; i + 1 < some.size(); i += 2)
            model.mergeUnits(some[i], some[i + 1]);
    });
    std::printf("| an edit: elite, unlink, merge, microseconds | %.0f, %.0f, %.0f |\n", marks * 2000,
                links * 2000, merges * 4000);
    std::size_t bytes = 0, changes = 0;
    for (std::size_t i = work.history().first(); i < work.history().end(); ++i) {
        const edit_step& step = work.history().at(i);
        bytes += step.bytes() + sizeof step;
        changes += static_cast<std::size_t>(std::ranges::count(step.changes(), '\n'));
    }
    std::printf("| memory of a changed entry, bytes | %.0f |\n",
                static_cast<double>(bytes) / static_cast<double>(changes));
    double replay = seconds_of([&] {
        while (work.undo()) {
        }
        while (work.redo()) {
        }
    });
    std::printf("| undo and redo, changes a second | %.0f |\n", 2 * static_cast<double>(changes) / replay);
}

void print_opening(const std::string& file)
{
    fs::remove(fs::path(file).replace_extension(".journal"));
    {
        curation model;
        kept_work work(model);
        (void)work.open(file);
        const std::string key = model.rois().db.begin()->first;
        for (int i = 0; i < 100000; ++i)
            model.toggle_selected(key);
    }
    auto rois = read(file);
    curation model;
    kept_work work(model);
    model.open_rois(std::move(rois));
    const double seconds = seconds_of([&] { work.opened(file); });
    std::printf("| offer of a journal of 100,000 steps, seconds | %.2f (%zu edits) |\n", seconds,
                work.offers().empty() ? 0 : work.offers().front().edits);
    const double taken_up = seconds_of([&] { (void)work.take_up(); });
    std::printf("| taking it up, seconds | %.2f |\n", taken_up);
}

}    // namespace

void print_history(const bench_data& data)
{
    const std::string file = fresh_copy(data);
    std::puts("| history, with 463,257 ROIs | |\n|---|---:|");
    print_ratio(file, "make units and links", make_units_and_links);
    print_ratio(file, "tracking from every ROI", track_through);
    fs::remove(fs::path(file).replace_extension(".journal"));
    {
        curation model;
        kept_work work(model);
        (void)work.open(file);
        make_units_and_links(model);
        print_edits(model, work);
    }
    print_opening(file);
}
