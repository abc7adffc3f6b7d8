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
    // Null: what names ROIs is taken at its word.
    lineage_builder(std::string dataset, const roidb* rois) : _dataset(std::move(dataset)), _rois(rois) {}

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
        if (words.size() == 2)
            return take_mark(keyword, std::string(words[1]));
        return take_note(words);
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
    static constexpr const char* unknown = "no line of a lineage file";
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
        if (head.compare(0, time_point_field, member, 0, time_point_field) != 0)
            return is_roi(member) ? "a unit of two time points" : "no such ROI";
        if (const char* const fault = _rois ? take_roi(member) : nullptr)
            return fault;
        if (head == member)
            _named.insert(_named.end(), head);
        _lineage.head_members.emplace_hint(_lineage.head_members.end(), std::move(head), std::move(member));
        return nullptr;
    }

    // Each is in one unit.
    const char* take_roi(const std::string& key)
    {
        roi_table& rois = rois_beside(key);
        const auto roi = rois.find(key);
        if (roi == rois.end())
            return "no such ROI";
        return std::exchange(roi->second, true) ? "an ROI in two units" : nullptr;
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

    const char* take_mark(std::string_view keyword, std::string head)
    {
        const struct {
            const char* keyword;
            std::set<std::string>& marks;
            const char* fault;
        } kinds[] = {
            {"ELITE", _lineage.elite, "an elite mark on what is no unit"},
            {"EDITED", _lineage.edited, "an edited mark on what is no unit"},
            {"REVIEWED", _lineage.reviewed, "a reviewed mark on what is no unit"},
        };
        for (const auto& kind : kinds) {
            if (keyword != kind.keyword)
                continue;
            if (!is_unit(head))
                return kind.fault;
            kind.marks.insert(kind.marks.end(), std::move(head));
            return nullptr;
        }
        return unknown;
    }

    const char* take_note(const std::vector<std::string_view>& words)
    {
        if (words.size() < 3)
            return unknown;
        if (words[0] == "CALLED")
            return take_name_of(std::string(words[1]), words[2], words.back());
        if (words[0] == "GAP" && words.size() == 3)
            return take_gap(std::string(words[1]), std::string(words[2]));
        if (words[0] == "DISMISSED" && words.size() <= 4)
            return take_dismissal({std::string(words[1]), std::string(words[2]),
                                   words.size() == 4 ? std::string(words[3]) : std::string()});
        return unknown;
    }

    const char* take_gap(std::string earlier, std::string later)
    {
        if (!is_unit(earlier) || !is_unit(later))
            return "a gap between what are no units";
        if (decode(later).t() < decode(earlier).t() + 2)
            return "a gap between units that are not two time points apart or more";
        _lineage.gaps.emplace_hint(_lineage.gaps.end(), std::move(earlier), std::move(later));
        return nullptr;
    }

    const char* take_dismissal(dismissal d)
    {
        if (!is_roi(d.head) || (!d.other.empty() && !is_roi(d.other)))
            return "a dismissal of what is no ROI";
        _lineage.dismissed.insert(_lineage.dismissed.end(), std::move(d));
        return nullptr;
    }

    // From the first word to the last of the line that both are of.
    const char* take_name_of(std::string head, std::string_view first, std::string_view last)
    {
        if (!is_unit(head))
            return "a name of what is no unit";
        std::string name(first.data(), last.data() + last.size());
        if (!is_unit_name(name))
            return "a name with control characters";
        return _lineage.called.emplace(std::move(head), std::move(name)).second ? nullptr
                                                                                : "a unit with two names";
    }

    [[nodiscard]] bool is_unit(const std::string& head) const { return _lineage.head_members.contains(head); }
    [[nodiscard]] bool is_roi(const std::string& key) const { return !_rois || _rois->db.contains(key); }

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

void append_marks(replacing_file& file, const char* keyword, const std::set<std::string>& heads)
{
    for (const std::string& head : heads)
        file.append(keyword + head + '\n');
}

void append_notes(replacing_file& file, const lineage& units)
{
    for (const dismissal& d : units.dismissed)
        file.append("DISMISSED " + d.kind + ' ' + d.head + (d.other.empty() ? "" : ' ' + d.other) + '\n');
    for (const auto& [earlier, later] : units.gaps)
        file.append("GAP " + earlier + ' ' + later + '\n');
    for (const auto& [head, name] : units.called)
        if (is_unit_name(name))
            file.append("CALLED " + head + ' ' + name + '\n');
        else
            error_line("A name that is not kept, as it could not be read back: ", head);
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

bool is_unit_name(const std::string& name) noexcept
{
    const auto is_control = [](unsigned char c) { return c < ' ' || c == 0x7f; };
    return !name.empty() && name.front() != ' ' && name.back() != ' ' &&
           std::none_of(name.begin(), name.end(), is_control);
}

namespace {

std::optional<lineage> read_checked(const std::string& filename, const std::string& dataset,
                                    const roidb* rois)
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

}    // namespace

std::optional<lineage> read_lineage(const std::string& filename, const std::string& dataset,
                                    const roidb& rois)
{
    return read_checked(filename, dataset, &rois);
}

std::optional<lineage> read_lineage(const std::string& filename, const std::string& dataset)
{
    return read_checked(filename, dataset, nullptr);
}

bool write_lineage(const std::string& filename, const std::string& dataset, const lineage& units)
{
    replacing_file file(filename);
    file.append("NAME " + dataset + '\n');
    append_pairs(file, "UNIT ", units.head_members);
    append_pairs(file, "LINK ", units.links);
    append_marks(file, "ELITE ", units.elite);
    append_marks(file, "EDITED ", units.edited);
    append_marks(file, "REVIEWED ", units.reviewed);
    append_notes(file, units);
    return file.commit_or_say("Cannot open ");
}
