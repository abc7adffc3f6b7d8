// ORV_roiio.h - the per-plane ROI files of the detector.
//
// One file holds the ROIs of one focal plane at one time point. Its name ends in
// the three-digit time point, "-", the three-digit focal plane, "." and an
// extension. It is text: lines that start with '#' and blank lines, then one
// record a line: x, y, outline.
#pragma once
#include "ORV_roi.h"

#include <fstream>
#include <string>

class iroifstream : public std::ifstream {
public:
    iroifstream() = default;
    ~iroifstream() override = default;

    // Opens a per-plane file. The fail state is set when it cannot be read, as a folder cannot, or when its
    // name tells no time point and focal plane.
    void open(const std::string& name);

    // Skips the lines before the first record.
    void seek_roi();

    // Reads the next record, complete with the time point and focal plane of the file. At the end of
    // the records, or at a line that is no record, the fail state is set and r is as it was. So it is
    // when reading breaks off, after one line on standard error.
    iroifstream& operator>>(roi& r);

    // The time point and the focal plane in the name of a per-plane file. Where several pairs of numbers
    // might be meant, the one with three digits each right before a '.', of these the last. False, and
    // both as they were, when there are none.
    static bool name2tz(const std::string& name, int& t, int& z);

    std::string filename;

private:
    bool next_line(std::string& line);

    int _t = 0;
    int _z = 0;
};
