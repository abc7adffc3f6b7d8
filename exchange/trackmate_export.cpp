// Spots and tracks as one XML file.
#include "staged_output.h"
#include "text_exports.h"
#include "unit_flags.h"

#include <QXmlStreamWriter>

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
        const auto name = _request.units.called.find(unit.head);
        _xml.writeEmptyElement("Spot");
        _xml.writeAttribute("ID", QString::number(i));
        _xml.writeAttribute("name", name != _request.units.called.end() ? QString::fromStdString(name->second)
                                                                        : 'N' + QString::number(i));
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

bool write_trackmate(const export_request& request, const std::filesystem::path& file, loss_report& report)
{
    const export_graph graph = make_graph(request, false_units::kept, report);
    report.add("outlines", "", "a sphere stands for each unit");
    report_notes(request, notes_kept::marks_and_names, report);
    const QByteArray bytes = trackmate_writer(request, graph).write();
    return write_whole_file(file, {bytes.data(), static_cast<std::size_t>(bytes.size())});
}
