#include "two_ellipsoids.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace {

constexpr std::size_t pixels_looked_at = 2500;
constexpr int most_rounds = 40;
constexpr double fewest_pixels = 20;    // of a side
constexpr double blur = 2;              // added to each variance, pixels squared

// A cut that is nearly level, by the slope of its normal, becomes one between planes where that costs little
// more.
constexpr double steep = 0.9;
constexpr double plane_bonus = 0.1;

// Sums over pixels, from which their mean and covariance follow.
struct moments {
    double n = 0;
    pos3d sum;
    symmetric_matrix products{};

    void add(pos3d p) noexcept
    {
        n += 1;
        sum = sum + p;
        products[0] += p.x() * p.x();
        products[1] += p.x() * p.y();
        products[2] += p.x() * p.z();
        products[3] += p.y() * p.y();
        products[4] += p.y() * p.z();
        products[5] += p.z() * p.z();
    }

    void add(const moments& o, double sign = 1) noexcept
    {
        n += sign * o.n;
        sum = sum + o.sum * sign;
        for (std::size_t i = 0; i < products.size(); ++i)
            products[i] += sign * o.products[i];
    }

    [[nodiscard]] pos3d mean() const noexcept { return sum / n; }

    [[nodiscard]] symmetric_matrix covariance() const noexcept
    {
        const pos3d m = mean();
        symmetric_matrix c{m.x() * m.x(), m.x() * m.y(), m.x() * m.z(),
                           m.y() * m.y(), m.y() * m.z(), m.z() * m.z()};
        for (std::size_t i = 0; i < c.size(); ++i)
            c[i] = products[i] / n - c[i];
        return c;
    }

    [[nodiscard]] symmetric_matrix blurred() const noexcept
    {
        symmetric_matrix c = covariance();
        for (const std::size_t i : {0, 3, 5})
            c[i] += blur;
        return c;
    }
};

double determinant(const symmetric_matrix& m) noexcept
{
    const auto& [xx, xy, xz, yy, yz, zz] = m;
    return xx * (yy * zz - yz * yz) - xy * (xy * zz - yz * xz) + xz * (xy * yz - yy * xz);
}

symmetric_matrix inverse(const symmetric_matrix& m, double det) noexcept
{
    const auto& [xx, xy, xz, yy, yz, zz] = m;
    return {(yy * zz - yz * yz) / det, (xz * yz - xy * zz) / det, (xy * yz - xz * yy) / det,
            (xx * zz - xz * xz) / det, (xy * xz - xx * yz) / det, (xx * yy - xy * xy) / det};
}

pos3d times(const symmetric_matrix& m, pos3d p) noexcept
{
    return {m[0] * p.x() + m[1] * p.y() + m[2] * p.z(), m[1] * p.x() + m[3] * p.y() + m[4] * p.z(),
            m[2] * p.x() + m[4] * p.y() + m[5] * p.z()};
}

// Of several as long, the first. Power iteration by squaring: 2^12 steps.
pos3d longest_axis(symmetric_matrix m) noexcept
{
    for (int i = 0; i < 12; ++i) {
        const double trace = m[0] + m[3] + m[5];
        if (!(trace > 0))
            return {1, 0, 0};
        for (double& v : m)
            v /= trace;
        const auto& [xx, xy, xz, yy, yz, zz] = m;
        m = {xx * xx + xy * xy + xz * xz, xx * xy + xy * yy + xz * yz, xx * xz + xy * yz + xz * zz,
             xy * xy + yy * yy + yz * yz, xy * xz + yy * yz + yz * zz, xz * xz + yz * yz + zz * zz};
    }
    const pos3d columns[] = {{m[0], m[1], m[2]}, {m[1], m[3], m[4]}, {m[2], m[4], m[5]}};
    const pos3d& longest =
        *std::ranges::max_element(columns, {}, [](const pos3d& column) { return column.size(); });
    return longest / longest.size();
}

pixel_ellipsoid ellipsoid_of(const moments& side, double all) noexcept
{
    const symmetric_matrix c = side.blurred();
    const double det = determinant(c);
    return {side.mean(), inverse(c, det), std::log(det) - 2 * std::log(side.n / all)};
}

// How well the sides explain their pixels: the less, the better.
double cost_of(const moments& side, double all)
{
    const double share = side.n / all;
    return share * (std::log(determinant(side.blurred())) - 2 * std::log(share));
}

pos3d direction(pos3d from, pos3d to)
{
    const pos3d way = to - from;
    const double length = way.size();
    return length > 0 ? way / length : pos3d(0, 0, 1);
}

class parting_pixels {
public:
    explicit parting_pixels(std::span<const pos3d> pixels)
    {
        const std::size_t step = std::max<std::size_t>(1, pixels.size() / pixels_looked_at);
        for (std::size_t i = 0; i < pixels.size(); i += step) {
            _pixels.push_back(pixels[i]);
            _all.add(pixels[i]);
        }
    }

    [[nodiscard]] std::optional<two_sides> part(const std::optional<std::pair<pos3d, pos3d>>& from)
    {
        if (_all.n < 2 * fewest_pixels)
            return std::nullopt;
        if (from)
            take_sides([&](pos3d p) { return (p - from->second).size() < (p - from->first).size(); });
        else
            take_sides([mean = _all.mean(), axis = longest_axis(_all.covariance())](pos3d p) {
                return inner_product(p - mean, axis) > 0;
            });
        two_sides cut;
        for (int round = 0; round < most_rounds; ++round) {
            if (_plus.n < fewest_pixels || _minus.n < fewest_pixels)
                return std::nullopt;
            cut.plus = ellipsoid_of(_plus, _all.n);
            cut.minus = ellipsoid_of(_minus, _all.n);
            if (!take_sides([&](pos3d p) { return cut.plus.distance(p) < cut.minus.distance(p); }))
                break;
        }
        if (_plus.n < fewest_pixels || _minus.n < fewest_pixels)
            return std::nullopt;
        const double cost = cost_of(_plus, _all.n) + cost_of(_minus, _all.n);
        cut.gain = std::log(determinant(_all.blurred())) - cost;
        cut.normal = direction(cut.minus.centre, cut.plus.centre);
        if (std::abs(cut.normal.z()) >= steep)
            prefer_planes(cost, cut);
        return cut;
    }

private:
    // True iff any pixel has changed sides.
    template <class IsPlus>
    bool take_sides(const IsPlus& is_plus)
    {
        bool has_changed = _is_plus.empty();
        _is_plus.resize(_pixels.size());
        _plus = _minus = {};
        for (std::size_t i = 0; i < _pixels.size(); ++i) {
            const bool plus = is_plus(_pixels[i]);
            has_changed = has_changed || plus != _is_plus[i];
            _is_plus[i] = plus;
            (plus ? _plus : _minus).add(_pixels[i]);
        }
        return has_changed;
    }

    void prefer_planes(double cost, two_sides& cut) const
    {
        std::map<double, moments> planes;
        for (const pos3d& p : _pixels)
            planes[p.z()].add(p);
        moments below;
        double least = cost + plane_bonus;
        for (auto plane = planes.begin(); std::next(plane) != planes.end(); ++plane) {
            below.add(plane->second);
            moments above = _all;
            above.add(below, -1);
            if (below.n < fewest_pixels || above.n < fewest_pixels)
                continue;
            const double here = cost_of(below, _all.n) + cost_of(above, _all.n);
            if (here > least)
                continue;
            least = here;
            cut.boundary = (plane->first + std::next(plane)->first) / 2;
            cut.plus = ellipsoid_of(above, _all.n);
            cut.minus = ellipsoid_of(below, _all.n);
            cut.normal = {0, 0, 1};
        }
    }

    std::vector<pos3d> _pixels;
    std::vector<unsigned char> _is_plus;
    moments _all, _plus, _minus;
};

}    // namespace

double pixel_ellipsoid::distance(pos3d p) const noexcept
{
    const pos3d way = p - centre;
    const pos3d image = times(inverse, way);
    return way.x() * image.x() + way.y() * image.y() + way.z() * image.z() + constant;
}

bool two_sides::is_plus(pos3d p) const noexcept
{
    const pos3d at = p - normal * offset;
    return boundary ? at.z() > *boundary : plus.distance(at) < minus.distance(at);
}

std::optional<two_sides> find_two_ellipsoids(std::span<const pos3d> pixels,
                                             const std::optional<std::pair<pos3d, pos3d>>& from)
{
    std::optional<two_sides> best = parting_pixels(pixels).part(std::nullopt);
    if (!from)
        return best;
    if (auto other = parting_pixels(pixels).part(from); other && (!best || other->gain > best->gain))
        best = std::move(other);
    if (best && !best->boundary && inner_product(best->normal, from->first - from->second) < 0) {
        std::swap(best->plus, best->minus);
        best->normal = best->normal * -1;
    }
    return best;
}

two_sides cut_between_planes(double boundary)
{
    two_sides cut;
    cut.boundary = boundary;
    cut.normal = {0, 0, 1};
    cut.plus.centre = cut.minus.centre = {0, 0, boundary};
    return cut;
}
