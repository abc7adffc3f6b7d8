// number_texts.h - numbers in the value of an option, and in what is printed.
#pragma once
#include <charconv>
#include <string>
#include <vector>

// The numbers between the separators, as in the "C" locale; none when one of them is no number.
template <class Number>
[[nodiscard]] std::vector<Number> numbers_in(const std::string& text, char separator)
{
    std::vector<Number> found;
    const char* at = text.data();
    const char* const end = at + text.size();
    for (bool more = true; more;) {
        Number number{};
        const auto [next, error] = std::from_chars(at, end, number);
        more = next < end && *next == separator;
        if (error != std::errc() || (next < end && !more))
            return {};
        found.push_back(number);
        at = next + 1;
    }
    return found;
}

// The shortest text that is read back as the same number.
[[nodiscard]] inline std::string number_text(double value)
{
    char digits[32];
    return {digits, std::to_chars(digits, digits + sizeof digits, value).ptr};
}
