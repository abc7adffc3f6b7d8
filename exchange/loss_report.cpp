#include "loss_report.h"

#include <utility>

std::string line_of(const loss& l)
{
    return l.kind + (l.head.empty() ? "" : ' ' + l.head) + (l.detail.empty() ? "" : ": " + l.detail);
}

void loss_report::add(std::string kind, std::string head, std::string detail)
{
    losses.push_back({std::move(kind), std::move(head), std::move(detail)});
}

std::map<std::string, std::size_t> loss_report::counts() const
{
    std::map<std::string, std::size_t> found;
    for (const loss& l : losses)
        ++found[l.kind];
    return found;
}

std::string loss_report::text() const
{
    std::string lines = "units " + std::to_string(units) + "\nlinks " + std::to_string(links) + '\n';
    if (losses.empty())
        lines += "lost: nothing\n";
    for (const auto& [kind, count] : counts())
        lines += "lost: " + kind + ' ' + std::to_string(count) + '\n';
    for (const loss& l : losses)
        lines += line_of(l) + '\n';
    return lines;
}
