// scale_bar.h - how long a micrometre is on the canvas.
#pragma once

// The side of an image pixel, in micrometres.
[[nodiscard]] double pixel_um();

struct scale_bar {
    double length_um;
    int pixels;    // of the screen
};

// The longest of 1, 2 or 5 times a power of ten that is not longer than `longest` screen pixels, where the
// screen shows `scale` pixels for each of the image.
[[nodiscard]] scale_bar bar_for(double scale, int longest);
