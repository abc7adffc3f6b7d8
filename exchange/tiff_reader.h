// tiff_reader.h - the pages of a TIFF file, one after the other, as labels or as grey values.
//
// Reads what has one number a pixel: 8, 16 or 32 bit, signed, unsigned or 32-bit floating point, strips or
// tiles, either byte order, and whatever compression the TIFF library knows.
#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

// Row by row, width * height of them.
template <class Value>
struct image_page {
    int width = 0;
    int height = 0;
    std::vector<Value> pixels = {};
};

// Of 16 bits where the file has no more: most have not, and half as many bytes are half the work.
using label_page = std::variant<image_page<std::uint16_t>, image_page<std::uint32_t>>;
using grey_page = image_page<float>;

class tiff_reader {
public:
    // The largest page, in pixels: more is taken for a damaged file.
    static constexpr long long most_pixels = 1LL << 26;

    explicit tiff_reader(std::string filename);
    ~tiff_reader();
    tiff_reader(const tiff_reader&) = delete;
    tiff_reader& operator=(const tiff_reader&) = delete;

    // Reads the next page. False at the end of the file and when something is wrong: then fault() tells what.
    // Labels are whole numbers from 0 to 4,294,967,295.
    [[nodiscard]] bool next(label_page& page);
    [[nodiscard]] bool next(grey_page& page);

    // Goes past the next page; as next() for what is wrong with the file, not with the pixels.
    [[nodiscard]] bool skip();

    // One line, with the name of the file, or empty.
    [[nodiscard]] const std::string& fault() const noexcept { return _fault; }

    // The values of the page read last have more than 16 bits, or are no whole numbers.
    [[nodiscard]] bool is_wide() const noexcept { return _is_wide; }

private:
    struct library;    // what the TIFF library keeps
    struct layout;

    bool refuse(const std::string& why);
    [[nodiscard]] bool advance();
    [[nodiscard]] bool read_layout(layout& found);
    [[nodiscard]] bool next_layout(layout& found);
    [[nodiscard]] bool read_bytes(const layout& l, unsigned char* to);
    [[nodiscard]] bool read_strips(const layout& l, unsigned char* to);
    [[nodiscard]] bool read_tiles(const layout& l, unsigned char* to);
    template <class Sample, class Value>
    [[nodiscard]] bool read_samples(const layout& l, std::vector<Value>& to);
    template <class Sample, class Value>
    [[nodiscard]] bool convert(std::vector<Value>& to);
    template <class Value>
    [[nodiscard]] bool read(const layout& l, image_page<Value>& page);

    std::string _filename;
    std::unique_ptr<library> _library;
    std::vector<unsigned char> _raw;    // a page as the file has it, where its values are of another kind
    std::string _fault;
    int _page = 0;    // of the one read last, from 1
    bool _is_wide = false;
};
