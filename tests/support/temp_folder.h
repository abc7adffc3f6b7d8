// temp_folder.h - a folder of its own for a test, with a name that is not plain ASCII, removed at its end.
#pragma once
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdlib.h>
#include <string>

class temp_folder {
public:
    temp_folder() { ::mkdtemp(_path.data()); }
    ~temp_folder() { std::filesystem::remove_all(_path); }
    temp_folder(const temp_folder&) = delete;
    temp_folder& operator=(const temp_folder&) = delete;

    [[nodiscard]] std::string path(const std::string& name) const { return _path + '/' + name; }

    // Writes a file and returns its path.
    [[nodiscard]] std::string with(const std::string& name, const std::string& contents) const
    {
        std::ofstream(path(name), std::ios::binary) << contents;
        return path(name);
    }

    [[nodiscard]] std::string contents(const std::string& name) const
    {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    // How many files and folders are in it.
    [[nodiscard]] auto files() const { return std::distance(std::filesystem::directory_iterator(_path), {}); }

private:
    std::string _path = (std::filesystem::temp_directory_path() / "orvbrowser-tést-XXXXXX").string();
};
