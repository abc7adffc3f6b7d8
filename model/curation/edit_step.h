// edit_step.h - what one thing a person did has changed, so that it can be taken back and done again.
//
// Changes are kept as text, a line each, exactly as the journal writes them: a sign, what kind of entry,
// its words. '+' adds an entry behind those of its key, '-' removes one and tells how many of its key stood
// before it, '*' exchanges one for another. docs/file-formats.md lists them all.
#pragma once
#include "ORV_roi.h"

#include <map>
#include <set>
#include <string>
#include <string_view>

class q_roiimgdb;
class roidb_plus;
struct recording_info;

enum class change_kind : unsigned char {
    roi,      // a record: x, y, focal plane, time point, outline
    index,    // its entry in the plane index: plane key, x, y
    unit,     // unit head and member
    head,     // member and the head of its unit
    link,     // child and parent
    elite,    // a unit head; the other marks are on ROIs
    selected,
    false_positive,
    forward,
    backward,
    note,      // what a person noted of a unit
    scale,     // sizes and focal planes of the recording, before and after
    chosen,    // the chosen nucleus before and after
};

// The files beside a recording, each of which keeps some kinds of entries. Tracking marks are in none.
enum class kept_in : unsigned char { rois, lineage, info, false_positives, recording, nowhere };
constexpr int kept_in_count = 6;

[[nodiscard]] kept_in file_of(change_kind kind) noexcept;
[[nodiscard]] std::string_view name_of(change_kind kind) noexcept;    // in the text of a change

// The tables that changes are made in. What is null is left alone.
struct curation_tables {
    roidb_plus* rois = nullptr;
    q_roiimgdb* rasters = nullptr;
    std::multimap<std::string, std::string>* head_members = nullptr;
    std::map<std::string, std::string>* members_head = nullptr;
    std::multimap<std::string, std::string>* links = nullptr;
    std::set<std::string>* elite = nullptr;
    std::set<std::string>* selected = nullptr;
    std::set<std::string>* false_positives = nullptr;
    std::set<std::string>* forward = nullptr;
    std::set<std::string>* backward = nullptr;
    std::set<std::string>* notes = nullptr;
    recording_info* info = nullptr;
    std::set<std::string>* chosen = nullptr;
};

class edit_step {
public:
    explicit edit_step(std::string title = {}) : _title(std::move(title)) {}
    edit_step(std::string title, std::string changes);    // as a journal has them

    [[nodiscard]] const std::string& title() const noexcept { return _title; }
    [[nodiscard]] const std::string& changes() const noexcept { return _changes; }
    [[nodiscard]] bool is_empty() const noexcept { return _changes.empty(); }

    // Whether it changes anything that this file keeps.
    [[nodiscard]] bool concerns(kept_in file) const noexcept
    {
        return (_files >> static_cast<int>(file) & 1) != 0;
    }

    // Whether it adds as much as it removes: only then the whole may amount to nothing.
    [[nodiscard]] bool is_balanced() const noexcept { return _added == _removed; }

    [[nodiscard]] std::size_t bytes() const noexcept { return _title.capacity() + _changes.capacity(); }

    // ---- Noting changes, in the order in which they were made
    void add(change_kind kind, std::string_view first, std::string_view second = {});
    void remove(change_kind kind, std::string_view first, std::string_view second = {}, int position = 0);
    void add_roi(const roi& r);
    void remove_roi(const roi& r);
    void add_index(std::string_view plane, pos2i at);
    void remove_index(std::string_view plane, pos2i at, int position);
    void exchange(change_kind kind, const std::string& before, const std::string& after);

    void shrink() { _changes.shrink_to_fit(); }

private:
    void begin(char sign, change_kind kind);
    void concern(change_kind kind);
    void word(std::string_view text);
    void number(int value);
    void end() { _changes += '\n'; }

    std::string _title;
    std::string _changes;
    unsigned _files = 0;
    std::size_t _added = 0;
    std::size_t _removed = 0;
};

// A word in which every blank, line end and '%' is written as %XX, and nothing as "%"; and back.
void append_word(std::string& text, std::string_view word);
[[nodiscard]] std::string plain_word(std::string_view escaped);
