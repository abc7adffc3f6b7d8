// ROI keys against the string-stream form that defines them, and back.
#include "ORV_roidb.h"
#include "keygen.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <limits>
#include <sstream>

namespace {

TEST(keygen, fields_are_what_a_string_stream_writes)
{
    using limits = std::numeric_limits<int>;
    for (int i = -1100; i <= 1102; ++i) {
        const int a = i < 1101 ? i : i == 1101 ? limits::min() : limits::max();
        std::stringstream text;
        text << std::setw(3) << std::setfill('0') << a;
        ASSERT_EQ(digit3(a), text.str());
        ASSERT_EQ(keygen({a, 1, 2, 3}), "003002" + text.str() + "001");
        ASSERT_EQ(roidb::keygen({a, a, a, a}), text.str() + text.str() + text.str() + text.str());
    }
    EXPECT_EQ(roidb::digit(-5, 6) + roidb::digit(42, 0), "0000-542");
}

TEST(keygen, decodes_fields_of_three_characters)
{
    const std::pair<std::string, pos4i> cases[] = {
        {"008073120045", {120, 45, 73, 8}},
        {keygen({1000, 0, 0, 0}), {100, 0, 0, 0}},     // a wide field shifts what follows
        {keygen({7, -12, -5, -1}), {7, -12, 0, 0}},    // a sign counts only at the front
        {"00807312004", {120, 4, 73, 8}},
        {"008073120", {120, 0, 73, 8}},
        {" +1 2x\n-3abc4", {-3, 0, 2, 1}},
    };
    for (const auto& [key, position] : cases)
        EXPECT_EQ(decode(key), position) << key;
    EXPECT_THROW((void)decode("00807312"), std::out_of_range);
}

}    // namespace
