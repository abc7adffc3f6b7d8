// roi_mask.h - an ROI as pixels: its box and its filled mask.
//
// The common half of the two rasters: roiimg keeps the polygon as a list of
// positions, q_roiimg as a polygon of the toolkit. Positions are image pixels;
// the mask starts at the top-left corner of the box, row by row, one byte a
// pixel: 0 outside, 1 inside.
#pragma once
#include "ORV_roi.h"

#include <memory>
#include <vector>

// A box of image pixels; both corners belong to it.
struct pixel_box {
    int left = 0, top = 0, right = 0, bottom = 0;

    [[nodiscard]] constexpr bool contains(int x, int y) const noexcept
    {
        return left <= x && x <= right && top <= y && y <= bottom;
    }

    [[nodiscard]] constexpr bool meets(const pixel_box& o) const noexcept
    {
        return left <= o.right && o.left <= right && top <= o.bottom && o.top <= bottom;
    }
};

class roi_mask : public roi {
public:
    // The largest box a mask is made for, in pixels a side. An outline that leaves it gets an empty
    // mask of one pixel, and one line on standard error when it is mapped.
    static constexpr int max_side = 4096;

    roi_mask(const roi_mask&) = delete;
    roi_mask& operator=(const roi_mask&) = delete;

    // Builds the mask, unless it exists, and counts it.
    void map();
    [[nodiscard]] bool is_too_large() const noexcept { return _too_large; }    // which map() says

    // Turns every non-zero pixel into 1, counts them into size() and sets the centroid, which is not
    // finite when there are none.
    void count_size();

    // From mask pixel p rightwards, sets pixels to 1 (draw) or 0 (erase) up to a pixel of value 2 or
    // the right edge. Nothing when p lies on a 2, outside the mask, or there is no mask.
    void draw(pos2i p);
    void erase(pos2i p);

    // The mask pixel at column x, row y; 0 outside the mask, -1 when there is no mask.
    [[nodiscard]] int value(int x, int y) const noexcept;

    [[nodiscard]] pos2i top_left() const noexcept { return _top_left; }
    [[nodiscard]] pos2i bottom_right() const noexcept { return _bottom_right; }    // belongs to the box
    [[nodiscard]] pixel_box box() const noexcept
    {
        return {_top_left.x(), _top_left.y(), _bottom_right.x(), _bottom_right.y()};
    }
    [[nodiscard]] int width() const noexcept { return _width; }
    [[nodiscard]] int height() const noexcept { return _height; }
    [[nodiscard]] int size() const noexcept { return _size; }    // pixels inside

    // Of the pixels inside, in image pixels; not finite when there are none. REQUIRES: map()
    [[nodiscard]] pos2d centre() const noexcept { return {_cx, _cy}; }
    [[nodiscard]] const unsigned char* image() const noexcept { return _image.get(); }    // null until map()

protected:
    explicit roi_mask(roi r);
    ~roi_mask() = default;

    // The vertices of the outline, which follow the pixel boundaries, no two equal ones in a row.
    [[nodiscard]] std::vector<pos2i> _make_polygon() const;

    pos2i _top_left;
    pos2i _bottom_right;
    int _width = 1;
    int _height = 1;
    double _cx = 0;    // centroid, in image pixels
    double _cy = 0;
    std::unique_ptr<unsigned char[]> _image;
    int _size = 0;

private:
    bool _too_large = false;

    [[nodiscard]] bool inside(int x, int y) const noexcept;
    [[nodiscard]] bool is_marked(int x, int y) const noexcept;
    void mark(int x, int y) noexcept;
    void fill_run(pos2i p, unsigned char pixel);
    void trace_outline();
};

// The number of image pixels that both masks cover. A raster without a mask covers its whole box.
[[nodiscard]] int shared_pixels(const roi_mask& a, const roi_mask& b);

// True iff shared_pixels() is not 0; ends at the first one.
[[nodiscard]] bool share_a_pixel(const roi_mask& a, const roi_mask& b);
