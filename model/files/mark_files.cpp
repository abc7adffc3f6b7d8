#include "mark_files.h"

#include "error_line.h"
#include "file_io.h"
#include "roi_reader.h"

bool read_mark_file(const std::string& filename, const std::string& dataset, const std::string& keyword,
                    std::set<std::string>& marks)
{
    roi_reader file(filename);
    if (!file.is_open()) {
        error_line("Cannot open ", filename);
        return false;
    }
    std::set<std::string> found;
    bool is_of_dataset = true;
    for (std::string word; is_of_dataset && file.read_word(word);) {
        std::string value;
        (void)file.read_word(value);    // the last one may be missing
        is_of_dataset = word != "NAME" || value == dataset;
        if (word == keyword && !value.empty())
            found.insert(std::move(value));
    }
    if (file.failed()) {
        error_line(file.failure());
        return false;
    }
    if (!is_of_dataset)
        error_line("different dataset");
    marks.merge(found);
    return is_of_dataset;
}

bool write_mark_file(const std::string& filename, const std::string& dataset, const std::string& keyword,
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
    return file.commit_or_say("Cannot open ");
}
