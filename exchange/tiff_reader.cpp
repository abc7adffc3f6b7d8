#include "tiff_reader.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <limits>
#include <type_traits>
#include <utility>

#include <tiffio.h>

struct tiff_reader::library {
    TIFF* file = nullptr;
    std::string said;    // the first line of what the library says about it

    ~library()
    {
        if (file)
            TIFFClose(file);
    }
};

struct tiff_reader::layout {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint16_t bits = 1;
    std::uint16_t format = SAMPLEFORMAT_UINT;
    std::size_t row_bytes = 0;
};

namespace {

constexpr std::uint32_t largest_side = 65535;

int keep_message(TIFF*, void* said, const char*, const char* format, va_list values)
{
    char text[300];
    std::vsnprintf(text, sizeof text, format, values);
    std::string& kept = *static_cast<std::string*>(said);
    if (kept.empty())
        for (const char* c = text; *c && *c != '\n'; ++c)
            kept += *c < ' ' ? ' ' : *c;
    return 1;
}

int be_silent(TIFF*, void*, const char*, const char*, va_list) { return 1; }

TIFF* open_tiff(const std::string& filename, std::string& said)
{
    const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(TIFFOpenOptionsAlloc(),
                                                                                   &TIFFOpenOptionsFree);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), keep_message, &said);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), be_silent, nullptr);
    // What a damaged file asks for must not take all memory.
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), tmsize_t{tiff_reader::most_pixels} * 4);
    // m: a file that shrinks is an error, no signal; c: a strip is read in one go, not in pieces of 8 KB.
    return TIFFOpenExt(filename.c_str(), "rmc", options.get());
}

// The library takes a file that is cut behind the last entry of a directory for one that ends there.
bool directory_is_whole(TIFF* file, const std::string& filename)
{
    const bool is_big = TIFFIsBigTIFF(file);
    const int count_bytes = is_big ? 8 : 2;
    std::ifstream bytes(filename, std::ios::binary);
    bytes.seekg(static_cast<std::streamoff>(TIFFCurrentDirOffset(file)));
    std::uint64_t entries = 0;
    for (int i = 0; i < count_bytes; ++i) {
        const auto byte = static_cast<std::uint64_t>(bytes.get() & 0xff);
        entries = TIFFIsBigEndian(file) ? entries << 8 | byte : entries | byte << 8 * i;
    }
    bytes.ignore(static_cast<std::streamsize>(entries * (is_big ? 20 : 12) + (is_big ? 8 : 4) - 1));
    return bytes.get() != std::ifstream::traits_type::eof();
}

// The page as one of this kind, whose memory is used again when it is one already.
template <class Label>
image_page<Label>& page_of(label_page& page)
{
    if (auto* const same = std::get_if<image_page<Label>>(&page))
        return *same;
    return page.emplace<image_page<Label>>();
}

template <class Value, class Sample>
bool fits(Sample sample)
{
    if constexpr (std::is_floating_point_v<Value>)
        return std::isfinite(static_cast<float>(sample));
    else if constexpr (std::is_floating_point_v<Sample>)
        return sample >= 0 && sample < 4294967296.f && sample == std::floor(sample);
    else
        return sample >= 0;
}

}    // namespace

tiff_reader::tiff_reader(std::string filename)
    : _filename(std::move(filename)), _library(std::make_unique<library>())
{
    _library->file = open_tiff(_filename, _library->said);
    if (!_library->file)
        refuse("cannot be read as TIFF");
}

tiff_reader::~tiff_reader() = default;

bool tiff_reader::refuse(const std::string& why)
{
    _fault = _filename + ": " + (_page > 0 ? "page " + std::to_string(_page) + ": " : "") + why;
    if (!_library->said.empty())
        _fault += " (" + _library->said + ")";
    return false;
}

// The library answers the same for the end of a file and for a directory that it cannot read.
bool tiff_reader::advance()
{
    if (!_fault.empty())
        return false;
    if (_page > 0 && TIFFLastDirectory(_library->file))
        return directory_is_whole(_library->file, _filename) ? false : refuse("cannot be read to its end");
    ++_page;
    return _page == 1 || TIFFReadDirectory(_library->file) || refuse("cannot be read");
}

bool tiff_reader::read_layout(layout& found)
{
    TIFF* const file = _library->file;
    std::uint16_t samples = 1;
    if (!TIFFGetField(file, TIFFTAG_IMAGEWIDTH, &found.width) ||
        !TIFFGetField(file, TIFFTAG_IMAGELENGTH, &found.height) || found.width == 0 || found.height == 0)
        return refuse("has no size");
    TIFFGetFieldDefaulted(file, TIFFTAG_SAMPLESPERPIXEL, &samples);
    TIFFGetFieldDefaulted(file, TIFFTAG_BITSPERSAMPLE, &found.bits);
    TIFFGetFieldDefaulted(file, TIFFTAG_SAMPLEFORMAT, &found.format);
    if (samples != 1)
        return refuse("has " + std::to_string(samples) + " values a pixel, where one is needed");
    if (found.width > largest_side || found.height > largest_side ||
        static_cast<long long>(found.width) * found.height > most_pixels)
        return refuse("is larger than can be read");
    if (found.format == SAMPLEFORMAT_VOID)
        found.format = SAMPLEFORMAT_UINT;
    const bool is_float = found.format == SAMPLEFORMAT_IEEEFP;
    const bool is_whole = found.format == SAMPLEFORMAT_UINT || found.format == SAMPLEFORMAT_INT;
    if (!(is_float && found.bits == 32) &&
        !(is_whole && (found.bits == 8 || found.bits == 16 || found.bits == 32)))
        return refuse("has values of " + std::to_string(found.bits) + " bits of a kind that is not read");
    found.row_bytes = static_cast<std::size_t>(found.width) * (found.bits / 8);
    return true;
}

bool tiff_reader::next_layout(layout& found)
{
    if (!advance() || !read_layout(found))
        return false;
    _is_wide = found.bits == 32;
    return true;
}

bool tiff_reader::read_bytes(const layout& l, unsigned char* to)
{
    return TIFFIsTiled(_library->file) ? read_tiles(l, to) : read_strips(l, to);
}

bool tiff_reader::read_strips(const layout& l, unsigned char* to)
{
    TIFF* const file = _library->file;
    std::uint32_t rows = l.height;
    TIFFGetFieldDefaulted(file, TIFFTAG_ROWSPERSTRIP, &rows);
    rows = std::min(std::max(rows, 1u), l.height);
    std::uint32_t strip = 0;
    for (std::uint32_t row = 0; row < l.height; row += rows, ++strip) {
        const auto bytes = static_cast<tmsize_t>(l.row_bytes * std::min(rows, l.height - row));
        if (TIFFReadEncodedStrip(file, strip, to + l.row_bytes * row, bytes) != bytes)
            return refuse("cannot be read to its end");
    }
    return true;
}

bool tiff_reader::read_tiles(const layout& l, unsigned char* to)
{
    TIFF* const file = _library->file;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    TIFFGetField(file, TIFFTAG_TILEWIDTH, &width);
    TIFFGetField(file, TIFFTAG_TILELENGTH, &height);
    const std::size_t pixel = l.bits / 8;
    const tmsize_t size = TIFFTileSize(file);
    if (width == 0 || height == 0 || size <= 0 || size > tmsize_t{most_pixels} * 4 ||
        static_cast<std::size_t>(size) < pixel * width * height)
        return refuse("has tiles that cannot be read");
    std::vector<unsigned char> tile(static_cast<std::size_t>(size));
    for (std::uint32_t y = 0; y < l.height; y += height)
        for (std::uint32_t x = 0; x < l.width; x += width) {
            if (TIFFReadTile(file, tile.data(), x, y, 0, 0) < 0)
                return refuse("cannot be read to its end");
            const std::size_t columns = std::min(width, l.width - x);
            for (std::uint32_t row = 0; row < std::min(height, l.height - y); ++row)
                std::memcpy(to + l.row_bytes * (y + row) + pixel * x, &tile[pixel * width * row],
                            pixel * columns);
        }
    return true;
}

template <class Sample, class Value>
bool tiff_reader::convert(std::vector<Value>& to)
{
    const std::size_t count = _raw.size() / sizeof(Sample);
    to.resize(count);
    bool all_fit = true;
    for (std::size_t i = 0; i < count; ++i) {
        Sample sample;
        std::memcpy(&sample, &_raw[i * sizeof sample], sizeof sample);
        if constexpr (std::is_signed_v<Sample>) {    // the others fit always
            const bool is_fit = fits<Value>(sample);
            all_fit &= is_fit;
            to[i] = is_fit ? static_cast<Value>(sample) : Value{};
        } else {
            to[i] = static_cast<Value>(sample);
        }
    }
    return all_fit || refuse(std::is_floating_point_v<Value> ? "has values that are no numbers"
                                                             : "has values that are no labels");
}

// Values that are wanted as the file has them go where they are wanted.
template <class Sample, class Value>
bool tiff_reader::read_samples(const layout& l, std::vector<Value>& to)
{
    const std::size_t count = static_cast<std::size_t>(l.width) * l.height;
    if constexpr (std::is_same_v<Sample, Value> && std::is_integral_v<Value>) {
        to.resize(count);
        return read_bytes(l, reinterpret_cast<unsigned char*>(to.data()));
    } else {
        _raw.resize(count * sizeof(Sample));
        return read_bytes(l, _raw.data()) && convert<Sample>(to);
    }
}

template <class Value>
bool tiff_reader::read(const layout& l, image_page<Value>& page)
{
    page.width = static_cast<int>(l.width);
    page.height = static_cast<int>(l.height);
    if (l.format == SAMPLEFORMAT_IEEEFP)
        return read_samples<float>(l, page.pixels);
    if (l.format == SAMPLEFORMAT_INT)
        return l.bits == 8    ? read_samples<std::int8_t>(l, page.pixels)
               : l.bits == 16 ? read_samples<std::int16_t>(l, page.pixels)
                              : read_samples<std::int32_t>(l, page.pixels);
    return l.bits == 8    ? read_samples<std::uint8_t>(l, page.pixels)
           : l.bits == 16 ? read_samples<std::uint16_t>(l, page.pixels)
                          : read_samples<std::uint32_t>(l, page.pixels);
}

bool tiff_reader::next(label_page& page)
{
    layout found;
    if (!next_layout(found))
        return false;
    if (found.format == SAMPLEFORMAT_UINT && found.bits <= 16)
        return read(found, page_of<std::uint16_t>(page));
    return read(found, page_of<std::uint32_t>(page));
}

bool tiff_reader::next(grey_page& page)
{
    layout found;
    return next_layout(found) && read(found, page);
}

bool tiff_reader::skip() { return advance(); }
