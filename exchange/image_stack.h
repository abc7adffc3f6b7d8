// image_stack.h - the images of a recording, time point by time point, as far as they are asked for.
#pragma once
#include "file_series.h"
#include "tiff_reader.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

// Both ends belong to it.
struct index_range {
    int first = 0;
    int last = 0;

    [[nodiscard]] bool contains(int i) const noexcept { return first <= i && i <= last; }
};

struct image_crop {
    int x = 0, y = 0, width = 1, height = 1;    // pixels of the file
};

// Which part of the images is read. What it starts with becomes 0: the pixel at the corner of the crop, the
// first time point and the first focal plane of the ranges.
struct reading_window {
    int bin =
        1;    // so many pixels in x and in y become one: their mean, or the label that most of them have
    std::optional<image_crop> crop = {};    // before that
    std::optional<index_range> times = {};
    std::optional<index_range> planes = {};
    bool is_limited = true;    // to positions that keys have room for
};

class image_stack {
public:
    image_stack(file_series series, reading_window window);

    // Sorts out the time points. False after one line on standard error: none is left, or they go beyond 999.
    [[nodiscard]] bool open();

    // As they count in the recording, ascending. REQUIRES: open()
    [[nodiscard]] const std::vector<int>& times() const noexcept { return _times; }

    // Gives each plane of the time point times()[i] to `take`, in ascending order. False when `take` says so,
    // or after one line on standard error when a file cannot be read, or differs from those before in size or
    // in planes, or goes beyond 999 pixels or planes.
    template <class Page>
    using plane_taker = std::function<bool(int z, Page& page)>;
    [[nodiscard]] bool read(std::size_t i, const plane_taker<label_page>& take);
    [[nodiscard]] bool read(std::size_t i, const plane_taker<grey_page>& take);

    // Of the planes read so far, pixels after binning; 0 before the first.
    [[nodiscard]] int width() const noexcept { return _width; }
    [[nodiscard]] int height() const noexcept { return _height; }

    // Of a time point; empty before the first was read.
    [[nodiscard]] const std::vector<int>& planes() const noexcept { return _planes; }

    // The values read last have more than 16 bits or are no whole numbers.
    [[nodiscard]] bool is_wide() const noexcept { return _is_wide; }

private:
    template <class Page>
    bool read_planes(std::size_t i, const plane_taker<Page>& take);
    template <class Page>
    bool read_pages(const std::string& path, const plane_taker<Page>& take, std::vector<int>& planes);
    template <class Page>
    bool read_single(const series_file& file, const plane_taker<Page>& take, std::vector<int>& planes);
    template <class Page>
    bool give(const std::string& path, int z, Page& page, const plane_taker<Page>& take);
    template <class Value>
    [[nodiscard]] bool cut_out(const std::string& path, image_page<Value>& page);
    [[nodiscard]] bool is_of_size(const std::string& path, int width, int height);
    [[nodiscard]] bool has_planes(const std::string& path, std::vector<int> planes);
    [[nodiscard]] bool is_wanted_plane(int z) const { return !_window.planes || _window.planes->contains(z); }

    [[nodiscard]] int plane_origin() const { return _window.planes ? _window.planes->first : 0; }

    file_series _series;
    reading_window _window;
    std::vector<int> _times;
    std::vector<std::vector<series_file>> _files;    // of each time point
    int _file_width = 0;                             // before cropping
    int _file_height = 0;
    int _width = 0;
    int _height = 0;
    std::vector<int> _planes;
    bool _is_wide = false;
};
