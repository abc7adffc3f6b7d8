// demo_random.h - random numbers that are the same with every standard library.
//
// Only the generator itself is the library's; its distributions differ between
// vendors and are not used.
#pragma once
#include <cstdint>
#include <random>

class demo_random {
public:
    // Streams of one seed are independent of each other: one per topic, time point, image ...
    explicit demo_random(std::uint64_t seed, std::uint64_t topic = 0, std::uint64_t a = 0,
                         std::uint64_t b = 0)
        : _generator(mixed(mixed(mixed(mixed(seed) + topic) + a) + b))
    {
    }

    [[nodiscard]] std::uint64_t bits() { return _generator(); }

    // In [0, 1).
    [[nodiscard]] double uniform() { return static_cast<double>(bits() >> 11) * 0x1p-53; }
    [[nodiscard]] double uniform(double from, double to) { return from + (to - from) * uniform(); }
    [[nodiscard]] int below(int n) { return static_cast<int>(uniform() * n); }    // in [0, n)
    [[nodiscard]] bool chance(double probability) { return uniform() < probability; }

    // Mean 0, standard deviation 1, nothing beyond 6.
    [[nodiscard]] double normal()
    {
        double sum = -6;
        for (int i = 0; i < 12; ++i)
            sum += uniform();
        return sum;
    }

private:
    // The finaliser of SplitMix64: neighbouring numbers end far apart.
    [[nodiscard]] static std::uint64_t mixed(std::uint64_t x) noexcept
    {
        x += 0x9e3779b97f4a7c15u;
        x = (x ^ (x >> 30)) * 0xbf58476d1ce4e5b9u;
        x = (x ^ (x >> 27)) * 0x94d049bb133111ebu;
        return x ^ (x >> 31);
    }

    std::mt19937_64 _generator;
};
