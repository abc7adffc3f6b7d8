// journal.h - the text of a journal: what was done to a recording, step by step, as a person can read it
// and a later run of the program take it up. docs/file-formats.md describes it.
//
// A journal is made of stretches of work. Each begins with the ROI file that it stands on; steps, undone and
// redone ones and the saving of files follow in the order in which they happened.
#pragma once
#include "edit_step.h"
#include "saved_state.h"

#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// ---- Writing: each is one or more whole lines. Times are UTC, "2026-11-21T14:32:10Z".
namespace journal_text {

[[nodiscard]] std::string now();
[[nodiscard]] std::string head(const std::string& recording);
// Nothing but the ROI file is known at its beginning: what is read of other files comes as steps.
[[nodiscard]] std::string stretch(const std::string& roi_hash);
// The changes behind its first `noted` bytes; what stands before them was noted in parts.
[[nodiscard]] std::string step(const edit_step& step, std::size_t noted = 0);
[[nodiscard]] std::string part(const edit_step& step, std::size_t noted);
[[nodiscard]] std::string nothing();    // the parts that were noted amount to nothing
[[nodiscard]] std::string undo();
[[nodiscard]] std::string redo();
// `rest`: the changes that lead from what the file says to what there is.
[[nodiscard]] std::string saving(kept_in file, const std::string& hash, const edit_step& rest);
[[nodiscard]] std::string saved(kept_in file, const std::string& hash);
[[nodiscard]] std::string go_on_with(std::size_t stretch);

}    // namespace journal_text

// ---- Reading

struct journal_event {
    enum class kind { step, undo, redo, saving, saved };

    kind what;
    std::string_view time;
    std::string_view title;      // of a step
    std::string_view changes;    // of a step; of a file to be saved, the rest
    kept_in file = kept_in::rois;
    std::string_view hash;
};

struct journal_stretch {
    std::string_view time;
    std::string_view roi_hash;
    std::vector<journal_event> events;
};

class journal {
public:
    // Takes over the content of a journal; an empty one is a journal without a stretch. A last line, or a
    // last step, that is not complete is left out; a step that was noted in parts, and ends with one, is as
    // far as they go.
    explicit journal(std::string content);
    journal(const journal&) = delete;    // what is read points into the content
    journal& operator=(const journal&) = delete;

    [[nodiscard]] const std::string& recording() const noexcept { return _recording; }
    [[nodiscard]] const std::vector<journal_stretch>& stretches() const noexcept { return _stretches; }

    // Up to where it could be read, and whether no more than a torn end follows.
    [[nodiscard]] std::size_t good_bytes() const noexcept { return _good; }
    [[nodiscard]] bool is_sound() const noexcept { return _is_sound; }

private:
    struct line_cursor;
    [[nodiscard]] std::optional<std::string_view> read_changes(line_cursor& lines, std::string_view& rest);
    [[nodiscard]] bool read_event(line_cursor& lines);
    [[nodiscard]] bool read_part(line_cursor& lines, std::string_view time, std::string_view rest);
    [[nodiscard]] bool enter(journal_event event);
    void end_parts();
    [[nodiscard]] journal_stretch* current() noexcept;

    std::string _content;
    std::deque<std::string> _joined;        // the changes of steps that were noted in parts
    std::optional<journal_event> _parts;    // of a step, as far as they were read
    std::string _recording;
    std::vector<journal_stretch> _stretches;
    std::size_t _current = 0;
    std::size_t _good = 0;
    bool _is_sound = true;
};
