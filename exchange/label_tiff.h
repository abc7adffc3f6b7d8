// label_tiff.h - a stack of 16-bit labels in memory, in the bytes of a TIFF file: little endian, not
// compressed, a page a plane.
#pragma once
#include <cstdint>
#include <string_view>
#include <vector>

class label_tiff {
public:
    // False when a file of this size is none that TIFF can tell: its places are numbers of 32 bits.
    [[nodiscard]] static bool is_possible(int width, int height, int planes) noexcept;

    // All labels 0. REQUIRES: is_possible()
    label_tiff(int width, int height, int planes);

    [[nodiscard]] int width() const noexcept { return _width; }
    [[nodiscard]] int height() const noexcept { return _height; }
    [[nodiscard]] int planes() const noexcept { return _planes; }

    // REQUIRES: within the stack
    [[nodiscard]] std::uint16_t label(int x, int y, int z) const noexcept
    {
        const std::size_t at = place(x, y, z);
        return static_cast<std::uint16_t>(_bytes[at] | _bytes[at + 1] << 8);
    }
    void set_label(int x, int y, int z, std::uint16_t label) noexcept
    {
        const std::size_t at = place(x, y, z);
        _bytes[at] = static_cast<unsigned char>(label);
        _bytes[at + 1] = static_cast<unsigned char>(label >> 8);
    }

    [[nodiscard]] std::string_view bytes() const noexcept;

private:
    // The file begins with 8 bytes; each page is its pixels and then its directory.
    static constexpr std::size_t header_bytes = 8;
    static constexpr int tags = 10;
    static constexpr std::size_t directory_bytes = 2 + tags * 12 + 4;
    static constexpr std::size_t page_bytes(std::size_t pixel_bytes) { return pixel_bytes + directory_bytes; }

    [[nodiscard]] std::size_t place(int x, int y, int z) const noexcept
    {
        const auto width = static_cast<std::size_t>(_width);
        return header_bytes +
               page_bytes(2 * width * static_cast<std::size_t>(_height)) * static_cast<std::size_t>(z) +
               2 * (static_cast<std::size_t>(y) * width + static_cast<std::size_t>(x));
    }
    void write_directory(int z);

    int _width;
    int _height;
    int _planes;
    std::vector<unsigned char> _bytes;
};
