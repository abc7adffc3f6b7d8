// Units and links as tables.
#include "staged_output.h"
#include "text_exports.h"
#include "unit_flags.h"

#include <map>
#include <utility>

namespace {

constexpr const char* explanation =
    "units.csv: a line for each nucleus at a time point\n"
    "t           time point\n"
    "z, y, x     centre of its pixels, micrometres; pixel 0 and focal plane 0 lie at 0\n"
    "id          its number\n"
    "parent_id   the nucleus that it was, or came from; the nearest one where there are several\n"
    "track_id    nuclei in a row without branching have one number, also over time points without any\n"
    "lineage_id  nuclei that hang together have one number\n"
    "volume      cubic micrometres\n"
    "n_planes    focal planes in which it is outlined\n"
    "n_rois      outlines\n"
    "note        what it is called\n"
    "key         its name in the lineage file\n";

constexpr const char* explanation_of_links = "\nlinks.csv: a line for each link\n"
                                             "source_id, target_id  the earlier and the later nucleus\n"
                                             "kind        move, division (the source has several targets), "
                                             "merge (the target has several sources), gap (time\n"
                                             "            points without it lie between)\n"
                                             "overlap     pixels that both have, in all focal planes\n"
                                             "manual      1 where one of them was changed by hand\n";

// The columns before it, and the note, are those that such tables have elsewhere.
constexpr std::string_view first_own_flag = "elite";

std::string quoted(const std::string& text)
{
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string result = "\"";
    for (const char c : text)
        result += c == '"' ? "\"\"" : std::string(1, c);
    return result + '"';
}

std::string units_text(const export_request& request, const export_graph& graph)
{
    std::string text = "t,z,y,x,id,parent_id,track_id,lineage_id,volume,n_planes,n_rois";
    for (const unit_flag& flag : unit_flags)
        text += std::string(flag.name == first_own_flag ? ",note," : ",") + flag.name;
    text += ",key\n";
    for (std::size_t i = 0; i < graph.units.size(); ++i) {
        const export_unit& unit = graph.units[i];
        text += std::to_string(unit.t);
        for (const double place : {unit.centre.z(), unit.centre.y(), unit.centre.x()})
            text += ',' + real_text(place);
        text += ',' + std::to_string(i) + ',' + (unit.parent ? std::to_string(*unit.parent) : "") + ',' +
                std::to_string(unit.tracklet) + ',' + std::to_string(unit.lineage) + ',' +
                real_text(unit.volume) + ',' + std::to_string(unit.planes) + ',' +
                std::to_string(unit.rois.size());
        for (const unit_flag& flag : unit_flags) {
            if (flag.name == first_own_flag)
                text += ',' + quoted(unit.name);
            text += flag.is_set(request, unit) ? ",1" : ",0";
        }
        text += ',' + unit.head + '\n';
    }
    return text;
}

// Rasters of units, which are asked for again and again while their time point is at hand.
class raster_cache {
public:
    explicit raster_cache(const export_graph& graph) : _graph(graph) {}

    const unit_images& of(std::size_t unit)
    {
        const auto [found, is_new] = _images.try_emplace(unit);
        if (is_new)
            found->second = images_of(_graph.units[unit]);
        return found->second;
    }

    void forget_before(int t)
    {
        if (std::exchange(_first_time, t) != t)
            std::erase_if(_images, [&](const auto& entry) { return _graph.units[entry.first].t < t; });
    }

private:
    const export_graph& _graph;
    std::map<std::size_t, unit_images> _images;
    int _first_time = 0;
};

long long shared(const unit_images& a, const unit_images& b)
{
    long long pixels = 0;
    for (const auto& one : a)
        for (const auto& other : b)
            if (one->z() == other->z())
                pixels += shared_pixels(*one, *other);
    return pixels;
}

const char* kind_of(const export_unit& source, const export_unit& target)
{
    if (target.t - source.t > 1)
        return "gap";
    if (target.parents.size() > 1)
        return "merge";
    return source.children.size() > 1 ? "division" : "move";
}

// Nothing when it was stopped.
std::optional<std::string> links_text(const export_request& request, const export_graph& graph,
                                      const run_callbacks& callbacks)
{
    std::string text = "source_id,target_id,kind,overlap,manual\n";
    raster_cache rasters(graph);
    const auto& edited = request.units.edited;
    int time_point = -1;
    for (const auto& [parent, child] : graph.edges()) {
        const export_unit& source = graph.units[parent];
        const export_unit& target = graph.units[child];
        if (std::exchange(time_point, target.t) != target.t &&
            !callbacks.step(target.t, graph.units.back().t + 1))
            return std::nullopt;
        rasters.forget_before(target.t - 1);
        const bool is_manual = edited.contains(source.head) || edited.contains(target.head);
        text += std::to_string(parent) + ',' + std::to_string(child) + ',' + kind_of(source, target) + ',' +
                std::to_string(shared(rasters.of(parent), rasters.of(child))) + (is_manual ? ",1\n" : ",0\n");
    }
    return text;
}

std::string columns_text()
{
    std::string text = explanation;
    for (const unit_flag& flag : unit_flags)
        text += std::string(flag.name) + std::string(16 - std::string_view(flag.name).size(), ' ') +
                flag.meaning + " (0, 1)\n";
    return text + explanation_of_links;
}

}    // namespace

outcome write_csv(const export_request& request, const std::filesystem::path& folder, loss_report& report,
                  const run_callbacks& callbacks)
{
    const auto graph = make_graph(request, false_units::kept, report, part_of(callbacks, 0, 0.5));
    if (!graph)
        return outcome::stopped;
    report.add("outlines", "", "their number is kept");
    report_notes(request, notes_kept::marks_and_names, report);
    const auto links = links_text(request, *graph, part_of(callbacks, 0.5, 1));
    if (!links)
        return outcome::stopped;
    const bool is_written = write_whole_file(folder / "units.csv", units_text(request, *graph)) &&
                            write_whole_file(folder / "links.csv", *links) &&
                            write_whole_file(folder / "columns.txt", columns_text());
    return is_written ? outcome::done : outcome::refused;
}
