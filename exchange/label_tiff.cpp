#include "label_tiff.h"

#include <cassert>

namespace {

std::size_t pixel_bytes(int width, int height)
{
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 2;
}

void put(unsigned char*& to, std::size_t value, int bytes)
{
    for (; bytes > 0; --bytes, value >>= 8)
        *to++ = static_cast<unsigned char>(value);
}

}    // namespace

bool label_tiff::is_possible(int width, int height, int planes) noexcept
{
    return header_bytes + page_bytes(pixel_bytes(width, height)) * static_cast<std::size_t>(planes) <
           0xffffffff;
}

label_tiff::label_tiff(int width, int height, int planes)
    : _width(width), _height(height), _planes(planes),
      _bytes(header_bytes + page_bytes(pixel_bytes(width, height)) * static_cast<std::size_t>(planes))
{
    assert(is_possible(width, height, planes));
    unsigned char* to = _bytes.data();
    put(to, 'I', 1);
    put(to, 'I', 1);
    put(to, 42, 2);
    put(to, header_bytes + pixel_bytes(width, height), 4);
    for (int z = 0; z < planes; ++z)
        write_directory(z);
}

void label_tiff::write_directory(int z)
{
    const std::size_t pixels = place(0, 0, z);
    const std::size_t size = pixel_bytes(_width, _height);
    const auto width = static_cast<std::size_t>(_width);
    const auto height = static_cast<std::size_t>(_height);
    constexpr int short_type = 3;
    constexpr int long_type = 4;
    const struct {
        int tag;
        int type;
        std::size_t value;
    } entries[tags] = {
        {256, long_type, width},  {257, long_type, height}, {258, short_type, 16},    // bits a pixel
        {259, short_type, 1},                                                         // not compressed
        {262, short_type, 1},                                                         // 0 is black
        {273, long_type, pixels},    // place of the one strip
        {277, short_type, 1},        // values a pixel
        {278, long_type, height},    // rows a strip
        {279, long_type, size},      // bytes of the strip
        {339, short_type, 1},        // not signed
    };
    unsigned char* to = &_bytes[pixels + size];
    put(to, tags, 2);
    for (const auto& e : entries) {
        put(to, static_cast<std::size_t>(e.tag), 2);
        put(to, static_cast<std::size_t>(e.type), 2);
        put(to, 1, 4);
        put(to, e.value, 4);
    }
    put(to, z + 1 < _planes ? place(0, 0, z + 1) + size : 0, 4);
}

std::string_view label_tiff::bytes() const noexcept
{
    return {reinterpret_cast<const char*>(_bytes.data()), _bytes.size()};
}
