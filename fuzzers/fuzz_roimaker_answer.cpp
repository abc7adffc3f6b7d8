// Answers of a roimaker that may be any program: no more ROIs than there are lines for, none longer than the
// answer.
#include "harness.h"
#include "roimaker_answer.h"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::list<roi> rois = read_answer(stream_of(text).get());
    const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
    require(rois.size() <= lines / 2, "an ROI takes two lines");
    std::size_t steps = 0;
    for (const roi& r : rois) {
        require(r.t() == 0 && r.z() == 0, "an answer knows no time point and no focal plane");
        require(r.outline().empty() || is_word(r.outline()), "an outline is a word or empty");
        steps += r.outline().size();
    }
    require(steps <= size, "no outline is longer than the answer");
    return 0;
}
