// saved_state.h - how far the line of done and undone steps is kept in files.
//
// Each file keeps its own kinds of entries, and is as of some place of the line: what lies between it and
// the present is unsaved. Steps are told by the files that they concern.
#pragma once
#include "edit_step.h"

#include <array>
#include <cstddef>
#include <deque>
#include <vector>

using file_set = unsigned;    // a bit for each kept_in

[[nodiscard]] constexpr file_set bit_of(kept_in file) noexcept { return 1U << static_cast<unsigned>(file); }
constexpr file_set all_files = (1U << kept_in_count) - 1;

class saved_state {
public:
    void add(file_set files);    // a new step; what was undone can no longer be done again
    void undo() noexcept { --_position; }
    void redo() noexcept { ++_position; }
    void drop_oldest() noexcept { ++_dropped; }    // forgets that step, but not whether it is saved
    void saved(file_set files);

    [[nodiscard]] std::size_t position() const noexcept
    {
        return _position;
    }    // steps done, the dropped ones too
    [[nodiscard]] std::size_t first() const noexcept { return _dropped; }    // the oldest that can be undone
    [[nodiscard]] std::size_t end() const noexcept { return _steps.size(); }    // steps done and undone

    // Steps, done or undone, between what the files keep and the present.
    [[nodiscard]] std::size_t unsaved_steps() const;
    [[nodiscard]] file_set unsaved_files() const;

private:
    [[nodiscard]] file_set missing_in(std::size_t step) const;    // the files on whose way the step lies

    std::vector<unsigned char> _steps;    // the files that each concerns
    std::size_t _position = 0;
    std::size_t _dropped = 0;
    std::array<std::size_t, kept_in_count> _saved{};
    std::vector<file_set>
        _lost;    // undone steps that can no longer be done, as far as a file still holds them
};
