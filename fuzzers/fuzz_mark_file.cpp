// Info and false-positive files: the marks that are read are written and read again the same. MARK_KEYWORD
// tells which of the two.
#include "harness.h"
#include "mark_files.h"

namespace {

std::set<std::string> marks_in(const std::string& filename)
{
    std::set<std::string> marks;
    read_mark_file(filename, "emb", MARK_KEYWORD, marks);
    return marks;
}

}    // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::set<std::string> marks = marks_in(input_file(data, size));
    for (const std::string& mark : marks)
        require(is_word(mark), "a mark is a word");
    const std::string copy = scratch().path("copy");
    write_mark_file(copy, "emb", MARK_KEYWORD, marks);
    require(marks_in(copy) == marks, "what is written reads back");
    return 0;
}
