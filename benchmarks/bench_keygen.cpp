// ROI keys: the program's key maker against string streams.
#include "keygen.h"
#include "stream_key.h"

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

namespace {

const std::vector<pos4i>& positions()
{
    static const std::vector<pos4i> all = [] {
        std::mt19937 random(1);
        std::uniform_int_distribution<int> field(0, 999);
        std::vector<pos4i> made(1 << 12);
        for (pos4i& p : made)
            p = pos4i(field(random), field(random), field(random), field(random));
        return made;
    }();
    return all;
}

template <std::string (*make_key)(pos4i)>
void keys(benchmark::State& state)
{
    for (auto _ : state)
        for (const pos4i p : positions())
            benchmark::DoNotOptimize(make_key(p));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(positions().size()));
}

BENCHMARK(keys<keygen>)->Name("keygen");
BENCHMARK(keys<stream_key>)->Name("keygen, string streams");

}    // namespace

BENCHMARK_MAIN();
