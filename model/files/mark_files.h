// mark_files.h - info and false-positive files: the marked ROIs of one recording.
//
// Both are text, a keyword and a value a line: "NAME dataset", then the file's own keyword ("SELECT" or
// "FP") and an ROI key for each mark.
#pragma once
#include <set>
#include <string>

// Adds the marks of a file, read as pairs of words, up to a NAME that is not `dataset`: "different
// dataset" on standard error. When it cannot be opened ("Cannot open " and its name) or not be read to
// its end, one line and no mark. False after any line. Keys are not checked.
bool read_mark_file(const std::string& filename, const std::string& dataset, const std::string& keyword,
                    std::set<std::string>& marks);

// Replaces the file at once. False when that fails: "Cannot open " and its name on standard error; a second
// line tells why it could not be written once it was open.
bool write_mark_file(const std::string& filename, const std::string& dataset, const std::string& keyword,
                     const std::set<std::string>& marks);
