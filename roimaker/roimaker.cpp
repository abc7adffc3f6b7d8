// roimaker - the regions of a pixel mask as ROI outlines, from standard input to standard output.
//
// Both may be the two ends of one pipe: nothing is written before the whole mask is read, nothing is
// read beyond its last line, and the answer is kept small enough to fit into the pipe.
#include "mask_answer.h"
#include "mask_input.h"

#include <cstdio>
#include <optional>

namespace {

int answer(const mask& m)
{
    const mask_answer reply = answer_to(m);
    if (reply.left_out > 0)
        std::fprintf(stderr, "roimaker: the answer would not fit: %zu of the smallest regions left out\n",
                     reply.left_out);
    const std::string& text = reply.text;
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0)
        return 0;
    std::perror("roimaker");
    return 1;
}

}    // namespace

int main(int argc, char**)
{
    if (argc > 1) {
        std::fputs("usage: roimaker < mask.txt\n", stderr);
        return 2;
    }
    const std::optional<mask> m = read_mask(stdin);
    if (m)
        return answer(*m);
    std::fprintf(stderr, "roimaker: the input is no mask of up to %d x %d pixels\n", max_side, max_side);
    std::puts("0");
    return 1;
}
