#include "comparison.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>

namespace {

// Keeps the fastest run of each benchmark.
class FastestRuns : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.iterations == 0)
                continue;
            const double seconds = run.real_accumulated_time / static_cast<double>(run.iterations);
            const auto [entry, is_first] = _seconds.emplace(run.run_name.function_name, seconds);
            if (!is_first)
                entry->second = std::min(entry->second, seconds);
        }
    }

    // 0 for one that was filtered out.
    [[nodiscard]] double seconds(const std::string& name) const
    {
        const auto found = _seconds.find(name);
        return found == _seconds.end() ? 0 : found->second;
    }

private:
    std::map<std::string, double> _seconds;
};

std::string floor_name(const comparison& c) { return c.work + ": " + c.floor; }

void register_run(const std::string& name, const timed_run& run)
{
    benchmark::RegisterBenchmark(name.c_str(), [run](benchmark::State& state) {
        for (auto _ : state)
            state.SetIterationTime(run());
    })->UseManualTime();
}

// Such as "12.3 us".
std::string in_readable_unit(double seconds)
{
    const struct {
        double least;
        double factor;
        const char* name;
    } units[] = {{1, 1, "s"}, {1e-3, 1e3, "ms"}, {1e-6, 1e6, "us"}, {0, 1e9, "ns"}};
    const auto* unit = std::find_if(std::begin(units), std::end(units),
                                    [seconds](const auto& u) { return seconds >= u.least; });
    char text[32];
    std::snprintf(text, sizeof text, "%.3g %s", seconds * unit->factor, unit->name);
    return text;
}

void print_row(const comparison& c, double work, double floor)
{
    if (work <= 0 || floor <= 0)
        return;
    const double ratio = work / floor;
    std::printf("| %s | %s a %s | %s | %s | %.2f%s |\n", c.work.c_str(),
                in_readable_unit(work / c.pieces).c_str(), c.unit.c_str(), c.floor.c_str(),
                in_readable_unit(floor / c.pieces).c_str(), ratio, ratio > c.limit ? " (!)" : "");
}

}    // namespace

void print_ratios(const std::vector<comparison>& comparisons)
{
    for (const comparison& c : comparisons) {
        register_run(c.work, c.run_work);
        register_run(floor_name(c), c.run_floor);
    }
    FastestRuns fastest;
    benchmark::RunSpecifiedBenchmarks(&fastest);
    benchmark::ClearRegisteredBenchmarks();    // they hold windows, which must not outlive the application
    std::puts("| work | takes | floor | takes | ratio |\n|---|---:|---|---:|---:|");
    for (const comparison& c : comparisons)
        print_row(c, fastest.seconds(c.work), fastest.seconds(floor_name(c)));
}
