// The program's work against the least it can cost, and how it grows with the recording.
//
//     bench FOLDER [--benchmark_filter=REGEX]      FOLDER holds the recordings that ./bench makes
#include "topics.h"

#include <QApplication>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string_view>

namespace {

template <class... Lists>
std::vector<comparison> joined(Lists... lists)
{
    std::vector<comparison> all;
    (all.insert(all.end(), lists.begin(), lists.end()), ...);
    return all;
}

}    // namespace

int main(int argc, char** argv)
{
    if (argc == 3 && std::string_view(argv[1]) == "--memory-of")
        return print_peak_memory_of(argv[2]);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (argc != 2) {
        std::fputs("usage: bench FOLDER [--benchmark_filter=REGEX]\n", stderr);
        return 2;
    }
    const bench_data data{argv[1]};
    print_ratios(joined(split_comparisons(), picture_comparisons(data), view_comparisons(data),
                        tracking_comparisons(data), review_comparisons(data), file_comparisons(data),
                        exchange_comparisons(data)));
    std::puts("");
    print_memory(data);
    std::puts("");
    print_growth(data);
    std::puts("");
    print_history(data);
}
