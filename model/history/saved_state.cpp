#include "saved_state.h"

#include <algorithm>

file_set saved_state::missing_in(std::size_t step) const
{
    file_set missing = 0;
    for (unsigned file = 0; file < kept_in_count; ++file) {
        const auto [low, high] = std::minmax(_saved[file], _position);
        if (low <= step && step < high)
            missing |= 1U << file;
    }
    return missing & _steps[step];
}

void saved_state::add(file_set files)
{
    for (std::size_t step = _position; step < _steps.size(); ++step)
        if (const file_set missing = missing_in(step))
            _lost.push_back(missing);
    for (std::size_t& saved : _saved)
        saved = std::min(saved, _position);
    _steps.resize(_position);
    _steps.push_back(static_cast<unsigned char>(files));
    ++_position;
}

void saved_state::saved(file_set files)
{
    for (unsigned file = 0; file < kept_in_count; ++file)
        if ((files >> file & 1U) != 0)
            _saved[file] = _position;
    for (file_set& missing : _lost)
        missing &= ~files;
    std::erase(_lost, 0U);
}

std::size_t saved_state::unsaved_steps() const
{
    const auto [low, high] = std::ranges::minmax(_saved);
    std::size_t count = _lost.size();
    for (std::size_t step = std::min(low, _position); step < std::max(high, _position); ++step)
        count += missing_in(step) != 0;
    return count;
}

file_set saved_state::unsaved_files() const
{
    file_set files = 0;
    for (const file_set missing : _lost)
        files |= missing;
    const auto [low, high] = std::ranges::minmax(_saved);
    for (std::size_t step = std::min(low, _position); step < std::max(high, _position); ++step)
        files |= missing_in(step);
    return files;
}
