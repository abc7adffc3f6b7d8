#include "mark_files.h"

#include "error_line.h"
#include "file_io.h"

#include <fstream>

void read_mark_file(const std::string& filename, const std::string& dataset, const std::string& keyword,
                    std::set<std::string>& marks)
{
    std::ifstream file(filename);
    if (!file || (file.peek(), file.bad())) {    // a folder opens, but does not read
        error_line("Cannot open ", filename);
        return;
    }
    for (std::string word, value; file >> word;) {
        value.clear();
        file >> value;
        if (word == "NAME" && value != dataset) {
            error_line("different dataset");
            return;
        }
        if (word == keyword && !value.empty())
            marks.insert(value);
    }
}

void write_mark_file(const std::string& filename, const std::string& dataset, const std::string& keyword,
                     const std::set<std::string>& marks)
{
    replacing_file file(filename);
    file.append("NAME " + dataset + '\n');
    for (const std::string& key : marks) {
        file.append(keyword);
        file.append(" ");
        file.append(key);
        file.append("\n");
    }
    if (!file.commit())
        error_line("Cannot open ", filename);
}
