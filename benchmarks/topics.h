// topics.h - what is measured, by topic.
#pragma once
#include "comparison.h"

// The recordings that ./bench makes.
struct bench_data {
    std::string folder;
    [[nodiscard]] std::string recording() const { return folder + "/demo.roi"; }    // with images
    [[nodiscard]] std::string large() const { return folder + "/large.roi"; }       // without
    [[nodiscard]] std::string of_size(int thousand_rois) const
    {
        return folder + "/" + std::to_string(thousand_rois) + "k.roi";
    }
};

[[nodiscard]] std::vector<comparison> file_comparisons(const bench_data& data);        // bench_files.cpp
[[nodiscard]] std::vector<comparison> picture_comparisons(const bench_data& data);     // bench_picture.cpp
[[nodiscard]] std::vector<comparison> view_comparisons(const bench_data& data);        // bench_view.cpp
[[nodiscard]] std::vector<comparison> tracking_comparisons(const bench_data& data);    // bench_tracking.cpp
[[nodiscard]] std::vector<comparison> exchange_comparisons(const bench_data& data);    // bench_exchange.cpp
[[nodiscard]] std::vector<comparison> review_comparisons(const bench_data& data);      // bench_review.cpp
[[nodiscard]] std::vector<comparison> split_comparisons();                             // bench_split.cpp

// The memory that reading a file took at its most, in bytes, printed for print_memory(). In a
// process of its own.
int print_peak_memory_of(const std::string& filename);    // bench_files.cpp
void print_memory(const bench_data& data);                // bench_files.cpp

void print_growth(const bench_data& data);     // bench_growth.cpp
void print_history(const bench_data& data);    // bench_history.cpp
