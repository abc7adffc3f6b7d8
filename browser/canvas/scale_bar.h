// scale_bar.h - how long a micrometre is on the canvas.
#pragma once

struct scale_bar {
    double length_um;
    int pixels;    // of the screen
};

// The longest of 1, 2 or 5 times a power of ten that is not longer than `longest` screen pixels, where the
// screen shows `scale` pixels for each of the image, whose side is `pixel_um` micrometres.
[[nodiscard]] scale_bar bar_for(double scale, double pixel_um, int longest);
