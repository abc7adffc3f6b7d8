// ORV_roidb.h - every ROI of one recording under its ROI key, and its file.
//
// An ROI key is made of four decimal fields, each at least three characters wide
// and filled with '0' on the left: time point, focal plane, x, y. While all four
// lie in 0..999, the order of keys is the order of (t, z, x, y).
//
// An ROI file is text: the name of the recording, then one record a line, x y z t
// and the outline, in ascending order of keys.
#pragma once
#include "ORV_roi.h"

#include <iosfwd>
#include <map>
#include <string>

class roidb {
public:
    explicit roidb(std::string name);

    void setName(std::string name);
    [[nodiscard]] const std::string& name() const noexcept { return _name; }

    // Stores r under its key. A record that is already there stays.
    void entry(roi r);

    // Copies the record at r's position into r. False, and r as it was, when there is none.
    bool find(roi& r) const;

    // The decimal text of `value` in at least `width` characters, '0' on the left, the sign behind them.
    [[nodiscard]] static std::string digit(int value, int width);

    [[nodiscard]] static std::string keygen(pos4i position);

    // Adds the records of an ROI file, up to the first that does not parse, and takes over its name.
    // False, nothing changed, and one line on standard error when it cannot be opened ("roidb: Cannot
    // open " and its name) or not be read to its end.
    bool read(const std::string& filename);

    // Replaces the file by the whole database, at once: the old file stays whole until the new one is
    // complete (file_io.h). False when that fails: "roidb: Cannot open " and its name on standard error, and
    // a second line that tells why it could not be written once it was open. False after one line, too, when
    // the name or an outline is no word, which could not be read back.
    bool write(const std::string& filename) const;

    std::map<std::string, roi> db;

protected:
    std::string _name;

private:
    [[nodiscard]] std::string fault() const;
};

// Writes "x y z t outline".
std::ostream& operator<<(std::ostream& out, const roi& r);
