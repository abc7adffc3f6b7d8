#include "demo_detections.h"

#include "ORV_outline.h"
#include "demo_random.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

constexpr int smallest_area = 16;    // pixels; a detector takes less for noise

// An ellipse in one image: what a focal plane cuts out of a nucleus.
struct slice {
    int label = 0;
    double x = 0, y = 0;
    double rx = 0, ry = 0;
    double cos_angle = 1, sin_angle = 0;
    std::vector<double> waves = {};    // that make it uneven: cosine and sine of 1, 2, 3 ... around it
    double growth = 1;                 // what they make of its radius, at most

    // Below 1 inside, 1 on the edge.
    [[nodiscard]] double squared_radius(double px, double py) const noexcept
    {
        const double u = ((px - x) * cos_angle + (py - y) * sin_angle) / rx;
        const double v = ((py - y) * cos_angle - (px - x) * sin_angle) / ry;
        const double edge = waves.empty() ? 1 : unevenness(std::atan2(v, u));
        return (u * u + v * v) / (edge * edge);
    }

    // The radius in this direction, as a part of the even one.
    [[nodiscard]] double unevenness(double direction) const noexcept
    {
        double edge = 1;
        for (std::size_t i = 0; i < waves.size(); i += 2) {
            const double turn = static_cast<double>(i / 2 + 1) * direction;
            edge += waves[i] * std::cos(turn) + waves[i + 1] * std::sin(turn);
        }
        return edge;
    }

    [[nodiscard]] double reach() const noexcept { return std::max(rx, ry) * growth + 1; }
};

std::optional<slice> cut(const demo_nucleus& n, int z)
{
    const double height = n.half_height();
    const double dz = z * focal_plane_step - n.centre.z();
    const double w = dz / height;
    if (std::abs(w) >= 1)
        return {};
    const double scale = std::sqrt(1 - w * w);
    // A tilted one is cut beside its centre, and rx less long: height and cut span the same area as rx and
    // rz.
    const double aside = w * n.sin_tilt * n.cos_tilt * (n.rx * n.rx - n.rz * n.rz) / height;
    const double rx = n.rx * (n.rz / height);
    return slice{n.label,
                 n.centre.x() + aside * n.cos_angle,
                 n.centre.y() + aside * n.sin_angle,
                 rx * scale,
                 n.ry * scale,
                 n.cos_angle,
                 n.sin_angle};
}

// Outlines bulge by `roughness` of their radius, never by so much that one leaves its centre.
void make_uneven(slice& s, double roughness, demo_random random)
{
    constexpr int waves = 5;
    for (int i = 1; i <= waves; ++i)
        for (int part = 0; part < 2; ++part)
            s.waves.push_back(std::clamp(roughness * random.normal() / std::sqrt(waves), -0.09, 0.09));
    for (const double wave : s.waves)
        s.growth += std::abs(wave);
}

// Whole pixels, the far edges not included; empty when it lies beside the image.
struct pixel_box {
    int left, top, right, bottom;
};

class plane_detector {
public:
    plane_detector(const demo_options& options, int t, int z)
        : _options(options), _t(t), _z(z), _random(options.seed, 2, t, z),
          _owner(options.width * options.height, 0)
    {
    }

    std::vector<demo_detection> run(const std::vector<demo_nucleus>& nuclei,
                                    const std::vector<demo_contact>& contacts)
    {
        for (const demo_nucleus& n : nuclei)
            if (auto s = cut(n, _z)) {
                if (const double roughness = _options.crowding.roughness; roughness > 0)
                    make_uneven(*s, roughness, demo_random(_options.seed + s->label, 6, _t, _z));
                _slices.push_back(std::move(*s));
            }
        for (const slice& s : _slices)
            claim(s);
        for (const demo_contact& c : contacts)
            detect_joined(c);
        for (const slice& s : _slices)
            if (!is_joined(s.label))
                detect_alone(s);
        // A spot for some of the outlines that are there, so that their share holds.
        for (std::size_t i = _slices.size(); i > 0; --i)
            if (_random.chance(_options.false_rate))
                detect_nothing();
        std::sort(_found.begin(), _found.end(), [](const demo_detection& a, const demo_detection& b) {
            return std::pair(a.outline.x(), a.outline.y()) < std::pair(b.outline.x(), b.outline.y());
        });
        return std::move(_found);
    }

private:
    static constexpr int spot = -1;    // owner of pixels in an outline of nothing

    [[nodiscard]] int& owner(int x, int y)
    {
        return _owner[static_cast<std::size_t>(y) * _options.width + x];
    }

    [[nodiscard]] const slice* find(int label) const
    {
        const auto found =
            std::find_if(_slices.begin(), _slices.end(), [=](const slice& s) { return s.label == label; });
        return found == _slices.end() ? nullptr : &*found;
    }

    [[nodiscard]] bool is_joined(int label) const
    {
        return std::count(_joined.begin(), _joined.end(), label) > 0;
    }

    [[nodiscard]] pixel_box box_around(const slice& a, const slice& b) const
    {
        const double ra = a.reach();
        const double rb = b.reach();
        return {std::max(0, static_cast<int>(std::min(a.x - ra, b.x - rb))),
                std::max(0, static_cast<int>(std::min(a.y - ra, b.y - rb))),
                std::min(_options.width, static_cast<int>(std::max(a.x + ra, b.x + rb)) + 1),
                std::min(_options.height, static_cast<int>(std::max(a.y + ra, b.y + rb)) + 1)};
    }

    // Every pixel goes to the nucleus that it lies deepest in.
    void claim(const slice& s)
    {
        const pixel_box box = box_around(s, s);
        for (int y = box.top; y < box.bottom; ++y)
            for (int x = box.left; x < box.right; ++x) {
                const double q = s.squared_radius(x, y);
                if (q >= 1)
                    continue;
                const slice* rival = owner(x, y) ? find(owner(x, y)) : nullptr;
                if (!rival || q < rival->squared_radius(x, y))
                    owner(x, y) = s.label;
            }
    }

    // The regions of the pixels in the box that satisfy `inside`, in image coordinates.
    template <class predicate>
    [[nodiscard]] static std::vector<outlined_region> regions_of(pixel_box box, predicate inside)
    {
        const int width = std::max(0, box.right - box.left);
        const int height = std::max(0, box.bottom - box.top);
        std::vector<unsigned char> mask;
        mask.reserve(static_cast<std::size_t>(width) * height);
        for (int y = box.top; y < box.top + height; ++y)
            for (int x = box.left; x < box.left + width; ++x)
                mask.push_back(inside(x, y));
        auto regions = outline_regions(mask, width, height);
        for (outlined_region& region : regions)
            region.start = region.start + pos2i(box.left, box.top);
        return regions;
    }

    template <class predicate>
    void take(pixel_box box, predicate inside, int label)
    {
        for (int y = box.top; y < box.bottom; ++y)
            for (int x = box.left; x < box.right; ++x)
                if (inside(x, y))
                    owner(x, y) = label;
    }

    // A neighbour that reaches over it may leave a nucleus in pieces.
    void detect_alone(const slice& s)
    {
        if (const auto region = largest_region(s))
            report(*region, s.label, 0);
    }

    // Of the pixels that it owns.
    [[nodiscard]] std::optional<outlined_region> largest_region(const slice& s)
    {
        const auto regions =
            regions_of(box_around(s, s), [&](int x, int y) { return owner(x, y) == s.label; });
        const auto largest = std::ranges::max_element(regions, {}, &outlined_region::pixels);
        return largest == regions.end() ? std::nullopt : std::optional(*largest);
    }

    // The outline of both nuclei in contact where the plane cuts both, with what lies between them.
    void detect_joined(const demo_contact& c)
    {
        const slice* a = find(c.label);
        const slice* b = find(c.other);
        if (!a || !b)
            return;
        const pixel_box box = box_around(*a, *b);
        const auto inside = [&](int x, int y) {
            const int o = owner(x, y);
            return o == a->label || o == b->label || (o == 0 && is_between(*a, *b, x, y));
        };
        const auto regions = regions_of(box, inside);
        if (regions.size() != 1)    // a third nucleus keeps them apart
            return;
        auto parts = parts_of(*a, *b);
        take(box, inside, a->label);
        _joined.insert(_joined.end(), {a->label, b->label});
        if (report(regions.front(), a->label, b->label))
            _found.back().parts = std::move(parts);
    }

    // Nothing when the truth is to have none.
    [[nodiscard]] std::vector<demo_part> parts_of(const slice& a, const slice& b)
    {
        std::vector<demo_part> parts;
        if (_options.crowding.truth_of_parts)
            for (const slice* const s : {&a, &b})
                if (const auto region = largest_region(*s))
                    parts.push_back({s->label, outline_of(*region)});
        return parts;
    }

    [[nodiscard]] roi outline_of(const outlined_region& region) const
    {
        return {region.start.x(), region.start.y(), _z, _t, region.chain};
    }

    // The neck that blur makes out of a gap: a bar from centre to centre.
    [[nodiscard]] static bool is_between(const slice& a, const slice& b, double x, double y)
    {
        const pos2d axis(b.x - a.x, b.y - a.y);
        const double length = std::max(axis.size(), 1e-9);
        const pos2d d(x - a.x, y - a.y);
        const double along = (d.x() * axis.x() + d.y() * axis.y()) / length;
        const double aside = std::abs(d.x() * axis.y() - d.y() * axis.x()) / length;
        return along >= 0 && along <= length &&
               aside <= std::max(1.0, 0.6 * std::min({a.rx, a.ry, b.rx, b.ry}));
    }

    void detect_nothing()
    {
        const demo_space space = space_of(_options);
        slice s;
        s.x = space.centre.x() + space.semi_axes.x() * _random.uniform(-0.7, 0.7);
        s.y = space.centre.y() + space.semi_axes.y() * _random.uniform(-0.7, 0.7);
        s.rx = _random.uniform(3, 8);
        s.ry = _random.uniform(3, 8);
        const pixel_box box = box_around(s, s);
        const auto inside = [&](int x, int y) { return owner(x, y) == 0 && s.squared_radius(x, y) < 1; };
        const auto regions = regions_of(box, inside);
        if (regions.size() != 1)
            return;
        take(box, inside, spot);
        report(regions.front(), 0, 0);
    }

    // False when the detector misses it.
    bool report(const outlined_region& region, int label, int other)
    {
        if (region.pixels < smallest_area || (label && _random.chance(_options.missing_rate)))
            return false;
        _found.push_back({outline_of(region), label, other, {}});
        return true;
    }

    const demo_options& _options;
    int _t;
    int _z;
    demo_random _random;
    std::vector<slice> _slices;
    std::vector<int> _owner;     // label per pixel, 0: none
    std::vector<int> _joined;    // labels that are part of a joined outline
    std::vector<demo_detection> _found;
};

std::vector<demo_contact> contacts_at(const demo_embryo& embryo, int t)
{
    std::vector<demo_contact> now;
    std::copy_if(embryo.contacts.begin(), embryo.contacts.end(), std::back_inserter(now),
                 [t](const demo_contact& c) { return c.first <= t && t <= c.last; });
    return now;
}

}    // namespace

std::vector<demo_detection> detect(const demo_embryo& embryo, const demo_options& options)
{
    std::vector<demo_detection> all;
    for (int t = 0; t < std::ssize(embryo.nuclei); ++t) {
        const auto contacts = contacts_at(embryo, t);
        for (int z = 0; z < options.planes; ++z) {
            auto found = plane_detector(options, t, z).run(embryo.nuclei[t], contacts);
            std::move(found.begin(), found.end(), std::back_inserter(all));
        }
    }
    return all;
}
