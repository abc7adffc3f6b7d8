// ORV_pos.h - positions in a recording and real vectors.
//
// x counts pixels to the right and y pixels downwards from the top-left pixel of
// an image, z counts focal planes, t time points. The classes are plain values.
#pragma once
#include <iosfwd>
#include <set>
#include <string>

// A pixel of an image.
class pos2i {
public:
    constexpr pos2i() noexcept = default;
    constexpr pos2i(int x, int y) noexcept : _x(x), _y(y) {}

    [[nodiscard]] constexpr int x() const noexcept { return _x; }
    [[nodiscard]] constexpr int y() const noexcept { return _y; }
    [[nodiscard]] double size() const noexcept;    // Euclidean length, over x and y

    [[nodiscard]] constexpr bool operator==(pos2i o) const noexcept { return _x == o._x && _y == o._y; }
    [[nodiscard]] constexpr pos2i operator+(pos2i o) const noexcept { return {_x + o._x, _y + o._y}; }
    [[nodiscard]] constexpr pos2i operator-(pos2i o) const noexcept { return {_x - o._x, _y - o._y}; }
    [[nodiscard]] constexpr pos2i operator*(int k) const noexcept { return {_x * k, _y * k}; }
    [[nodiscard]] constexpr pos2i operator/(int k) const noexcept { return {_x / k, _y / k}; }

protected:
    int _x = 0;
    int _y = 0;
};

// A pixel of a focal plane.
class pos3i : public pos2i {
public:
    constexpr pos3i() noexcept = default;
    constexpr pos3i(int x, int y, int z) noexcept : pos2i(x, y), _z(z) {}

    [[nodiscard]] constexpr int z() const noexcept { return _z; }
    [[nodiscard]] double size() const noexcept;    // over x, y and z

    [[nodiscard]] constexpr bool operator==(pos3i o) const noexcept
    {
        return pos2i::operator==(o) && _z == o._z;
    }
    [[nodiscard]] constexpr pos3i operator+(pos3i o) const noexcept
    {
        return {_x + o._x, _y + o._y, _z + o._z};
    }
    [[nodiscard]] constexpr pos3i operator-(pos3i o) const noexcept
    {
        return {_x - o._x, _y - o._y, _z - o._z};
    }
    [[nodiscard]] constexpr pos3i operator*(int k) const noexcept { return {_x * k, _y * k, _z * k}; }
    [[nodiscard]] constexpr pos3i operator/(int k) const noexcept { return {_x / k, _y / k, _z / k}; }

protected:
    int _z = 0;
};

// A pixel of a focal plane at a time point.
class pos4i : public pos3i {
public:
    constexpr pos4i() noexcept = default;
    constexpr pos4i(int x, int y, int z, int t) noexcept : pos3i(x, y, z), _t(t) {}

    [[nodiscard]] constexpr int t() const noexcept { return _t; }
    [[nodiscard]] double size() const noexcept;    // over x, y, z and t

    [[nodiscard]] constexpr bool operator==(pos4i o) const noexcept
    {
        return pos3i::operator==(o) && _t == o._t;
    }
    [[nodiscard]] constexpr pos4i operator+(pos4i o) const noexcept
    {
        return {_x + o._x, _y + o._y, _z + o._z, _t + o._t};
    }
    [[nodiscard]] constexpr pos4i operator-(pos4i o) const noexcept
    {
        return {_x - o._x, _y - o._y, _z - o._z, _t - o._t};
    }
    [[nodiscard]] constexpr pos4i operator*(int k) const noexcept { return {_x * k, _y * k, _z * k, _t * k}; }
    [[nodiscard]] constexpr pos4i operator/(int k) const noexcept { return {_x / k, _y / k, _z / k, _t / k}; }

protected:
    int _t = 0;
};

// A real vector in an image. Division by zero follows IEEE arithmetic, here and
// in pos3d: the result holds infinities or not-a-number values.
class pos2d {
public:
    constexpr pos2d() noexcept = default;
    constexpr pos2d(double x, double y) noexcept : _x(x), _y(y) {}

    [[nodiscard]] constexpr double x() const noexcept { return _x; }
    [[nodiscard]] constexpr double y() const noexcept { return _y; }
    [[nodiscard]] double size() const noexcept;    // Euclidean length

    [[nodiscard]] constexpr pos2d operator+(pos2d o) const noexcept { return {_x + o._x, _y + o._y}; }
    [[nodiscard]] constexpr pos2d operator-(pos2d o) const noexcept { return {_x - o._x, _y - o._y}; }
    [[nodiscard]] constexpr pos2d operator*(double k) const noexcept { return {_x * k, _y * k}; }
    [[nodiscard]] constexpr pos2d operator/(double k) const noexcept { return {_x / k, _y / k}; }

protected:
    double _x = 0;
    double _y = 0;
};

// A real vector in space.
class pos3d : public pos2d {
public:
    constexpr pos3d() noexcept = default;
    constexpr pos3d(double x, double y, double z) noexcept : pos2d(x, y), _z(z) {}

    [[nodiscard]] constexpr double z() const noexcept { return _z; }
    [[nodiscard]] double size() const noexcept;    // Euclidean length

    [[nodiscard]] constexpr pos3d operator+(pos3d o) const noexcept
    {
        return {_x + o._x, _y + o._y, _z + o._z};
    }
    [[nodiscard]] constexpr pos3d operator-(pos3d o) const noexcept
    {
        return {_x - o._x, _y - o._y, _z - o._z};
    }
    [[nodiscard]] constexpr pos3d operator*(double k) const noexcept { return {_x * k, _y * k, _z * k}; }
    [[nodiscard]] constexpr pos3d operator/(double k) const noexcept { return {_x / k, _y / k, _z / k}; }

protected:
    double _z = 0;
};

// The dot product, summed from x to z.
[[nodiscard]] double inner_product(pos3d a, pos3d b);

// False when a coordinate is infinite or not a number, as after a division by zero.
[[nodiscard]] bool is_finite(pos3d v) noexcept;

// Writes "x y z" in the stream's own format for doubles.
std::ostream& operator<<(std::ostream& out, pos3d v);

// Writes the keys in ascending order, separated by single blanks.
std::ostream& operator<<(std::ostream& out, std::set<std::string> keys);
