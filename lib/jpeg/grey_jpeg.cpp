#include "grey_jpeg.h"

#include <cstdio>    // jpeglib.h needs FILE and size_t
#include <cstdlib>
#include <fstream>

#include <jpeglib.h>

std::vector<unsigned char> grey_jpeg(const std::vector<unsigned char>& pixels, int width, int height,
                                     int quality)
{
    jpeg_compress_struct jpeg;
    jpeg_error_mgr errors;
    // Written to memory, nothing but the end of memory can fail: the library then
    // says so on standard error and ends the program.
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &bytes, &size);
    jpeg.image_width = static_cast<JDIMENSION>(width);
    jpeg.image_height = static_cast<JDIMENSION>(height);
    jpeg.input_components = 1;
    jpeg.in_color_space = JCS_GRAYSCALE;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, quality, TRUE);
    jpeg_start_compress(&jpeg, TRUE);
    while (jpeg.next_scanline < jpeg.image_height) {
        // The library takes rows it only reads as pointers to non-const.
        JSAMPROW row = const_cast<JSAMPROW>(&pixels[static_cast<std::size_t>(jpeg.next_scanline) * width]);
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    std::vector<unsigned char> file(bytes, bytes + size);
    jpeg_destroy_compress(&jpeg);
    std::free(bytes);
    return file;
}

std::optional<jpeg_size> size_of_jpeg(const std::string& filename)
{
    std::ifstream file(filename, std::ios::binary);
    if (file.get() != 0xff || file.get() != 0xd8)
        return std::nullopt;
    const auto two_bytes = [&file] {
        const int high = file.get();
        return high * 256 + file.get();
    };
    while (file.get() == 0xff) {
        const int marker = file.get();
        const int length = two_bytes();
        // The frames begin with c0 to cf, but for three tables among them.
        const bool is_frame =
            marker >= 0xc0 && marker <= 0xcf && marker != 0xc4 && marker != 0xc8 && marker != 0xcc;
        if (is_frame) {
            file.get();    // bits
            const int height = two_bytes();
            const int width = two_bytes();
            return file ? std::optional(jpeg_size{width, height}) : std::nullopt;
        }
        file.ignore(length - 2);
    }
    return std::nullopt;
}
