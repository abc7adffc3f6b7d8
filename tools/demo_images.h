// demo_images.h - the images that a microscope would take of the embryo.
//
// One grey image per time point and focal plane: nuclei with texture and soft
// edges, the blur of the neighbouring planes, haze inside the embryo and the
// noise of the camera.
#pragma once
#include "demo_embryo.h"

class demo_painter {
public:
    // REQUIRES: both outlive the painter
    demo_painter(const demo_embryo& embryo, const demo_options& options);

    // width x height grey levels, row by row. The same for the same arguments, from any thread.
    [[nodiscard]] std::vector<unsigned char> paint(int t, int z) const;

private:
    void add_haze(std::vector<float>& light, int z) const;
    void add_nucleus(std::vector<float>& light, const demo_nucleus& n, int z) const;
    [[nodiscard]] std::vector<unsigned char> exposed(const std::vector<float>& light, int t, int z) const;
    [[nodiscard]] float texture(int label, pos3d offset) const noexcept;

    const demo_embryo& _embryo;
    const demo_options& _options;
    std::vector<float> _noise;      // normal, standard deviation 1
    std::vector<float> _texture;    // smooth noise in space, repeating; about 1 on average
};
