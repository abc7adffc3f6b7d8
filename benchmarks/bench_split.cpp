// Splitting a unit of 30 planes x 60 x 60 pixels: the search for the plane against its plainest form, in
// turns so that one run gives their ratio, and the cut into ROIs, two ROI makers a member.
#include "../tests/support/literal_search.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

constexpr int planes = 30;
constexpr int side = 60;    // pixels
constexpr int search_width = 30;

class BenchWindow : public ORVBrowser {
public:
    using ORVBrowser::m_head_members, ORVBrowser::m_members_head, ORVBrowser::m_q_roiimgdb,
        ORVBrowser::m_roidb;

    // Opens a recording of one unit.
    BenchWindow()
    {
        std::string outline;
        for (const char step : {'2', '3', '0', '1'})
            outline.append(side, step);
        const std::string filename = (std::filesystem::temp_directory_path() / "bench_split.roi").string();
        std::ofstream records(filename);
        records << "recording\n";
        for (int z = 0; z < planes; ++z) {
            records << "10 10 " << z << " 0 " << outline << '\n';
            m_members.push_back(keygen({10, 10, z, 0}));
        }
        records.close();
        openRoiFile(filename);
        std::filesystem::remove(filename);
        for (const std::string& key : m_members) {
            m_head_members.emplace(unit(), key);
            m_members_head.emplace(key, unit());
        }
    }

    [[nodiscard]] const std::string& unit() const { return m_members.front(); }

private:
    std::vector<std::string> m_members;
};

// What the operations print goes nowhere.
class SilentOutput {
public:
    SilentOutput() : _before(std::cout.rdbuf(_text.rdbuf())) {}
    ~SilentOutput() { std::cout.rdbuf(_before); }
    SilentOutput(const SilentOutput&) = delete;
    SilentOutput& operator=(const SilentOutput&) = delete;

    void drop() { _text.str({}); }

private:
    std::ostringstream _text;
    std::streambuf* _before;
};

const pos3d normal(0.8, -0.36, 0.48);
const pos3d centre(39.5, 39.5, planes / 2 * 100.0 / 21.0);

template <class Run>
double seconds_of(const Run& run)
{
    const auto start = std::chrono::steady_clock::now();
    run();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void search(benchmark::State& state, BenchWindow& w)
{
    SilentOutput output;
    double fast = 1e9;
    double literal = 1e9;
    for (auto _ : state) {
        const double now =
            seconds_of([&] { w.search_cutting_position(w.unit(), normal, centre, search_width); });
        state.SetIterationTime(now);
        fast = std::min(fast, now);
        literal =
            std::min(literal, seconds_of([&] { literal_search(w, w.unit(), normal, centre, search_width); }));
        output.drop();
    }
    state.counters["literal_ms"] = literal * 1e3;
    state.counters["times_as_fast"] = literal / fast;
}

void cut(benchmark::State& state, BenchWindow& w)
{
    SilentOutput output;
    for (auto _ : state) {
        std::list<roi> plus;
        std::list<roi> minus;
        w.splitROI(w.unit(), normal, centre, plus, minus);
        benchmark::DoNotOptimize(minus.size());
        output.drop();
    }
}

}    // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    BenchWindow w;
    benchmark::Initialize(&argc, argv);
    benchmark::RegisterBenchmark("search", [&w](benchmark::State& state) { search(state, w); })
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("cut", [&w](benchmark::State& state) { cut(state, w); })
        ->UseRealTime()
        ->Unit(benchmark::kMillisecond);
    benchmark::RunSpecifiedBenchmarks();
}
