// roi_reader.h - reads ROI files word by word.
//
// Accepts exactly what extraction from a standard stream in the "C" locale
// accepts: any white space between words, signs, leading zeros, records over
// several lines. An integer that does not fit an int does not parse.
#pragma once
#include "ORV_roi.h"
#include "file_io.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What stands between words.
constexpr bool is_space(int c) noexcept { return c == ' ' || (c >= '\t' && c <= '\r'); }

// True iff the text, once it is written between spaces, is read back as it is.
[[nodiscard]] bool is_word(std::string_view text) noexcept;

class roi_reader {
public:
    explicit roi_reader(const std::string& filename) : _file(filename) {}

    [[nodiscard]] bool is_open() const noexcept { return _file.is_open(); }

    // True iff reading has ended before the end of the file, be it within a word: what was read is not
    // to be used. failure() is the line that tells so.
    [[nodiscard]] bool failed() const noexcept { return _file.failed(); }
    [[nodiscard]] std::string failure() const { return _file.failure(); }

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

// A whole ROI file in memory.
struct roi_file {
    // Reads its first word, if it has any, and every record up to the first that does not parse.
    explicit roi_file(const std::string& filename);

    std::optional<std::string> name;
    std::vector<roi> rois;
    bool was_opened;
    std::string fault;    // the line for standard error when it was not opened, or not read to its end
};

// Reads a whole ROI file: its first word into `name`, then every record, up to the first that does not
// parse, into `enter`. When the file cannot be opened ("roidb: Cannot open " and its name) or not be
// read to its end: false after one line on standard error, and nothing is changed.
bool read_roi_file(const std::string& filename, std::string& name, const std::function<void(roi)>& enter);
