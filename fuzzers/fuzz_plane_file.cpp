// Per-plane ROI files: every record is complete, and its place comes from the file's name.
#include "ORV_roidb.h"
#include "ORV_roiio.h"
#include "harness.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    iroifstream plane;
    plane.open(input_file(data, size, "base007-020.roi"));
    require(plane.good(), "a file that is there opens");
    plane.seek_roi();
    roidb rois("fuzz");
    roi r;
    std::string last_outline;
    for (; plane >> r; rois.entry(r)) {
        require(r.t() == 7 && r.z() == 20, "time point and focal plane are those of the name");
        require(is_word(r.outline()), "an outline is a word");
        last_outline = r.outline();
    }
    require(r.outline() == last_outline, "the end leaves the record as it was");

    const std::string copy = scratch().path("copy");
    roidb again("fuzz");
    require(rois.write(copy) && again.read(copy) && again.db == rois.db, "what is written reads back");

    int t = -1;
    int z = -1;
    if (iroifstream::name2tz({reinterpret_cast<const char*>(data), size}, t, z))
        require(t >= 0 && t <= 999 && z >= 0 && z <= 999999, "a name tells numbers in range");
    else
        require(t == -1 && z == -1, "a name without a place changes nothing");
    return 0;
}
