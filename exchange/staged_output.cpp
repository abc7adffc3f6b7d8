#include "staged_output.h"

#include "error_line.h"

#include <algorithm>
#include <fstream>
#include <stdlib.h>
#include <utility>

namespace fs = std::filesystem;

namespace {

bool cannot_write(const fs::path& path)
{
    error_line("Cannot write ", path.string());
    return false;
}

}    // namespace

bool write_whole_file(const fs::path& file, std::string_view bytes)
{
    std::ofstream out(file, std::ios::binary);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    return out.good() || cannot_write(file);
}

staged_output::staged_output(fs::path parent) : _parent(std::move(parent))
{
    if (_parent.empty())
        _parent = ".";
}

bool staged_output::open()
{
    std::error_code error;
    for (fs::path p = fs::absolute(_parent, error).lexically_normal(); !p.empty() && !fs::exists(p, error);
         p = p.parent_path())
        if (p.has_filename())
            _made.insert(_made.begin(), p);
    fs::create_directories(_parent, error);
    std::string name = (_parent / "part-XXXXXX").string();
    if (!::mkdtemp(name.data()))
        return cannot_write(_parent);
    _folder = name;
    for (const char* const part : {"new", "old"})
        if (!fs::create_directory(_folder / part, error))
            return cannot_write(_folder / part);
    return true;
}

staged_output::~staged_output()
{
    std::error_code error;
    if (!_folder.empty())
        fs::remove_all(_folder, error);
    for (; !_made.empty(); _made.pop_back())
        fs::remove(_made.back(), error);    // unless something is in it
}

bool staged_output::move_in(const std::string& name)
{
    std::error_code error;
    if (fs::exists(fs::symlink_status(_parent / name, error))) {
        fs::rename(_parent / name, _folder / "old" / name, error);
        if (error)
            return false;
    }
    fs::rename(place(name), _parent / name, error);
    return !error;
}

void staged_output::move_out(const std::string& name) noexcept
{
    std::error_code error;
    if (!fs::exists(fs::symlink_status(place(name), error)))
        fs::rename(_parent / name, place(name), error);
    if (fs::exists(fs::symlink_status(_folder / "old" / name, error)))
        fs::rename(_folder / "old" / name, _parent / name, error);
}

bool staged_output::commit(const std::vector<std::string>& names)
{
    for (auto name = names.begin(); name != names.end(); ++name) {
        if (move_in(*name))
            continue;
        for (auto back = name + 1; back != names.begin();)
            move_out(*--back);
        return cannot_write(_parent / *name);
    }
    _made.clear();
    return true;
}
