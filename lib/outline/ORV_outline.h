// ORV_outline.h - from a pixel mask to the outlines of its regions.
//
// An outline is a chain code that walks the edges between pixels, counter-
// clockwise on the screen (y grows downwards), so that the region lies to the
// left of the walk: '2' down the left side, '3' right along the bottom, '0' up
// the right side, '1' left along the top. A single pixel is "2301".
#pragma once
#include "ORV_pos.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

// One region of a mask: pixels that are connected through pixel edges.
struct outlined_region {
    pos2i start;          // its topmost, then leftmost pixel; the walk starts at that pixel's top-left corner
    std::string chain;    // the outer outline, closed; holes are not walked
    int pixels = 0;       // the region's own pixels, holes not counted
};

// The regions of a mask of width x height bytes, row by row, non-zero inside;
// ordered by start (y, then x). Empty for an empty mask.
// REQUIRES: mask.size() == width * height
[[nodiscard]] std::vector<outlined_region> outline_regions(std::span<const unsigned char> mask, int width,
                                                           int height);

struct labelled_region : outlined_region {
    std::uint32_t label = 0;    // never 0
};

// The same for an image of labels: the regions of pixels that have one label, 0 being background.
// All labels are 0 afterwards: images of labels are large, and this needs no copy of them.
// REQUIRES: labels.size() == width * height
[[nodiscard]] std::vector<labelled_region> outline_labels(std::span<std::uint32_t> labels, int width,
                                                          int height);
[[nodiscard]] std::vector<labelled_region> outline_labels(std::span<std::uint16_t> labels, int width,
                                                          int height);

// The number of pixels that a closed outline encloses, holes included: positive
// when it runs counter-clockwise on the screen. Characters other than '0' to '3'
// are skipped. (Shoelace formula, edge by edge.)
[[nodiscard]] long long enclosed_pixels(const std::string& chain) noexcept;

// Sets the bytes of a mask of width x height that a closed outline encloses, holes included, to 1; the
// others stay. False, and the mask as it was, when the outline is not closed, leaves the mask, or
// encloses a pixel clockwise or twice.
// REQUIRES: mask.size() == width * height
[[nodiscard]] bool fill_outline(pos2i start, const std::string& chain, std::span<unsigned char> mask,
                                int width, int height);

// True iff the outline ends where it starts.
[[nodiscard]] bool is_closed(const std::string& chain) noexcept;
