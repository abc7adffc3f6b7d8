#include "edit_history.h"

#include <utility>

void edit_history::add(edit_step step)
{
    for (std::size_t undone = end() - position(); undone > 0; --undone) {
        _bytes -= _steps.back().bytes();
        _steps.pop_back();
    }
    _state.add(files_of(step));
    _bytes += step.bytes();
    _steps.push_back(std::move(step));
    for (; _bytes > _most_bytes && _steps.size() > 1; _state.drop_oldest()) {
        _bytes -= _steps.front().bytes();
        _steps.pop_front();
    }
}

file_set files_of(const edit_step& step) noexcept
{
    file_set files = 0;
    for (unsigned file = 0; file < kept_in_count; ++file)
        if (step.concerns(static_cast<kept_in>(file)))
            files |= 1U << file;
    return files;
}
