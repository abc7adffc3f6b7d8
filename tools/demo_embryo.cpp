#include "demo_embryo.h"

#include "demo_random.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr int cycle = 25;           // time points between two divisions, roughly
constexpr int substeps = 8;         // of the movement from one time point to the next
constexpr double settling = 1.5;    // the first ones spread further
constexpr double embrace = 0.93;    // what is left of it in a contact

double component(pos3d v, int axis) { return axis == 0 ? v.x() : axis == 1 ? v.y() : v.z(); }

pos3d scaled(pos3d v, pos3d by) { return {v.x() * by.x(), v.y() * by.y(), v.z() * by.z()}; }

pos3d random_normal(demo_random& random)
{
    const double x = random.normal();
    const double y = random.normal();
    return {x, y, random.normal()};
}

pos3d random_in_ball(demo_random& random)
{
    for (;;) {
        const double x = random.uniform(-1, 1);
        const double y = random.uniform(-1, 1);
        const pos3d p(x, y, random.uniform(-1, 1));
        if (p.size() < 1)
            return p;
    }
}

// A nucleus in the making: what moves it and what it is about to do.
struct cell {
    int label = 0;
    pos3d position;
    pos3d drift;             // own movement per time point
    double size = 1;         // of the radius that all nuclei of a time point share; grows after a division
    double full_size = 1;    // what it grows to
    double aspect = 1;       // rx to ry
    double angle = 0;
    double tilt = 0;
    double brightness = 1;
    double divides_after = 0;    // the smallest divides next
    int partner = 0;             // label of the nucleus that it is drawn to, 0: none
    int partner_until = 0;
    bool touching = false;    // has met its partner; kept by the one with the smaller label
    int last = -1;            // its last time point once that is known: it is dividing
};

class simulation {
public:
    explicit simulation(const demo_options& options)
        : _options(options), _crowding(options.crowding), _space(space_of(options)), _random(options.seed, 1)
    {
    }

    demo_embryo run()
    {
        settle_first_nuclei();
        for (_t = 0;; ++_t) {
            record();
            if (_t == _options.time_points - 1)
                return finished();
            end_contacts();
            choose_dividing();
            draw_neighbours_together();
            divide();
            move();
            start_contacts();
        }
    }

private:
    // ---- numbers and sizes

    [[nodiscard]] int first_count() const
    {
        const double cycles = static_cast<double>(_options.time_points) / cycle;
        const int most =
            _options.nuclei > 1 && _options.time_points > 3 ? _options.nuclei - 1 : _options.nuclei;
        return std::clamp(static_cast<int>(_options.nuclei / std::exp2(cycles)), 1, most);
    }

    [[nodiscard]] double wanted_count(int t) const
    {
        const double progress = _options.time_points > 1 ? t / (_options.time_points - 1.0) : 1;
        return first_count() *
               std::pow(static_cast<double>(_options.nuclei) / first_count(), std::min(progress, 1.0));
    }

    // Nuclei shrink as the same volume is shared by more of them.
    [[nodiscard]] double shared_radius() const
    {
        const pos3d a = _space.semi_axes;
        const double volume = 4.0 / 3 * std::numbers::pi * a.x() * a.y() * a.z();
        const double most = std::min(28.0, 0.45 * std::min(a.x(), a.y()));
        return std::min(most, std::max(5.0, _crowding.filling * std::cbrt(volume / wanted_count(_t))));
    }

    [[nodiscard]] demo_nucleus shape(const cell& c) const
    {
        const bool condensed = _crowding.condensed && c.last == _t;    // chromosomes: small, long and bright
        const double r = shared_radius() * c.size;
        demo_nucleus n;
        n.label = c.label;
        n.centre = c.position;
        n.rx = r * std::sqrt(c.aspect) * (condensed ? 1.15 : 1);
        n.ry = r / std::sqrt(c.aspect) * (condensed ? 0.75 : 1);
        n.rz = r * (condensed ? 0.75 : 0.88);
        n.cos_angle = std::cos(c.angle);
        n.sin_angle = std::sin(c.angle);
        n.cos_tilt = std::cos(c.tilt);
        n.sin_tilt = std::sin(c.tilt);
        n.brightness = c.brightness * (condensed ? 1.35 : 1);
        return n;
    }

    [[nodiscard]] cell new_cell(pos3d position)
    {
        cell c;
        c.label = static_cast<int>(_embryo.tracks.size()) + 1;
        c.position = position;
        c.full_size = _random.uniform(0.9, 1.08);
        c.size = c.full_size;
        c.aspect = _random.uniform(1, _crowding.longest);
        c.angle = _random.uniform(0, std::numbers::pi);
        if (_crowding.tilt > 0)    // without it, embryos stay what they were
            c.tilt = _random.uniform(-_crowding.tilt, _crowding.tilt);
        c.brightness = _random.uniform(0.7, 1.05);
        c.divides_after = _t + cycle * _random.uniform(0.7, 1.3);
        return c;
    }

    void add(const cell& c, int first, int parent)
    {
        _cells.push_back(c);
        _embryo.tracks.push_back({c.label, first, first, parent});
    }

    void settle_first_nuclei()
    {
        for (int i = first_count(); i > 0; --i) {
            cell c = new_cell(_space.centre + scaled(random_in_ball(_random), _space.semi_axes) * 0.9);
            c.divides_after = cycle * _random.uniform();
            add(c, 0, 0);
        }
        for (int i = 0; i < 200; ++i)
            keep_apart(settling);
    }

    void record()
    {
        auto& frame = _embryo.nuclei.emplace_back();
        for (const cell& c : _cells)
            frame.push_back(shape(c));
    }

    [[nodiscard]] demo_embryo finished()
    {
        for (const cell& c : _cells)
            _embryo.tracks[c.label - 1].last = _t;
        for (demo_contact& c : _embryo.contacts)
            c.last = std::min(c.last, _t);
        return std::move(_embryo);
    }

    [[nodiscard]] cell* find(int label)
    {
        const auto found =
            std::find_if(_cells.begin(), _cells.end(), [=](const cell& c) { return c.label == label; });
        return found == _cells.end() ? nullptr : &*found;
    }

    // ---- division

    // Those that condense at the next time point, so many that the one after has its number.
    void choose_dividing()
    {
        if (_t + 2 >= _options.time_points)
            return;
        const auto dividing =
            std::count_if(_cells.begin(), _cells.end(), [](const cell& c) { return c.last >= 0; });
        const int missing =
            static_cast<int>(std::lround(wanted_count(_t + 2)) - std::ssize(_cells) - dividing);
        for (int i = 0; i < missing; ++i) {
            cell* next = nullptr;
            for (cell& c : _cells)
                if (c.last < 0 && !c.partner && (!next || c.divides_after < next->divides_after))
                    next = &c;
            if (!next)
                return;
            next->last = _t + 1;
        }
    }

    void divide()
    {
        std::vector<cell> dividing;
        const auto is_due = [this](const cell& c) { return c.last == _t; };
        std::copy_if(_cells.begin(), _cells.end(), std::back_inserter(dividing), is_due);
        std::erase_if(_cells, is_due);
        for (const cell& parent : dividing) {
            _embryo.tracks[parent.label - 1].last = _t;
            // Along the parent's short axis, as the plate of chromosomes parts.
            const pos3d apart(-std::sin(parent.angle), std::cos(parent.angle), _random.uniform(-0.25, 0.25));
            for (const double side : {-0.5, 0.5}) {
                cell c = new_cell(parent.position + apart * (side * shared_radius()));
                c.size = _crowding.daughter * c.full_size;
                c.angle = parent.angle + _random.uniform(-0.2, 0.2);
                c.tilt = parent.tilt;
                c.drift = parent.drift;
                add(c, _t + 1, parent.label);
            }
        }
    }

    // ---- contacts

    [[nodiscard]] double gap(const cell& a, const cell& b) const
    {
        const pos3d d = b.position - a.position;
        return d.size() - touching_distance(shape(a), shape(b), d);
    }

    // Between the centres, when b lies in the direction d of a.
    [[nodiscard]] static double touching_distance(const demo_nucleus& a, const demo_nucleus& b, pos3d d)
    {
        const double length = std::max(d.size(), 1e-9);
        return length / a.in_own_axes(d).size() + length / b.in_own_axes(d).size();
    }

    void draw_neighbours_together()
    {
        for (cell& c : _cells) {
            const bool wants = _random.chance(_options.joined_rate);
            if (!wants || c.partner || c.last >= 0)
                continue;
            cell* other = nearest_beside(c);
            if (!other)
                continue;
            c.partner = other->label;
            other->partner = c.label;
            c.partner_until = other->partner_until = _t + 5;
        }
    }

    // The closest free neighbour that lies beside c, not above or below it, and is still apart, where nuclei
    // keep apart.
    [[nodiscard]] cell* nearest_beside(const cell& c)
    {
        cell* nearest = nullptr;
        double least = 0.9 * shared_radius();
        const bool may_touch = _crowding.clearance <= 1;
        for (cell& other : _cells) {
            if (other.label == c.label || other.partner || other.last >= 0)
                continue;
            const pos3d d = other.position - c.position;
            const double g = gap(c, other);
            if (std::abs(d.z()) > 0.35 * d.size() || (g <= 0 && !may_touch) || g >= least)
                continue;
            least = g;
            nearest = &other;
        }
        return nearest;
    }

    // At the time point that comes next.
    void start_contacts()
    {
        for (cell& c : _cells) {
            cell* other = c.partner > c.label ? find(c.partner) : nullptr;
            if (!other || c.touching || gap(c, *other) > 0)
                continue;
            const int last = _t + 1 + _random.below(3);
            _embryo.contacts.push_back({c.label, other->label, _t + 1, last});
            c.touching = true;
            c.partner_until = other->partner_until = last;
        }
    }

    void end_contacts()
    {
        for (cell& c : _cells) {
            if (c.partner_until > _t)
                continue;
            c.partner = 0;
            c.touching = false;
        }
    }

    // ---- movement

    void move()
    {
        const double r = shared_radius();
        for (cell& c : _cells) {
            c.drift = c.drift * 0.85 + random_normal(_random) * (_crowding.motion * r);
            c.size += (c.full_size - c.size) * 0.25;
            c.angle += 0.04 * _random.normal();
        }
        std::vector<pos3d> before;
        for (const cell& c : _cells)
            before.push_back(c.position);
        for (int i = 0; i < substeps; ++i) {
            for (cell& c : _cells)
                c.position = c.position + (c.drift + flow(c.position)) / substeps;
            keep_apart(_crowding.clearance);
        }
        // Detections of successive time points must still overlap.
        for (std::size_t i = 0; i < _cells.size(); ++i) {
            const pos3d way = _cells[i].position - before[i];
            const double most = _crowding.farthest * r;
            if (way.size() > most)
                _cells[i].position = before[i] + way * (most / way.size());
        }
    }

    // All nuclei turn about the embryo's axis, the inner ones further, and roll from top to bottom at its
    // rim.
    [[nodiscard]] pos3d flow(pos3d p) const
    {
        const pos3d d = p - _space.centre;
        const double rho = d.x() / _space.semi_axes.x();
        const double turn = 0.018 * (1 - 0.5 * rho * rho);
        return {-turn * d.y(), turn * d.x(), 0.6 * rho};
    }

    // Pushes neighbours apart, draws partners together and everything into the embryo.
    void keep_apart(double apart)
    {
        std::vector<demo_nucleus> shapes;
        for (const cell& c : _cells)
            shapes.push_back(shape(c));
        std::vector<pos3d> push(_cells.size());
        for (std::size_t i = 0; i < _cells.size(); ++i)
            for (std::size_t j = i + 1; j < _cells.size(); ++j) {
                const pos3d p = separation(i, j, shapes, apart);
                push[i] = push[i] - p;
                push[j] = push[j] + p;
            }
        for (std::size_t i = 0; i < _cells.size(); ++i)
            _cells[i].position = inside(_cells[i].position + push[i]);
    }

    // What moves cell j away from cell i.
    [[nodiscard]] pos3d separation(std::size_t i, std::size_t j, const std::vector<demo_nucleus>& shapes,
                                   double apart) const
    {
        const pos3d d = _cells[j].position - _cells[i].position;
        const bool partners = _cells[i].partner == _cells[j].label;
        if (!partners && d.size() > 4 * std::max(shapes[i].rx, shapes[j].rx))
            return {};
        const double distance = std::max(d.size(), 1e-3);
        const double touching = touching_distance(shapes[i], shapes[j], d);
        if (partners)
            return d * ((embrace * touching - distance) * 0.12 / distance);
        // One above the other, two nuclei share no plane, and blur would join them all the same.
        const double steep = d.z() / distance;
        const double wanted = touching * apart * (1 + _crowding.above * steep * steep);
        return distance < wanted ? d * ((wanted - distance) * 0.15 / distance) : pos3d{};
    }

    [[nodiscard]] pos3d inside(pos3d p) const
    {
        const double r = shared_radius();
        const pos3d d = p - _space.centre;
        const auto part = [&](int axis) {
            return component(d, axis) / std::max(component(_space.semi_axes, axis) - r, 1.0);
        };
        const double rho = pos3d(part(0), part(1), part(2)).size();
        return rho > 1 ? _space.centre + d / rho : p;
    }

    const demo_options& _options;
    const demo_crowding& _crowding;
    demo_space _space;
    demo_random _random;
    demo_embryo _embryo;
    std::vector<cell> _cells;    // ascending by label
    int _t = 0;
};

}    // namespace

demo_embryo grow_embryo(const demo_options& options) { return simulation(options).run(); }
