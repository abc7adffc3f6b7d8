// Reading an ROI file of 1,000,000 records: read_plus() against two stream forms.
//
// Both stream forms extract word by word from a std::ifstream. The plain one makes its keys with
// string streams and inserts without hints; the other one enters its records as read_plus() does,
// so that it shows the reading alone. The forms take turns, so that a machine that changes its speed
// during the run slows all of them, and each starts with an empty heap, so that none pays for what
// another one left behind; the ratios are of their fastest rounds.
#include "roidb_plus.h"
#include "stream_key.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <malloc.h>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int rounds = 5;

std::string random_outline(std::mt19937& random)
{
    std::string outline(std::uniform_int_distribution<std::size_t>(40, 120)(random), '0');
    for (char& step : outline)
        step = static_cast<char>('0' + random() % 4);
    return outline;
}

// 100 time points x 50 planes x 200 ROIs.
std::vector<std::string> million_records()
{
    std::mt19937 random(1);
    std::vector<std::string> records;
    for (int t = 0; t < 100; ++t)
        for (int z = 0; z < 50; ++z)
            for (int i = 0; i < 200; ++i) {
                const int x = 5 * i + static_cast<int>(random() % 5);
                const int y = static_cast<int>(random() % 1000);
                records.push_back(std::to_string(x) + ' ' + std::to_string(y) + ' ' + std::to_string(z) +
                                  ' ' + std::to_string(t) + ' ' + random_outline(random) + '\n');
            }
    return records;
}

void write_recording(const std::string& filename, const std::vector<std::string>& records)
{
    std::ofstream file(filename);
    file << "recording\n";
    for (const std::string& record : records)
        file << record;
}

// Reads the file word by word, each record into `enter`.
template <class Enter>
void stream_read(const std::string& filename, roidb_plus& into, Enter enter)
{
    std::ifstream file(filename);
    std::string name;
    file >> name;
    into.setName(name);
    int x = 0;
    int y = 0;
    int z = 0;
    int t = 0;
    std::string outline;
    while (file >> x >> y >> z >> t >> outline)
        enter(roi(x, y, z, t, outline));
}

void read_plus(const std::string& filename, roidb_plus& into) { (void)into.read_plus(filename); }

void stream_form(const std::string& filename, roidb_plus& into)
{
    stream_read(filename, into, [&into](const roi& r) {
        into.tz_xy_db.insert(std::make_pair(stream_key(pos4i(0, 0, r.z(), r.t())), pos2i(r.x(), r.y())));
        into.db.insert(std::make_pair(stream_key(r), r));
    });
}

void stream_words(const std::string& filename, roidb_plus& into)
{
    stream_read(filename, into, [&into](roi r) { into.entry_plus(std::move(r)); });
}

double seconds_of(const std::function<void()>& run)
{
    const auto start = std::chrono::steady_clock::now();
    run();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct form {
    const char* name;
    void (*read)(const std::string&, roidb_plus&);
    double best = 1e9;
};

bool compare(const char* order, const std::string& filename)
{
    std::array<form, 3> forms{
        {{"read_plus", read_plus}, {"stream words, fast entry", stream_words}, {"stream form", stream_form}}};
    roidb_plus expected("");
    stream_form(filename, expected);
    for (int round = 0; round < rounds; ++round)
        for (form& f : forms) {
            ::malloc_trim(0);
            roidb_plus db("");
            f.best = std::min(f.best, seconds_of([&] { f.read(filename, db); }));
            if (db.db != expected.db) {
                std::cerr << f.name << ": other records than the stream form" << std::endl;
                return false;
            }
        }
    for (const form& f : forms)
        std::printf("%-10s %-26s %7.3f s  %5.2f x read_plus\n", order, f.name, f.best,
                    f.best / forms[0].best);
    return true;
}

}    // namespace

int main()
{
    const std::string filename = (std::filesystem::temp_directory_path() / "bench_read.roi").string();
    std::vector<std::string> records = million_records();
    write_recording(filename, records);
    bool same = compare("ascending", filename);
    std::shuffle(records.begin(), records.end(), std::mt19937(2));
    write_recording(filename, records);
    same = compare("shuffled", filename) && same;
    std::filesystem::remove(filename);
    return same ? EXIT_SUCCESS : EXIT_FAILURE;
}
