// loss_report.h - what a format of another program cannot hold of a recording, by nucleus.
#pragma once
#include <map>
#include <string>
#include <vector>

struct loss {
    std::string kind;      // "merge", "overlap": see the functions that export
    std::string head;      // the unit that it is about, its key; empty where it is about all
    std::string detail;    // may be empty
};

// Its kind, the unit, the detail: "overlap 008073120045: 12 pixels".
[[nodiscard]] std::string line_of(const loss& l);

struct loss_report {
    std::vector<loss> losses = {};
    std::size_t units = 0;    // exported
    std::size_t links = 0;    // exported, gaps among them
    std::string written;      // the file or folder that was written

    void add(std::string kind, std::string head, std::string detail = {});

    // How many there are of each kind.
    [[nodiscard]] std::map<std::string, std::size_t> counts() const;

    // The numbers, a line each, then a line for each loss.
    [[nodiscard]] std::string text() const;
};
