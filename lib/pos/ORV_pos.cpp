#include "ORV_pos.h"

#include <cmath>
#include <ostream>

namespace {

double length(double x, double y, double z = 0, double t = 0) noexcept
{
    return std::sqrt(x * x + y * y + z * z + t * t);
}

}    // namespace

double pos2i::size() const noexcept { return length(_x, _y); }
double pos3i::size() const noexcept { return length(_x, _y, _z); }
double pos4i::size() const noexcept { return length(_x, _y, _z, _t); }
double pos2d::size() const noexcept { return length(_x, _y); }
double pos3d::size() const noexcept { return length(_x, _y, _z); }

double inner_product(pos3d a, pos3d b) { return (a.x() * b.x() + a.y() * b.y()) + a.z() * b.z(); }

bool is_finite(pos3d v) noexcept
{
    return std::isfinite(v.x()) && std::isfinite(v.y()) && std::isfinite(v.z());
}

std::ostream& operator<<(std::ostream& out, pos3d v) { return out << v.x() << ' ' << v.y() << ' ' << v.z(); }

std::ostream& operator<<(std::ostream& out, std::set<std::string> keys)
{
    const char* separator = "";
    for (const std::string& key : keys) {
        out << separator << key;
        separator = " ";
    }
    return out;
}
