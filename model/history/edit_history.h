// edit_history.h - the steps that can be undone and done again.
#pragma once
#include "edit_step.h"
#include "saved_state.h"

#include <cstddef>
#include <deque>

class edit_history {
public:
    static constexpr std::size_t most_bytes = std::size_t{512} << 20;    // of all steps; the oldest go first

    explicit edit_history(std::size_t bytes = most_bytes) : _most_bytes(bytes) {}

    // The newest step. What was undone can no longer be done again.
    void add(edit_step step);

    [[nodiscard]] bool can_undo() const noexcept { return _state.position() > _state.first(); }
    [[nodiscard]] bool can_redo() const noexcept { return _state.position() < _state.end(); }
    [[nodiscard]] const edit_step& next_to_undo() const
    {
        return at(position() - 1);
    }                                                                                 // REQUIRES: can_undo()
    [[nodiscard]] const edit_step& next_to_redo() const { return at(position()); }    // REQUIRES: can_redo()

    // To be called once the step has been undone, or done again.
    void undone() noexcept { _state.undo(); }
    void redone() noexcept { _state.redo(); }

    // Steps are counted from the first of the recording: from first() to end(), of which those before
    // position() are done.
    [[nodiscard]] std::size_t first() const noexcept { return _state.first(); }
    [[nodiscard]] std::size_t position() const noexcept { return _state.position(); }
    [[nodiscard]] std::size_t end() const noexcept { return _state.end(); }
    [[nodiscard]] const edit_step& at(std::size_t step) const { return _steps[step - first()]; }

    [[nodiscard]] saved_state& state() noexcept { return _state; }
    [[nodiscard]] const saved_state& state() const noexcept { return _state; }

private:
    std::deque<edit_step> _steps;
    std::size_t _bytes = 0;
    std::size_t _most_bytes;
    saved_state _state;
};

// The files that a step concerns.
[[nodiscard]] file_set files_of(const edit_step& step) noexcept;
