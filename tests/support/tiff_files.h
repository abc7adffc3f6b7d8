// tiff_files.h - TIFF files of all kinds for tests, written by the TIFF library.
#pragma once
#include <cstdint>
#include <cstring>
#include <string>
#include <tiffio.h>
#include <vector>

struct tiff_kind {
    const char* mode = "w";    // "wb" big-endian, "w8" BigTIFF
    int bits = 16;
    int format = SAMPLEFORMAT_UINT;
    int compression = COMPRESSION_NONE;
    int tile = 0;              // side, or 0 for strips
    int rows_per_strip = 5;    // as ImageJ never does and others do
    const char* description = nullptr;
};

// Row by row, pages of width x height one after the other.
inline void write_tiff(const std::string& filename, const std::vector<std::uint32_t>& pixels, int width,
                       int height, const tiff_kind& kind = {})
{
    TIFF* const file = TIFFOpen(filename.c_str(), kind.mode);
    const auto sample = [&kind](std::uint32_t value, unsigned char* to) {
        const auto narrow = static_cast<std::uint16_t>(value);
        const auto real = static_cast<float>(value);
        if (kind.format == SAMPLEFORMAT_IEEEFP)
            std::memcpy(to, &real, 4);
        else if (kind.bits == 16)
            std::memcpy(to, &narrow, 2);
        else if (kind.bits == 32)
            std::memcpy(to, &value, 4);
        else
            *to = static_cast<unsigned char>(value);
    };
    const int bytes = kind.bits / 8;
    const std::size_t size = static_cast<std::size_t>(width) * height;
    for (std::size_t page = 0; page * size < pixels.size(); ++page) {
        TIFFSetField(file, TIFFTAG_IMAGEWIDTH, width);
        TIFFSetField(file, TIFFTAG_IMAGELENGTH, height);
        TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, kind.bits);
        TIFFSetField(file, TIFFTAG_SAMPLEFORMAT, kind.format);
        TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, 1);
        TIFFSetField(file, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
        TIFFSetField(file, TIFFTAG_COMPRESSION, kind.compression);
        if (kind.description && page == 0)
            TIFFSetField(file, TIFFTAG_IMAGEDESCRIPTION, kind.description);
        const int side_x = kind.tile ? kind.tile : width;
        const int side_y = kind.tile ? kind.tile : kind.rows_per_strip;
        if (kind.tile) {
            TIFFSetField(file, TIFFTAG_TILEWIDTH, side_x);
            TIFFSetField(file, TIFFTAG_TILELENGTH, side_y);
        } else {
            TIFFSetField(file, TIFFTAG_ROWSPERSTRIP, side_y);
        }
        std::uint32_t piece = 0;
        for (int top = 0; top < height; top += side_y)
            for (int left = 0; left < width; left += side_x, ++piece) {
                const int rows = kind.tile ? side_y : std::min(side_y, height - top);
                std::vector<unsigned char> block(static_cast<std::size_t>(side_x) * rows * bytes);
                for (int y = 0; y < rows && top + y < height; ++y)
                    for (int x = 0; x < side_x && left + x < width; ++x)
                        sample(pixels[page * size + static_cast<std::size_t>(top + y) * width + left + x],
                               &block[(static_cast<std::size_t>(y) * side_x + x) * bytes]);
                const auto length = static_cast<tmsize_t>(block.size());
                if (kind.tile)
                    TIFFWriteEncodedTile(file, piece, block.data(), length);
                else
                    TIFFWriteEncodedStrip(file, piece, block.data(), length);
            }
        TIFFWriteDirectory(file);
    }
    TIFFClose(file);
}
