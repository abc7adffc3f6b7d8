// comma_locale.h - whoever includes it runs where numbers are written as 1.234,5: files must not care.
#pragma once
#include <locale>

struct comma_numbers : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

inline const std::locale locale_before = std::locale::global({std::locale(), new comma_numbers});
