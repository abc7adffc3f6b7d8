// A graph with properties in a zarr folder: JSON files that tell the shapes of arrays, and their bare bytes.
#include "staged_output.h"
#include "text_exports.h"
#include "unit_flags.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>

namespace {

namespace fs = std::filesystem;
static_assert(std::endian::native == std::endian::little, "arrays are written as they lie in memory");

template <class Value>
struct array_type;    // its name in arrays and in the description
template <>
struct array_type<std::int64_t> {
    static constexpr const char *code = "<i8", *name = "int64";
};
template <>
struct array_type<std::uint64_t> {
    static constexpr const char *code = "<u8", *name = "uint64";
};
template <>
struct array_type<std::uint8_t> {
    static constexpr const char *code = "|u1", *name = "uint8";
};
template <>
struct array_type<std::uint16_t> {
    static constexpr const char *code = "<u2", *name = "uint16";
};
template <>
struct array_type<double> {
    static constexpr const char *code = "<f8", *name = "float64";
};
template <>
struct array_type<float> {
    static constexpr const char *code = "<f4", *name = "float32";
};
template <>
struct array_type<bool> {
    static constexpr const char *code = "|b1", *name = "bool";
};

std::string json(const QJsonObject& object) { return QJsonDocument(object).toJson().toStdString(); }

// Groups and arrays below a folder. After the first failure, which is one line, nothing more is written.
class zarr_writer {
public:
    explicit zarr_writer(fs::path root) : _root(std::move(root)) {}

    [[nodiscard]] bool is_ok() const noexcept { return _ok; }

    void group(const std::string& path) { write(path + "/.zgroup", R"({"zarr_format": 2})"); }

    void attributes(const QJsonObject& object) { write(".zattrs", json(object)); }

    // Rows of `width` values, or a plain row of values for 0.
    template <class Value>
    void array(const std::string& path, const std::vector<Value>& values, std::size_t width = 0)
    {
        const auto rows = static_cast<qint64>(values.size() / std::max<std::size_t>(width, 1));
        QJsonArray shape = {rows};
        QJsonArray chunks = {std::max<qint64>(rows, 1)};
        if (width > 0) {
            shape.append(static_cast<qint64>(width));
            chunks.append(static_cast<qint64>(width));
        }
        const bool is_bool = std::is_same_v<Value, bool>;
        write(path + "/.zarray", json({{"zarr_format", 2},
                                       {"shape", shape},
                                       {"chunks", chunks},
                                       {"dtype", array_type<Value>::code},
                                       {"compressor", QJsonValue::Null},
                                       {"fill_value", is_bool ? QJsonValue(false) : QJsonValue(0)},
                                       {"order", "C"},
                                       {"filters", QJsonValue::Null},
                                       {"dimension_separator", "."}}));
        if (!values.empty())    // an empty array has no chunk
            write(path + (width > 0 ? "/0.0" : "/0"), bytes_of(values));
    }

private:
    template <class Value>
    static std::string_view bytes_of(const std::vector<Value>& values)
    {
        return {reinterpret_cast<const char*>(values.data()), values.size() * sizeof(Value)};
    }

    static std::string bytes_of(const std::vector<bool>& values) { return {values.begin(), values.end()}; }

    void write(const std::string& path, std::string_view bytes)
    {
        std::error_code error;
        fs::create_directories((_root / path).parent_path(), error);
        _ok = _ok && write_whole_file(_root / path, bytes);
    }

    fs::path _root;
    bool _ok = true;
};

class geff_writer {
public:
    geff_writer(const export_request& request, const export_graph& graph, const fs::path& folder)
        : _request(request), _graph(graph), _zarr(folder)
    {
    }

    bool write()
    {
        for (const char* const group : {".", "nodes", "nodes/props", "edges", "edges/props"})
            _zarr.group(group);
        write_graph();
        write_properties();
        write_outlines();
        if (std::ranges::any_of(_graph.units, [](const export_unit& u) { return !u.name.empty(); }))
            write_names();
        _zarr.attributes({{"geff", description()}});
        return _zarr.is_ok();
    }

private:
    void write_graph()
    {
        std::vector<std::int64_t> ids;
        for (std::size_t i = 0; i < _graph.units.size(); ++i)
            ids.push_back(static_cast<std::int64_t>(i));
        std::vector<std::int64_t> edges;
        for (const auto& [parent, child] : _graph.edges()) {
            edges.push_back(static_cast<std::int64_t>(parent));
            edges.push_back(static_cast<std::int64_t>(child));
        }
        _zarr.array("nodes/ids", ids);
        _zarr.array("edges/ids", edges, 2);
    }

    // A value of every unit.
    template <class Value, class ValueOf>
    void property(const char* name, const char* unit, ValueOf value_of)
    {
        std::vector<Value> values;
        for (const export_unit& u : _graph.units)
            values.push_back(static_cast<Value>(value_of(u)));
        const std::string path = std::string("nodes/props/") + name;
        _zarr.group(path);
        _zarr.array(path + "/values", values);
        describe(name, array_type<Value>::name, unit, false);
    }

    void describe(const char* name, const char* type, const char* unit, bool is_varlength)
    {
        QJsonObject entry{{"identifier", name}, {"dtype", type}, {"varlength", is_varlength}};
        if (*unit)
            entry["unit"] = unit;
        _properties[QLatin1String(name)] = entry;
    }

    void write_properties()
    {
        property<std::int64_t>("t", "frame", [](const export_unit& u) { return u.t; });
        property<double>("z", "micrometer", [](const export_unit& u) { return u.centre.z(); });
        property<double>("y", "micrometer", [](const export_unit& u) { return u.centre.y(); });
        property<double>("x", "micrometer", [](const export_unit& u) { return u.centre.x(); });
        property<double>("radius", "micrometer", [](const export_unit& u) { return u.radius; });
        property<double>("volume", "", [](const export_unit& u) { return u.volume; });
        property<std::uint16_t>("n_planes", "", [](const export_unit& u) { return u.planes; });
        property<std::uint16_t>("n_rois", "", [](const export_unit& u) { return u.rois.size(); });
        property<std::int64_t>("track_id", "", [](const export_unit& u) { return u.tracklet; });
        property<std::int64_t>("lineage_id", "", [](const export_unit& u) { return u.lineage; });
        for (const unit_flag& flag : unit_flags)
            property<bool>(flag.name, "", [&](const export_unit& u) { return flag.is_set(_request, u); });
    }

    // The corners of all outlines of all units one behind the other, and where those of each unit begin.
    void write_outlines()
    {
        constexpr std::size_t columns = 3;
        std::vector<float> corners;
        std::vector<std::uint64_t> places;
        for (const export_unit& unit : _graph.units) {
            const std::size_t first = corners.size();
            const roi* before = nullptr;
            for (const roi* r : unit.rois) {
                if (before && before->z() == r->z())
                    corners.insert(corners.end(), columns, std::numeric_limits<float>::quiet_NaN());
                before = r;
                for (const pos2i p : corners_of(*r))
                    corners.insert(corners.end(), {static_cast<float>(r->z()), static_cast<float>(p.y()),
                                                   static_cast<float>(p.x())});
            }
            places.insert(places.end(), {first, (corners.size() - first) / columns, columns});
        }
        _zarr.group("nodes/props/outline");
        _zarr.array("nodes/props/outline/values", places, 3);
        _zarr.array("nodes/props/outline/data", corners);
        describe("outline", array_type<float>::name, "pixel", true);
    }

    // Texts have no width of their own in these arrays: their bytes, and where those of each unit begin.
    void write_names()
    {
        std::vector<std::uint8_t> bytes;
        std::vector<std::uint64_t> places;
        for (const export_unit& unit : _graph.units) {
            places.insert(places.end(), {bytes.size(), unit.name.size()});
            bytes.insert(bytes.end(), unit.name.begin(), unit.name.end());
        }
        _zarr.group("nodes/props/name");
        _zarr.array("nodes/props/name/values", places, 2);
        _zarr.array("nodes/props/name/data", bytes);
        describe("name", "str", "", true);
    }

    [[nodiscard]] QJsonObject description() const
    {
        QJsonObject time{{"name", "t"}, {"type", "time"}, {"unit", "frame"}};
        if (_request.info.interval_s) {
            time["scale"] = *_request.info.interval_s;
            time["scaled_unit"] = "second";
        }
        QJsonArray axes = {time};
        for (const char* const name : {"z", "y", "x"})
            axes.append(QJsonObject{{"name", name}, {"type", "space"}, {"unit", "micrometer"}});
        return {{"geff_version", "1.2"},
                {"directed", true},
                {"axes", axes},
                {"node_props_metadata", _properties},
                {"edge_props_metadata", QJsonObject()},
                {"sphere", "radius"},
                {"track_node_props", QJsonObject{{"tracklet", "track_id"}, {"lineage", "lineage_id"}}},
                {"extra", extra()}};
    }

    [[nodiscard]] QJsonObject extra() const
    {
        QJsonObject meanings{{"outline",
                              "rows of focal plane, y, x: corners of outlines in pixels, counted from the "
                              "top-left corner of the image; rows of one plane are a closed polygon, a "
                              "row of NaN parts two of one plane"},
                             {"volume", "cubic micrometers"},
                             {"n_planes", "focal planes with an outline"},
                             {"n_rois", "outlines"}};
        if (_properties.contains("name"))
            meanings["name"] = "what it is called, in UTF-8";
        for (const unit_flag& flag : unit_flags)
            meanings[QLatin1String(flag.name)] = flag.meaning;
        return {{"dataset", QString::fromStdString(_request.rois.name())},
                {"pixel_um", _request.info.scale.pixel_um},
                {"plane_um", _request.info.scale.plane_um},
                {"properties", meanings}};
    }

    const export_request& _request;
    const export_graph& _graph;
    zarr_writer _zarr;
    QJsonObject _properties;
};

}    // namespace

outcome write_geff(const export_request& request, const fs::path& folder, loss_report& report,
                   const run_callbacks& callbacks)
{
    const auto graph = make_graph(request, false_units::kept, report, callbacks);
    if (!graph)
        return outcome::stopped;
    report_notes(request, notes_kept::marks_and_names, report);
    return geff_writer(request, *graph, folder).write() ? outcome::done : outcome::refused;
}
