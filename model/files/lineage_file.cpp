#include "lineage_file.h"

#include "error_line.h"
#include "file_io.h"
#include "keygen.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

// Splits a file into lines, and a line into words.
class line_reader {
public:
    explicit line_reader(const std::string& filename) : _file(filename) {}

    [[nodiscard]] bool is_open() const noexcept { return _file.is_open(); }
    [[nodiscard]] bool failed() const noexcept { return _file.failed(); }
    [[nodiscard]] std::string failure() const { return _file.failure(); }
    [[nodiscard]] int number() const noexcept { return _number; }

    // The words of the next line that has any; false at the end of the file.
    [[nodiscard]] bool next(std::vector<std::string_view>& words)
    {
        do {
            if (_file.peek() < 0)
                return false;
            read_line();
            split(words);
        } while (words.empty());
        return true;
    }

private:
    void read_line()
    {
        _line.clear();
        ++_number;
        for (bool is_complete = false; !is_complete;) {
            const std::string_view rest = _file.at_hand();
            const std::size_t end = rest.find('\n');
            is_complete = end != std::string_view::npos || rest.empty();
            _line.append(rest.substr(0, end));
            _file.take(end == std::string_view::npos ? rest.size() : end + 1);
        }
    }

    void split(std::vector<std::string_view>& words) const
    {
        constexpr const char* blanks = " \t\r\v\f";
        words.clear();
        const std::string_view line = _line;
        for (std::size_t first = line.find_first_not_of(blanks); first != std::string_view::npos;) {
            const std::size_t last = std::min(line.find_first_of(blanks, first), line.size());
            words.push_back(line.substr(first, last - first));
            first = line.find_first_not_of(blanks, last);
        }
    }

    file_reader _file;
    std::string _line;
    int _number = 0;
};

// Takes the lines of a file one by one. Each take_ function answers what is wrong with its line, or
// nothing.
class lineage_builder {
public:
    lineage_builder(std::string dataset, const roidb& rois) : _dataset(std::move(dataset)), _rois(&rois) {}

    [[nodiscard]] const char* take(const std::vector<std::string_view>& words)
    {
        const std::string_view keyword = words.front();
        if (!_is_named)
            return keyword == "NAME" && words.size() == 2 ? take_name(words[1])
                                                          : "no NAME line before the others";
        if (keyword == "UNIT" && words.size() == 3)
            return take_member(std::string(words[1]), std::string(words[2]));
        if (keyword == "LINK" && words.size() == 3)
            return take_link(std::string(words[1]), std::string(words[2]));
        if (keyword == "ELITE" && words.size() == 2)
            return take_elite(std::string(words[1]));
        return "no UNIT, LINK or ELITE line";
    }

    [[nodiscard]] lineage& result() noexcept { return _lineage; }

    // What is wrong with the whole, or nothing.
    [[nodiscard]] const char* finish() const
    {
        if (!_is_named)
            return "no NAME line before the others";
        std::size_t units = 0;
        const std::string* previous = nullptr;
        for (const auto& [head, member] : _lineage.head_members) {
            units += !previous || *previous != head;
            previous = &head;
        }
        return _named.size() == units ? nullptr : "a unit without the ROI that names it";
    }

private:
    static constexpr std::size_t time_point_field = 3;               // characters of a key
    using roi_table = std::unordered_map<std::string_view, bool>;    // ROI to whether it is in a unit

    // The ROIs of the time point of this key. Files are in order: it is mostly that of the key before.
    roi_table& rois_beside(const std::string& key)
    {
        if (_table && key.compare(0, time_point_field, _table_field) == 0)
            return *_table;
        _table_field = key.substr(0, time_point_field);
        const auto [table, is_new] = _has_unit.try_emplace(decode(key).t());
        _table = &table->second;
        if (!is_new)
            return *_table;
        const auto [first, last] = at_time_point(_rois->db, decode(key).t());
        for (auto entry = first; entry != last; ++entry)
            _table->emplace(entry->first, false);
        return *_table;
    }

    const char* take_name(std::string_view name)
    {
        _is_named = name == _dataset;
        return _is_named ? nullptr : "different dataset";
    }

    const char* take_member(std::string head, std::string member)
    {
        if (!is_roi_key(head) || !is_roi_key(member))
            return "no such ROI";
        roi_table& rois = rois_beside(member);
        const auto roi = rois.find(member);
        if (roi == rois.end())
            return "no such ROI";
        if (head.compare(0, time_point_field, member, 0, time_point_field) != 0)
            return "a unit of two time points";
        if (std::exchange(roi->second, true))
            return "an ROI in two units";
        if (head == member)
            _named.insert(_named.end(), head);
        _lineage.head_members.emplace_hint(_lineage.head_members.end(), std::move(head), std::move(member));
        return nullptr;
    }

    const char* take_link(std::string child, std::string parent)
    {
        if (!is_unit(child) || !is_unit(parent))
            return "a link of what is no unit";
        if (decode(child).t() != decode(parent).t() + 1)
            return "a link between units that are not one time point apart";
        _lineage.links.emplace_hint(_lineage.links.end(), std::move(child), std::move(parent));
        return nullptr;
    }

    const char* take_elite(std::string head)
    {
        if (!is_unit(head))
            return "an elite mark on what is no unit";
        _lineage.elite.insert(_lineage.elite.end(), std::move(head));
        return nullptr;
    }

    [[nodiscard]] bool is_unit(const std::string& head) const { return _lineage.head_members.contains(head); }

    std::string _dataset;
    bool _is_named = false;
    const roidb* _rois;
    std::map<int, roi_table> _has_unit;    // by time point, as far as it was asked for
    roi_table* _table = nullptr;           // the one asked for last
    std::string _table_field;
    std::set<std::string> _named;    // units that hold the ROI that names them
    lineage _lineage;
};

void append_pairs(replacing_file& file, const char* keyword,
                  const std::multimap<std::string, std::string>& pairs)
{
    for (const auto& [first, second] : in_order(pairs))
        file.append(keyword + first + ' ' + second + '\n');
}

}    // namespace

std::map<std::string, std::string> heads_of_members(const lineage& units)
{
    std::map<std::string, std::string> heads;
    for (const auto& [head, member] : units.head_members)
        heads.emplace(member, head);
    return heads;
}

std::vector<std::pair<std::string, std::string>>
in_order(const std::multimap<std::string, std::string>& pairs)
{
    std::vector<std::pair<std::string, std::string>> sorted(pairs.begin(), pairs.end());
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}

std::optional<lineage> read_lineage(const std::string& filename, const std::string& dataset,
                                    const roidb& rois)
{
    line_reader lines(filename);
    if (!lines.is_open()) {
        error_line("Cannot open ", filename);
        return std::nullopt;
    }
    lineage_builder builder(dataset, rois);
    const char* fault = nullptr;
    for (std::vector<std::string_view> words; !fault && lines.next(words);)
        fault = builder.take(words);
    if (lines.failed()) {    // whatever is wrong with a line that it has cut
        error_line(lines.failure());
        return std::nullopt;
    }
    if (!fault)
        fault = builder.finish();
    if (!fault)
        return std::move(builder.result());
    error_line(filename, ":", lines.number(), ": ", fault);
    return std::nullopt;
}

bool write_lineage(const std::string& filename, const std::string& dataset, const lineage& units)
{
    replacing_file file(filename);
    file.append("NAME " + dataset + '\n');
    append_pairs(file, "UNIT ", units.head_members);
    append_pairs(file, "LINK ", units.links);
    for (const std::string& head : units.elite)
        file.append("ELITE " + head + '\n');
    return file.commit_or_say("Cannot open ");
}
