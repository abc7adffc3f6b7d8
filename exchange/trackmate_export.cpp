// Spots and tracks as one XML file.
#include "staged_output.h"
#include "text_exports.h"
#include "unit_flags.h"

#include <QXmlStreamWriter>

#include <algorithm>
#include <map>

namespace {

struct feature {
    QString key;
    QString name;
    QString short_name;
    const char* dimension;
    bool is_integer;
};

QString key_of(const unit_flag& flag) { return QString(flag.name).toUpper(); }

std::vector<feature> spot_features()
{
    std::vector<feature> features = {{"QUALITY", "Quality", "Quality", "QUALITY", false},
                                     {"POSITION_X", "X", "X", "POSITION", false},
                                     {"POSITION_Y", "Y", "Y", "POSITION", false},
                                     {"POSITION_Z", "Z", "Z", "POSITION", false},
                                     {"POSITION_T", "T", "T", "TIME", false},
                                     {"FRAME", "Frame", "Frame", "NONE", true},
                                     {"RADIUS", "Radius", "R", "LENGTH", false},
                                     {"VISIBILITY", "Visibility", "Visibility", "NONE", true},
                                     {"VOLUME", "Volume", "Volume", "NONE", false},
                                     {"N_PLANES", "Planes", "Planes", "NONE", true}};
    for (const unit_flag& flag : unit_flags)
        features.push_back({key_of(flag), key_of(flag), key_of(flag), "NONE", true});
    return features;
}

const feature edge_features[] = {{"SPOT_SOURCE_ID", "Source spot ID", "Source ID", "NONE", true},
                                 {"SPOT_TARGET_ID", "Target spot ID", "Target ID", "NONE", true},
                                 {"LINK_COST", "Edge cost", "Cost", "COST", false}};

const feature track_features[] = {{"TRACK_INDEX", "Track index", "Index", "NONE", true},
                                  {"TRACK_ID", "Track ID", "ID", "NONE", true}};

QString text(double value) { return QString::fromStdString(real_text(value)); }

const roi& largest_outline(const export_unit& unit)
{
    if (unit.rois.size() == 1)
        return *unit.rois.front();
    const unit_images images = images_of(unit);
    const auto largest =
        std::ranges::max_element(images, {}, [](const auto& image) { return image->size(); });
    return *unit.rois[static_cast<std::size_t>(largest - images.begin())];
}

// A spot has one outline in one plane, or none.
void report_outlines(const export_graph& graph, loss_report& report)
{
    if (!graph.is_flat)
        return report.add("outlines", "", "a sphere stands for each unit");
    for (const export_unit& unit : graph.units)
        if (unit.rois.size() > 1)
            report.add("outlines", unit.head, "the largest of " + std::to_string(unit.rois.size()));
}

class trackmate_writer {
public:
    trackmate_writer(const export_request& request, const export_graph& graph)
        : _request(request), _graph(graph), _xml(&_bytes)
    {
        _xml.setAutoFormatting(true);
        _xml.setAutoFormattingIndent(1);
    }

    QByteArray write()
    {
        _xml.writeStartDocument();
        _xml.writeStartElement("TrackMate");
        _xml.writeAttribute("version", "7.0.0");
        _xml.writeStartElement("Model");
        _xml.writeAttribute("spatialunits", "micron");
        _xml.writeAttribute("timeunits", _request.info.interval_s ? "sec" : "frame");
        _xml.writeStartElement("FeatureDeclarations");
        declare("SpotFeatures", spot_features());
        declare("EdgeFeatures", edge_features);
        declare("TrackFeatures", track_features);
        _xml.writeEndElement();
        write_spots();
        write_tracks();
        _xml.writeEndDocument();
        return std::move(_bytes);
    }

private:
    template <class Features>
    void declare(const char* group, const Features& features)
    {
        _xml.writeStartElement(group);
        for (const feature& f : features) {
            _xml.writeEmptyElement("Feature");
            _xml.writeAttribute("feature", f.key);
            _xml.writeAttribute("name", f.name);
            _xml.writeAttribute("shortname", f.short_name);
            _xml.writeAttribute("dimension", f.dimension);
            _xml.writeAttribute("isint", f.is_integer ? "true" : "false");
        }
        _xml.writeEndElement();
    }

    void write_spots()
    {
        _xml.writeStartElement("AllSpots");
        _xml.writeAttribute("nspots", QString::number(_graph.units.size()));
        for (std::size_t i = 0; i < _graph.units.size(); ++i) {
            const int t = _graph.units[i].t;
            if (i == 0 || _graph.units[i - 1].t != t) {
                _xml.writeStartElement("SpotsInFrame");
                _xml.writeAttribute("frame", QString::number(t));
            }
            write_spot(i);
            if (i + 1 == _graph.units.size() || _graph.units[i + 1].t != t)
                _xml.writeEndElement();
        }
        _xml.writeEndElement();
    }

    void write_spot(std::size_t i)
    {
        const export_unit& unit = _graph.units[i];
        _xml.writeStartElement("Spot");
        _xml.writeAttribute("ID", QString::number(i));
        _xml.writeAttribute("name",
                            unit.name.empty() ? 'N' + QString::number(i) : QString::fromStdString(unit.name));
        _xml.writeAttribute("QUALITY", "1.0");
        _xml.writeAttribute("POSITION_X", text(unit.centre.x()));
        _xml.writeAttribute("POSITION_Y", text(unit.centre.y()));
        _xml.writeAttribute("POSITION_Z", text(unit.centre.z()));
        _xml.writeAttribute("POSITION_T", text(unit.t * _request.info.interval_s.value_or(1)));
        _xml.writeAttribute("FRAME", QString::number(unit.t));
        _xml.writeAttribute("RADIUS", text(unit.radius));
        _xml.writeAttribute("VISIBILITY", "1");    // without it, the spot cannot be read
        _xml.writeAttribute("VOLUME", text(unit.volume));
        _xml.writeAttribute("N_PLANES", QString::number(unit.planes));
        for (const unit_flag& flag : unit_flags)
            _xml.writeAttribute(key_of(flag), flag.is_set(_request, unit) ? "1" : "0");
        if (_graph.is_flat)
            write_outline(unit);
        _xml.writeEndElement();
    }

    // Corners in micrometres from the centre. Pixels lie around their places, outlines run between them.
    void write_outline(const export_unit& unit)
    {
        constexpr std::size_t fewest_corners = 3;
        const std::vector<pos2i> corners = corners_of(largest_outline(unit));
        if (corners.size() < fewest_corners)
            return;
        const double pixel_um = _request.info.scale.pixel_um;
        QString places;
        for (const pos2i corner : corners)
            places += (places.isEmpty() ? "" : " ") + text((corner.x() - 0.5) * pixel_um - unit.centre.x()) +
                      ' ' + text((corner.y() - 0.5) * pixel_um - unit.centre.y());
        _xml.writeAttribute("ROI_N_POINTS", QString::number(corners.size()));
        _xml.writeCharacters(places);    // no blank before it: readers stumble over that
    }

    // Lineages of one unit are no tracks.
    void write_tracks()
    {
        std::map<int, std::vector<std::pair<std::size_t, std::size_t>>> tracks;
        for (std::size_t parent = 0; parent < _graph.units.size(); ++parent)
            for (const std::size_t child : _graph.units[parent].children)
                tracks[_graph.units[parent].lineage].emplace_back(parent, child);
        _xml.writeStartElement("AllTracks");
        int id = 0;
        for (const auto& [lineage, edges] : tracks)
            write_track(id++, edges);
        _xml.writeEndElement();
        _xml.writeStartElement("FilteredTracks");
        for (int shown = 0; shown < id; ++shown) {
            _xml.writeEmptyElement("TrackID");
            _xml.writeAttribute("TRACK_ID", QString::number(shown));
        }
        _xml.writeEndElement();
    }

    void write_track(int id, const std::vector<std::pair<std::size_t, std::size_t>>& edges)
    {
        _xml.writeStartElement("Track");
        _xml.writeAttribute("name", "Track_" + QString::number(id));
        _xml.writeAttribute("TRACK_INDEX", QString::number(id));
        _xml.writeAttribute("TRACK_ID", QString::number(id));
        for (const auto& [parent, child] : edges) {
            _xml.writeEmptyElement("Edge");
            _xml.writeAttribute("SPOT_SOURCE_ID", QString::number(parent));
            _xml.writeAttribute("SPOT_TARGET_ID", QString::number(child));
            _xml.writeAttribute("LINK_COST", "-1.0");
        }
        _xml.writeEndElement();
    }

    const export_request& _request;
    const export_graph& _graph;
    QByteArray _bytes;
    QXmlStreamWriter _xml;
};

}    // namespace

outcome write_trackmate(const export_request& request, const std::filesystem::path& file, loss_report& report,
                        const run_callbacks& callbacks)
{
    const auto graph = make_graph(request, false_units::kept, report, callbacks);
    if (!graph)
        return outcome::stopped;
    report_outlines(*graph, report);
    report_notes(request, notes_kept::marks_and_names, report);
    const QByteArray bytes = trackmate_writer(request, *graph).write();
    return write_whole_file(file, {bytes.data(), static_cast<std::size_t>(bytes.size())}) ? outcome::done
                                                                                          : outcome::refused;
}
