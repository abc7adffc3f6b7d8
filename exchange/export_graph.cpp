#include "export_graph.h"

#include "keygen.h"
#include "unit_names.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <numbers>
#include <utility>

namespace {

constexpr int last_place = 999;
constexpr std::size_t units_in_a_step = 256;

bool is_place(int n) { return n >= 0 && n <= last_place; }

class graph_builder {
public:
    graph_builder(const export_request& request, false_units how, loss_report& report)
        : _request(request), _how(how), _report(report)
    {
    }

    std::optional<export_graph> build(const run_callbacks& callbacks)
    {
        add_units();
        if (!measure_all(callbacks))
            return std::nullopt;
        add_links();
        keep_parents();
        number();
        _report.units = _graph.units.size();
        for (const export_unit& unit : _graph.units)
            _report.links += unit.parents.size();
        return std::move(_graph);
    }

private:
    void add_units()
    {
        const auto heads = heads_of_members(_request.units);
        _names = names_of_all(_request.units);
        std::map<std::pair<int, std::string>, std::vector<const roi*>> members;
        for (const auto& [key, r] : _request.rois.db) {
            const auto head = heads.find(key);
            if (head == heads.end())
                _report.add("no_unit", key);
            else if (!is_place(r.t()) || !is_place(r.z()))
                _report.add("beyond", key);
            else
                members[{r.t(), head->second}].push_back(&r);
        }
        std::set<int> planes;
        for (auto& [place, rois] : members) {
            for (const roi* r : rois)
                planes.insert(r->z());
            add_unit(place.second, std::move(rois));
        }
        _graph.is_flat = planes.size() == 1;
    }

    bool measure_all(const run_callbacks& callbacks)
    {
        const std::size_t all = _graph.units.size();
        for (std::size_t i = 0; i < all; ++i) {
            if (i % units_in_a_step == 0 && !callbacks.step(static_cast<int>(i), static_cast<int>(all)))
                return false;
            measure(_graph.units[i]);
        }
        return true;
    }

    [[nodiscard]] bool is_false(const roi* r) const
    {
        return _request.false_positives.contains(roidb::keygen(*r));
    }

    void add_unit(const std::string& head, std::vector<const roi*> rois)
    {
        export_unit unit{.head = head, .t = rois.front()->t()};
        unit.is_false_positive = std::ranges::all_of(rois, [this](const roi* r) { return is_false(r); });
        if (unit.is_false_positive && _how == false_units::left_out)
            return _report.add("false_positive", head);
        if (!unit.is_false_positive)
            for (const roi* r : rois)
                if (is_false(r))
                    _report.add("false_positive", head, "the ROI " + roidb::keygen(*r) + " of it");
        if (!unit.is_false_positive)
            std::erase_if(rois, [this](const roi* r) { return is_false(r); });
        unit.rois = std::move(rois);
        if (const auto name = _names.find(head); name != _names.end())
            unit.name = name->second;
        _index.emplace(head, _graph.units.size());
        _graph.units.push_back(std::move(unit));
    }

    // Centre and size; of what has no pixels, the middle of where its outlines start.
    void measure(export_unit& unit) const
    {
        double pixels = 0;
        pos3d sum(0, 0, 0);
        pos3d starts(0, 0, 0);
        std::set<int> planes;
        for (const auto& image : images_of(unit)) {
            planes.insert(image->z());
            starts = starts + pos3d(image->x(), image->y(), image->z());
            if (image->size() == 0)
                continue;
            const double area = image->size();
            sum = sum + pos3d(image->centre().x(), image->centre().y(), image->z()) * area;
            pixels += area;
        }
        const pos3d middle = pixels > 0 ? sum / pixels : starts / static_cast<double>(unit.rois.size());
        const physical_scale& scale = _request.info.scale;
        unit.centre = {middle.x() * scale.pixel_um, middle.y() * scale.pixel_um, middle.z() * scale.plane_um};
        const double area = pixels * scale.pixel_um * scale.pixel_um;
        unit.volume = area * scale.plane_um;
        unit.radius = _graph.is_flat ? std::sqrt(area / std::numbers::pi)
                                     : std::cbrt(unit.volume * 3 / (4 * std::numbers::pi));
        unit.planes = static_cast<int>(planes.size());
    }

    void add_links()
    {
        for (const auto& [child, parent] : _request.units.links)
            join(parent, child);
        for (const auto& [earlier, later] : _request.units.gaps)
            join(earlier, later);
        for (export_unit& unit : _graph.units)
            for (auto* const list : {&unit.parents, &unit.children}) {    // a link may be stored twice
                std::ranges::sort(*list);
                list->erase(std::ranges::unique(*list).begin(), list->end());
            }
    }

    void join(const std::string& parent, const std::string& child)
    {
        const auto from = _index.find(parent);
        const auto to = _index.find(child);
        if (from == _index.end() || to == _index.end())    // a unit that is left out
            return;
        _graph.units[from->second].children.push_back(to->second);
        _graph.units[to->second].parents.push_back(from->second);
    }

    // The latest, and of these the nearest.
    void keep_parents()
    {
        for (std::size_t i = 0; i < _graph.units.size(); ++i) {
            export_unit& unit = _graph.units[i];
            if (unit.parents.empty())
                continue;
            unit.parent = *std::ranges::min_element(unit.parents, {}, [&](std::size_t p) {
                const export_unit& parent = _graph.units[p];
                return std::pair(unit.t - parent.t, (parent.centre - unit.centre).size());
            });
            _graph.units[*unit.parent].kept_children.push_back(i);
        }
    }

    [[nodiscard]] bool goes_on(const export_unit& unit) const
    {
        return unit.children.size() == 1 && _graph.units[unit.children[0]].parents.size() == 1;
    }

    // Lineages in the order of their first units, tracklets lineage by lineage.
    void number()
    {
        int lineages = 0;
        int tracklets = 0;
        for (std::size_t i = 0; i < _graph.units.size(); ++i) {
            if (_graph.units[i].lineage > 0)
                continue;
            std::vector<std::size_t> members = spread(i, ++lineages);
            std::ranges::sort(members);
            for (const std::size_t m : members)
                if (_graph.units[m].tracklet == 0)
                    number_tracklet(m, ++tracklets);
        }
    }

    std::vector<std::size_t> spread(std::size_t first, int lineage)
    {
        std::vector<std::size_t> reached = {first};
        _graph.units[first].lineage = lineage;
        for (std::size_t next = 0; next < reached.size(); ++next) {
            const export_unit& unit = _graph.units[reached[next]];
            for (const auto* const list : {&unit.parents, &unit.children})
                for (const std::size_t i : *list)
                    if (std::exchange(_graph.units[i].lineage, lineage) != lineage)
                        reached.push_back(i);
        }
        return reached;
    }

    void number_tracklet(std::size_t i, int tracklet)
    {
        _graph.units[i].tracklet = tracklet;
        while (goes_on(_graph.units[i])) {
            i = _graph.units[i].children.front();
            _graph.units[i].tracklet = tracklet;
        }
    }

    const export_request& _request;
    false_units _how;
    loss_report& _report;
    export_graph _graph;
    unit_name_table _names;
    std::map<std::string, std::size_t> _index;    // by head
};

}    // namespace

std::vector<std::pair<std::size_t, std::size_t>> export_graph::edges() const
{
    std::vector<std::pair<std::size_t, std::size_t>> found;
    for (std::size_t child = 0; child < units.size(); ++child)
        for (const std::size_t parent : units[child].parents)
            found.emplace_back(parent, child);
    return found;
}

std::optional<export_graph> make_graph(const export_request& request, false_units how, loss_report& report,
                                       const run_callbacks& callbacks)
{
    return graph_builder(request, how, report).build(callbacks);
}

void report_notes(const export_request& request, notes_kept kept, loss_report& report)
{
    const lineage& units = request.units;
    if (kept == notes_kept::none) {
        for (const std::string& head : units.elite)
            report.add("mark", head, "elite");
        for (const std::string& head : units.edited)
            report.add("mark", head, "edited");
        for (const std::string& head : units.reviewed)
            report.add("mark", head, "reviewed");
        for (const auto& [head, name] : units.called)
            report.add("name", head, name);
    }
    for (const dismissal& d : units.dismissed)
        report.add("dismissal", d.head, d.kind);
}

unit_images images_of(const export_unit& unit)
{
    unit_images images;
    for (const roi* r : unit.rois) {
        images.push_back(std::make_unique<q_roiimg>(*r));
        images.back()->map();
    }
    return images;
}

std::vector<pos2i> corners_of(const roi& r)
{
    std::vector<pos2i> corners;
    pos2i at = r;
    char before = 0;
    for (const char step : r.outline()) {
        if (step < '0' || step > '3')
            continue;
        if (step != before)
            corners.push_back(at);
        before = step;
        at = at + pos2i((step == '3') - (step == '1'), (step == '2') - (step == '0'));
    }
    return corners;
}

std::string real_text(double value)
{
    constexpr int precision = 12;    // digits: what computing adds beyond is none of the measurement
    char digits[32];
    const auto end =
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, precision).ptr;
    std::string text(digits, end);
    return text.find_first_of(".en") == std::string::npos ? text + ".0" : text;
}
