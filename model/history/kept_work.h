// kept_work.h - the work on one recording, so that none of it is lost: undo and redo, the journal of all
// edits beside the recording's file, taking up what was not saved, and saving everything.
//
// Beside NAME.roi lie NAME.lineage, NAME.info and NAME.fp, what is saved, NAME.journal, and the versions
// before (NAME.roi~ and so on; the first one NAME.roi.orig). A journal that cannot be made there is kept in
// the person's state folder. Recordings that were not opened from a file can be undone, but keep no journal.
#pragma once
#include "curation_observer.h"
#include "edit_history.h"
#include "file_hash.h"
#include "replacement_listener.h"
#include "restored_state.h"

#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

class QLockFile;
class curation;
class journal;
class journal_writer;

class kept_work : private curation_observer, private replacement_listener {
public:
    explicit kept_work(curation& model);
    ~kept_work() override;

    // ---- The recording
    // Reads an ROI file into the curation, without a window. False, and what was open stays open, when it
    // cannot be read: one line on standard error.
    bool open(const std::string& roi_file);
    // The recording that the curation has just opened is that of this file.
    void opened(const std::string& roi_file);

    [[nodiscard]] const std::string& roi_file() const noexcept
    {
        return _names[0];
    }    // "" while none is open

    // ---- Undo and redo; the step that was made, or null when there is none or something is going on
    const edit_step* undo();
    const edit_step* redo();
    [[nodiscard]] bool can_undo() const;
    [[nodiscard]] bool can_redo() const;
    // While one lives, files are written for this curation, and not for another one of the same file.
    class Writing {
    public:
        explicit Writing(const curation& model) : _before(std::exchange(current, &model)) {}
        ~Writing() { current = _before; }
        Writing(const Writing&) = delete;
        Writing& operator=(const Writing&) = delete;

    private:
        friend class kept_work;
        static inline const curation* current = nullptr;    // null: for whom is not known
        const curation* _before;
    };

    [[nodiscard]] const edit_history& history() const noexcept { return _history; }

    // ---- Saving
    [[nodiscard]] std::size_t unsaved_edits() const { return _history.state().unsaved_steps(); }
    // Writes what has changed to the files beside the recording. False when any of it fails: one line for
    // each file, and its edits stay unsaved.
    bool save_all();
    // This file was read: if it lies beside the recording it need not be put aside before it is replaced.
    void was_read(const std::string& filename);

    // ---- What an earlier run of the program has left
    struct offer {
        std::size_t stretch;    // of the journal
        std::size_t edits;      // that were not saved; 0: all were, and there is their undo
        std::string time;       // UTC of the last of them
    };
    [[nodiscard]] const std::vector<offer>& offers() const noexcept { return _offers; }    // the newest first
    // True when it is done, or there is nothing to take up; false, one line and nothing changed when edits
    // were made already or its steps do not fit.
    bool take_up(std::size_t number = 0);
    void decline();

private:
    void set_edited();
    void recording_changes() override;
    void step_goes_on(const edit_step& step) override;
    void step_ended(edit_step& step) override;
    void before_replacing(const std::string& target, const std::string& content) override;
    void after_replacing(const std::string& target, bool is_replaced) override;

    void read_journal();
    [[nodiscard]] std::string choose_journal() const;
    void find_offers();
    void close_journal();
    [[nodiscard]] bool is_taken_elsewhere() const;
    [[nodiscard]] bool can_go_on_in_journal() const;
    bool go_without_journal(const std::string& why);    // false
    bool begin_journal();
    [[nodiscard]] std::string lock_name() const;
    bool lock();
    void note(const std::string& text);
    void tell_failure();
    bool save_file(kept_in file);
    bool save_in_journal();
    bool keep_version_before(kept_in file);
    [[nodiscard]] int file_at(const std::string& target) const;    // -1: none of ours
    [[nodiscard]] bool write_file(kept_in file);
    [[nodiscard]] companions files_now() const;
    const edit_step* step_back_or_forth(bool forth);

    curation& _model;
    const Observing _observing;
    edit_history _history;
    std::string _names[kept_in_count];    // of the files, by kept_in; "" while no file is open
    std::string _known[kept_in_count];    // the hashes of what this run has read from them or written
    std::string _base_hash;               // of the ROI file as it was opened
    std::string _coming;                  // the hash of what is about to replace a file
    std::string _beside;                  // where the journal belongs
    std::string _journal_name;
    std::unique_ptr<journal> _journal;    // as it was when the recording was opened
    std::unique_ptr<journal_writer> _writer;
    std::unique_ptr<QLockFile> _lock;
    std::vector<offer> _offers;
    std::size_t _go_on_with = 0;     // the stretch that was taken up
    std::size_t _noted_bytes = 0;    // of the open step's changes, that stand in the journal already
    std::chrono::steady_clock::time_point _next_part;    // when more of them are noted
    bool _is_taken_up = false;
    bool _was_edited = false;            // in this run of the program
    bool _is_without_journal = false;    // none can be kept, which was said
};
