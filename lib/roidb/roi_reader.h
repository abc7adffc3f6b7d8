// roi_reader.h - reads ROI files word by word.
//
// Accepts exactly what extraction from a standard stream in the "C" locale
// accepts: any white space between words, signs, leading zeros, records over
// several lines. An integer that does not fit an int does not parse.
#pragma once
#include "ORV_roi.h"
#include "file_io.h"

#include <functional>
#include <string>

class roi_reader {
public:
    explicit roi_reader(const std::string& filename) : _file(filename) {}

    [[nodiscard]] bool is_open() const noexcept { return _file.is_open(); }

    // The next word. False at the end of the file; `word` is then as it was.
    [[nodiscard]] bool read_word(std::string& word);

    // The next record: x, y, z, t and the outline. False when it does not parse or the file has ended.
    [[nodiscard]] bool read_record(roi& r);

    // True iff nothing but white space is left.
    [[nodiscard]] bool is_at_end() { return !skip_space(); }

private:
    [[nodiscard]] bool skip_space();
    [[nodiscard]] bool read_int(int& value);

    file_reader _file;
};

// Reads a whole ROI file: its first word into `name`, then every record, up to the first that does
// not parse, into `enter`. False when the file cannot be read, after the line "roidb: Cannot open "
// and its name on standard error; nothing is changed then.
bool read_roi_file(const std::string& filename, std::string& name, const std::function<void(roi)>& enter);
