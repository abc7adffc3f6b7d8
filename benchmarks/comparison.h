// comparison.h - a piece of the program's work against the least it can cost, measured in one run.
#pragma once
#include <chrono>
#include <functional>
#include <string>
#include <vector>

// Runs once, and returns the seconds that the part to be measured took.
using timed_run = std::function<double()>;

// The seconds that run() takes.
template <class Run>
double seconds_of(const Run& run)
{
    const auto start = std::chrono::steady_clock::now();
    run();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct comparison {
    std::string work;
    std::string floor;    // what the work is compared with
    double limit;         // the largest ratio that is no reason to look closer
    std::string unit;     // of one piece: "ROI", "event"
    double pieces;        // in one run
    timed_run run_work;
    timed_run run_floor;
};

// Measures all of them, work and floor in random turns so that a machine that changes its speed slows
// both, and prints a table of the ratios of their fastest runs.
void print_ratios(const std::vector<comparison>& comparisons);
