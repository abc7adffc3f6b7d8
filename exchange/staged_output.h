// staged_output.h - what is written elsewhere first, and gets its name only when it is complete.
#pragma once
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Writes a file at once, without waiting for the disk. False after one line on standard error.
[[nodiscard]] bool write_whole_file(const std::filesystem::path& file, std::string_view bytes);

// A folder of another name in the folder where files and folders are to appear. Without commit(), whatever is
// in it goes with the object, and so do the folders that were made for it.
class staged_output {
public:
    explicit staged_output(std::filesystem::path parent);
    ~staged_output();
    staged_output(const staged_output&) = delete;
    staged_output& operator=(const staged_output&) = delete;

    // Makes the folder, and its parents where they are missing. False after one line on standard error.
    [[nodiscard]] bool open();

    // Where the file or folder of this name is to be written.
    [[nodiscard]] std::filesystem::path place(const std::string& name) const
    {
        return _folder / "new" / name;
    }

    // Moves them to the parent, in this order, each in place of what has its name there. When one cannot be
    // moved: false, after one line, and everything there as it was.
    [[nodiscard]] bool commit(const std::vector<std::string>& names);

private:
    [[nodiscard]] bool move_in(const std::string& name);
    void move_out(const std::string& name) noexcept;

    std::filesystem::path _parent;
    std::filesystem::path _folder;
    std::vector<std::filesystem::path> _made;    // folders, the outermost first
};
