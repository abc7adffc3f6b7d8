// score_lineage - how good "Make units" and "Make links" are on recordings whose truth is known.
//
// For overlaps 0, 0.1 ... 0.9, precision and recall in per cent. A unit is right when all its ROIs are of
// one nucleus and none of that nucleus is missing. A link is right when the nuclei that most ROIs of
// its two units belong to are one nucleus, or mother and daughter. The truth files: docs/file-formats.md.
#include "orvbrowser.h"

#include "keygen.h"

#include <QApplication>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <utility>

namespace {

using label_set = std::set<int>;
using nucleus = std::pair<int, int>;    // time point and label

struct truth {
    std::map<std::string, label_set> labels;          // ROI key to its nuclei; empty for a false detection
    std::map<nucleus, std::set<std::string>> rois;    // nucleus to its ROIs
    std::map<int, int> mother;                        // label to the label it divided from

    [[nodiscard]] bool are_related(int child, int parent) const
    {
        const auto found = mother.find(child);
        return child == parent || (found != mother.end() && found->second == parent);
    }
};

truth read_truth(const std::string& filename)
{
    truth known;
    std::ifstream file(filename);
    for (std::string line; std::getline(file, line);) {
        std::istringstream words(line);
        std::string keyword;
        words >> keyword;
        if (keyword == "ROI" || keyword == "JOIN") {
            std::string key;
            words >> key;
            label_set& labels = known.labels[key];
            for (int label = 0; words >> label;)
                if (label != 0)
                    labels.insert(label);
            for (const int label : labels)
                known.rois[{decode(key).t(), label}].insert(key);
        } else if (keyword == "TRACK") {
            int label = 0;
            int first = 0;
            int last = 0;
            int parent = 0;
            if (words >> label >> first >> last >> parent && parent != 0)
                known.mother[label] = parent;
        }
    }
    return known;
}

struct score {
    std::size_t right = 0;
    std::size_t made = 0;
    std::size_t found = 0;    // of the true ones
    std::size_t real = 0;

    [[nodiscard]] double precision() const
    {
        return made == 0 ? 0 : 100.0 * static_cast<double>(right) / static_cast<double>(made);
    }
    [[nodiscard]] double recall() const
    {
        return real == 0 ? 0 : 100.0 * static_cast<double>(found) / static_cast<double>(real);
    }
};

// The nucleus that most ROIs of a unit belong to; 0 when they belong to none.
int label_of(const std::set<std::string>& members, const truth& known)
{
    std::map<int, int> votes;
    for (const std::string& key : members)
        if (const auto labels = known.labels.find(key); labels != known.labels.end())
            for (const int label : labels->second)
                ++votes[label];
    const auto most = std::max_element(votes.begin(), votes.end(),
                                       [](const auto& a, const auto& b) { return a.second < b.second; });
    return most == votes.end() ? 0 : most->first;
}

score score_units(const std::map<std::string, std::set<std::string>>& units, const truth& known)
{
    score s;
    s.made = units.size();
    s.real = known.rois.size();
    for (const auto& [head, members] : units) {
        const nucleus of{decode(head).t(), label_of(members, known)};
        const auto rois = known.rois.find(of);
        s.right += rois != known.rois.end() && rois->second == members;
    }
    s.found = s.right;
    return s;
}

score score_links(const curation& access, const std::map<std::string, std::set<std::string>>& units,
                  const truth& known)
{
    score s;
    std::set<std::pair<nucleus, nucleus>> found;
    std::map<std::string, int> labels;
    for (const auto& [head, members] : units)
        labels[head] = label_of(members, known);
    for (const auto& [child, parent] : access.links()) {
        const nucleus c{decode(child).t(), labels[child]};
        const nucleus p{decode(parent).t(), labels[parent]};
        ++s.made;
        if (c.second == 0 || !known.are_related(c.second, p.second))
            continue;
        ++s.right;
        found.emplace(c, p);
    }
    s.found = found.size();
    for (const auto& [of, rois] : known.rois) {
        const auto mother = known.mother.find(of.second);
        s.real += known.rois.contains({of.first - 1, of.second}) ||
                  (mother != known.mother.end() && known.rois.contains({of.first - 1, mother->second}));
    }
    return s;
}

std::map<std::string, std::set<std::string>> units_of(const curation& access)
{
    std::map<std::string, std::set<std::string>> units;
    for (const auto& [head, member] : access.head_members())
        units[head].insert(member);
    return units;
}

void print_row(double overlap, curation& access, const truth& known)
{
    access.reset();
    for (int t = access.min_time_point(); t <= access.max_time_point(); ++t)
        access.make_units(t, overlap);
    for (int t = access.min_time_point() + 1; t <= access.max_time_point(); ++t)
        access.makeLinkage(t);
    const auto units = units_of(access);
    const score u = score_units(units, known);
    const score l = score_links(access, units, known);
    std::printf("| %.1f | %zu | %.1f | %.1f | %zu | %.1f | %.1f |\n", overlap, u.made, u.precision(),
                u.recall(), l.made, l.precision(), l.recall());
}

}    // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (argc != 2) {
        std::cerr << "usage: score_lineage NAME.roi (NAME.truth lies beside it)" << std::endl;
        return 2;
    }
    const std::string roi_file = argv[1];
    ORVBrowser window;
    window.setApplication(&application);
    if (!window.openRoiFile(roi_file))
        return 1;
    const std::string truth_file = roi_file.substr(0, roi_file.rfind('.')) + ".truth";
    const truth known = read_truth(truth_file);
    if (known.labels.empty()) {
        std::cerr << "No truth in " << truth_file << std::endl;
        return 1;
    }
    ORVBrowser& access = window;
    std::puts("| overlap | units | precision | recall | links | precision | recall "
              "|\n|---|---|---|---|---|---|---|");
    for (int tenths = 0; tenths < 10; ++tenths)
        print_row(tenths / 10.0, access, known);
    return 0;
}
