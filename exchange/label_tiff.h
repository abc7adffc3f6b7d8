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
    [[nodiscard]] std::uint16_t label(int x, int y, int z) const noexcept;
    void set_label(int x, int y, int z, std::uint16_t label) noexcept;

    [[nodiscard]] std::string_view bytes() const noexcept;

private:
    [[nodiscard]] std::size_t place(int x, int y, int z) const noexcept;
    void write_directory(int z);

    int _width;
    int _height;
    int _planes;
    std::vector<unsigned char> _bytes;
};
