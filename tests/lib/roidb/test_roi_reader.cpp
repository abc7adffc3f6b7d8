// The reader of ROI files against word-by-word extraction from a standard stream.
#include "../../support/temp_folder.h"
#include "roi_reader.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>
#include <vector>

namespace {

using recording = std::pair<std::string, std::vector<roi>>;

recording stream_read(const std::string& text)
{
    recording all("before", {});
    std::istringstream file(text);
    file.imbue(std::locale::classic());
    file >> all.first;
    int x = 0, y = 0, z = 0, t = 0;
    for (std::string outline; file >> x >> y >> z >> t >> outline;)
        all.second.emplace_back(x, y, z, t, outline);
    return all;
}

void expect_same_as_stream(const std::string& text)
{
    static const temp_folder folder;
    recording all("before", {});
    const auto enter = [&all](roi r) { all.second.push_back(std::move(r)); };
    ASSERT_TRUE(read_roi_file(folder.with("a.roi", text), all.first, enter));
    ASSERT_EQ(all, stream_read(text)) << text.substr(0, 200);
}

TEST(roi_reader, accepts_what_a_stream_accepts)
{
    const std::string texts[] = {"name\n1 2 3 4 0123\n5 6 7 8 32\n",
                                 "\v\f n \r\n 1\t+2\n-3 \v0004 01\f5 6\n7\n\n8\r\n9",
                                 " 1-2+3 4 01 5 6 7 8 2301",
                                 " 2147483647 -2147483648 +0 -0 3 2147483648 0 0 0 1 5 6 7 8 2",
                                 " 0 0 0 -2147483649 1 5 6 7 8 2\n99999999999999999999999999 0 0",
                                 " 0 99999999999999999999999999 0 0 1 5 6 7 8 2",
                                 " 1 2 3 +-4 01 5 6 7 8 1",
                                 " 1 2 3 0x10 01 5 6.7 8 1",
                                 " 1 2 3 4 \xff\xa0\x85 1 2 3 4 \xe9t\xe9",
                                 "\xef\xbb\xbfn 1 2 3 4 0",
                                 std::string(" 1 2 3 4 0\0 1 2\0", 16)};
    for (const std::string& text : texts)
        for (std::size_t length = 0; length <= text.size(); ++length)    // cut at every byte
            expect_same_as_stream((text[0] == ' ' ? "n" : "") + text.substr(0, length));
    std::mt19937 random(7);
    for (int i = 0; i < 3000; ++i) {
        std::string mixture = "name 1 2 3 4 0 ";
        for (auto n = random() % 30; n > 0; --n) {
            const std::string& text = texts[random() % std::size(texts)];
            mixture += text.substr(random() % text.size(), random() % 5);
        }
        expect_same_as_stream(mixture);
    }
}

TEST(roi_reader, reads_files_longer_than_what_it_holds_in_memory)
{
    std::mt19937 random(11);
    std::string text = "n 1 2 3 4 " + std::string(700'000, '2');
    while (text.size() < 2'000'000) {
        for (int field = 0; field < 4; ++field)
            text += std::string(1 + random() % 5, " \n\t"[random() % 3]) +
                    std::to_string(static_cast<int>(random()));
        text += ' ' + std::string(1 + random() % 90, '3');
    }
    expect_same_as_stream(text);
}

}    // namespace
