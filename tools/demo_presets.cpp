#include "demo_presets.h"

#include <algorithm>
#include <numbers>

namespace {

constexpr demo_crowding touching{.filling = 0.48,
                                 .clearance = 0.98,
                                 .above = 0,
                                 .longest = 1.7,
                                 .tilt = std::numbers::pi / 4,
                                 .roughness = 0.08,
                                 .motion = 0.2,
                                 .farthest = 1,
                                 .daughter = 0.794,    // half the volume
                                 .condensed = false,
                                 .truth_of_parts = true};

demo_options crowded()
{
    demo_options o{.nuclei = 60, .missing_rate = 0.02, .false_rate = 0.005, .joined_rate = 0.015};
    o.crowding = touching;
    return o;
}

demo_options packed()
{
    demo_options o = crowded();
    o.nuclei = 100;
    o.crowding.filling = 0.55;
    o.crowding.clearance = 0.97;
    return o;
}

demo_options noisy()
{
    demo_options o = crowded();
    o.missing_rate = 0.05;
    o.false_rate = 0.02;
    o.crowding.roughness = 0.2;
    return o;
}

constexpr struct {
    std::string_view name;
    demo_options (*make)();
} presets[] = {
    {"demo", [] { return demo_options(); }},
    {"crowded", crowded},
    {"packed", packed},
    {"noisy", noisy},
};

}    // namespace

bool apply_preset(std::string_view preset, demo_options& options)
{
    const auto found = std::ranges::find(presets, preset, [](const auto& p) { return p.name; });
    if (found == std::end(presets))
        return false;
    demo_options made = found->make();
    made.name = options.name;
    made.seed = options.seed;
    options = made;
    return true;
}
