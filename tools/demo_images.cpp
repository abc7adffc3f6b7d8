#include "demo_images.h"

#include "demo_random.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr std::size_t noise_size = 1 << 16;
constexpr int texture_size = 32;    // in each direction, in pixel widths times texture_step
constexpr double texture_step = 2;

// Grey levels
constexpr float dark_level = 12;
constexpr float haze_level = 24;
constexpr float nucleus_level = 140;
constexpr float glow_share = 0.2f;    // of a nucleus's light that spreads to where it is out of focus
constexpr float read_noise = 3;
constexpr float shot_noise = 0.35f;    // variance per grey level

// The blur along z is much the longer one.
constexpr double blur_z = 5;
constexpr double reach = 2;    // of the glow, in semi-axes

float smooth_step(double x)
{
    const double c = std::clamp(x, 0.0, 1.0);
    return static_cast<float>(c * c * (3 - 2 * c));
}

std::size_t texture_index(int x, int y, int z)
{
    const auto wrapped = [](int i) { return static_cast<std::size_t>(i & (texture_size - 1)); };
    return (wrapped(z) * texture_size + wrapped(y)) * texture_size + wrapped(x);
}

// The mean with both neighbours along one axis.
std::vector<float> smoothed(const std::vector<float>& from, int dx, int dy, int dz)
{
    std::vector<float> to(from.size());
    for (int z = 0; z < texture_size; ++z)
        for (int y = 0; y < texture_size; ++y)
            for (int x = 0; x < texture_size; ++x)
                to[texture_index(x, y, z)] = 0.5f * from[texture_index(x, y, z)] +
                                             0.25f * (from[texture_index(x - dx, y - dy, z - dz)] +
                                                      from[texture_index(x + dx, y + dy, z + dz)]);
    return to;
}

std::vector<float> normal_values(demo_random random, std::size_t count)
{
    std::vector<float> values(count);
    for (float& v : values)
        v = static_cast<float>(random.normal());
    return values;
}

std::vector<float> smooth_texture(std::uint64_t seed)
{
    auto texture = normal_values(demo_random(seed, 3), texture_size * texture_size * texture_size);
    for (int i = 0; i < 3; ++i) {
        texture = smoothed(texture, 1, 0, 0);
        texture = smoothed(texture, 0, 1, 0);
        texture = smoothed(texture, 0, 0, 1);
    }
    double square = 0;
    for (const float v : texture)
        square += static_cast<double>(v) * v;
    const double deviation = std::sqrt(square / static_cast<double>(texture.size()));
    for (float& v : texture)
        v = static_cast<float>(std::clamp(1 + 0.17 * v / deviation, 0.4, 1.6));
    return texture;
}

}    // namespace

demo_painter::demo_painter(const demo_embryo& embryo, const demo_options& options)
    : _embryo(embryo), _options(options), _noise(normal_values(demo_random(options.seed, 4), noise_size)),
      _texture(smooth_texture(options.seed))
{
}

std::vector<unsigned char> demo_painter::paint(int t, int z) const
{
    std::vector<float> light(static_cast<std::size_t>(_options.width) * _options.height, dark_level);
    add_haze(light, z);
    for (const demo_nucleus& n : _embryo.nuclei[t])
        add_nucleus(light, n, z);
    return exposed(light, t, z);
}

// Cytoplasm scatters light, the more the nearer to the embryo's middle.
void demo_painter::add_haze(std::vector<float>& light, int z) const
{
    const demo_space space = space_of(_options);
    const double dz = (z * focal_plane_step - space.centre.z()) / (1.15 * space.semi_axes.z());
    float* pixel = light.data();
    for (int y = 0; y < _options.height; ++y) {
        const double dy = (y - space.centre.y()) / (1.1 * space.semi_axes.y());
        const float row = static_cast<float>(1.1 - dz * dz - dy * dy);
        const float scale = static_cast<float>(1 / (1.1 * space.semi_axes.x()));
        const float left = static_cast<float>(-space.centre.x()) * scale;
        for (int x = 0; x < _options.width; ++x, ++pixel) {
            const float dx = left + static_cast<float>(x) * scale;
            *pixel += haze_level * std::max(0.0f, row - dx * dx);
        }
    }
}

void demo_painter::add_nucleus(std::vector<float>& light, const demo_nucleus& n, int z) const
{
    const double dz = z * focal_plane_step - n.centre.z();
    demo_nucleus blurred = n;
    blurred.rz = std::hypot(n.rz, blur_z);
    if (std::abs(dz) >= reach * blurred.half_height())
        return;
    const double radius = reach * std::max(n.rx, n.ry);
    const int left = std::max(0, static_cast<int>(n.centre.x() - radius));
    const int right = std::min(_options.width, static_cast<int>(n.centre.x() + radius) + 1);
    const int top = std::max(0, static_cast<int>(n.centre.y() - radius));
    const int bottom = std::min(_options.height, static_cast<int>(n.centre.y() + radius) + 1);
    // Light from deeper planes is scattered on its way.
    const double depth = std::exp(-0.45 * z / _options.planes);
    const float level = nucleus_level * static_cast<float>(n.brightness * depth);
    const double edge = 3.5 / std::min(n.rx, n.ry);    // the lateral blur as a share of the radius
    for (int y = top; y < bottom; ++y)
        for (int x = left; x < right; ++x) {
            const pos3d offset(x - n.centre.x(), y - n.centre.y(), dz);
            const double rho = blurred.in_own_axes(offset).size();
            if (rho >= reach)
                continue;
            const float body = smooth_step((1 + edge - rho) / (2 * edge));
            const float glow = glow_share * smooth_step((reach - rho) / reach);
            float& pixel = light[static_cast<std::size_t>(y) * _options.width + x];
            pixel += level * (glow + (body > 0 ? body * texture(n.label, offset) : 0));
        }
}

// Chromatin: denser here and there, and moving along with its nucleus.
float demo_painter::texture(int label, pos3d offset) const noexcept
{
    const double u = offset.x() / texture_step;
    const double v = offset.y() / texture_step;
    const int x = static_cast<int>(std::floor(u)) + 7 * label;
    const int y = static_cast<int>(std::floor(v)) + 13 * label;
    const int z = static_cast<int>(std::floor(offset.z() / texture_step)) + 5 * label;
    const float du = static_cast<float>(u - std::floor(u));
    const float dv = static_cast<float>(v - std::floor(v));
    const auto between = [&](int row) {
        return (1 - du) * _texture[texture_index(x, row, z)] + du * _texture[texture_index(x + 1, row, z)];
    };
    return (1 - dv) * between(y) + dv * between(y + 1);
}

std::vector<unsigned char> demo_painter::exposed(const std::vector<float>& light, int t, int z) const
{
    demo_random random(_options.seed, 5, t, z);
    std::vector<unsigned char> grey(light.size());
    for (int y = 0; y < _options.height; ++y) {
        const std::size_t first = static_cast<std::size_t>(y) * _options.width;
        const float* noise = &_noise[random.bits() % (noise_size - _options.width)];
        for (int x = 0; x < _options.width; ++x) {
            const float v = light[first + x];
            const float noisy = v + noise[x] * std::sqrt(read_noise * read_noise + shot_noise * v);
            grey[first + x] = static_cast<unsigned char>(std::clamp(noisy, 0.0f, 255.0f));
        }
    }
    return grey;
}
