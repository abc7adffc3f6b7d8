#include "recording_file.h"

#include "error_line.h"
#include "file_io.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace {

constexpr int last_place = 999;    // what keys have room for
constexpr int largest_side = 65535;
constexpr double largest_step = 1000;       // micrometres; the smallest is the inverse
constexpr double longest_interval = 1e6;    // seconds; likewise
constexpr std::size_t longest_file = 1 << 20;

// Each take_ function leaves `value` alone when there is no such member; false when it is none of its kind.
bool take_positive(const QJsonObject& from, const char* name, double most, double& value)
{
    const QJsonValue found = from[QLatin1String(name)];
    if (found.isUndefined())
        return true;
    const double number = found.toDouble();    // 0 for what is no number
    if (!(number >= 1 / most && number <= most))
        return false;
    value = number;
    return true;
}

bool take_interval(const QJsonObject& from, std::optional<double>& interval)
{
    double seconds = 0;
    if (!take_positive(from, "interval_s", longest_interval, seconds))
        return false;
    if (seconds > 0)
        interval = seconds;
    return true;
}

// Two whole numbers from `least` to `most`.
bool take_pair(const QJsonObject& from, const char* name, int least, int most, std::optional<key_range>& pair)
{
    const QJsonValue found = from[QLatin1String(name)];
    if (found.isUndefined())
        return true;
    const QJsonArray numbers = found.toArray();
    pair = key_range{numbers.at(0).toInt(-1), numbers.at(1).toInt(-1)};    // -1 for what is no whole number
    return numbers.size() == 2 && std::min(pair->first, pair->last) >= least &&
           std::max(pair->first, pair->last) <= most;
}

bool take_range(const QJsonObject& from, const char* name, std::optional<key_range>& range)
{
    return take_pair(from, name, 0, last_place, range) && (!range || range->first <= range->last);
}

bool take_size(const QJsonObject& from, std::optional<pixel_size>& size)
{
    std::optional<key_range> pair;
    if (!take_pair(from, "image_size", 1, largest_side, pair))
        return false;
    if (pair)
        size = pixel_size{pair->first, pair->last};
    return true;
}

// The members that this program does not know.
std::string further_in(QJsonObject object)
{
    for (const char* known :
         {"pixel_um", "plane_um", "interval_s", "focal_planes", "time_points", "image_size"})
        object.remove(QLatin1String(known));
    return object.isEmpty() ? std::string()
                            : QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

// What is wrong with the text, or nothing.
const char* parse(const std::string& text, recording_info& info)
{
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(text));
    if (!document.isObject())
        return "no JSON object";
    const QJsonObject object = document.object();
    if (!take_positive(object, "pixel_um", largest_step, info.scale.pixel_um))
        return "pixel_um is no number from 0.001 to 1000";
    if (!take_positive(object, "plane_um", largest_step, info.scale.plane_um))
        return "plane_um is no number from 0.001 to 1000";
    if (!take_interval(object, info.interval_s))
        return "interval_s is no number from 0.000001 to 1000000";
    if (!take_range(object, "focal_planes", info.focal_planes))
        return "focal_planes are no two planes of 0 to 999 in ascending order";
    if (!take_range(object, "time_points", info.time_points))
        return "time_points are no two time points of 0 to 999 in ascending order";
    if (!take_size(object, info.image_size))
        return "image_size is no width and height in pixels";
    info.further = further_in(object);
    return nullptr;
}

std::string contents(file_reader& file)
{
    std::string text;
    while (file.peek() >= 0 && text.size() <= longest_file) {
        const auto piece = file.at_hand();
        text.append(piece);
        file.take(piece.size());
    }
    return text;
}

}    // namespace

std::string recording_file_of(const std::string& roi_file)
{
    return roi_file.substr(0, roi_file.size() - (roi_file.ends_with(".roi") ? 4 : 0)) + ".recording.json";
}

recording_info read_recording_file(const std::string& filename)
{
    std::error_code error;
    if (!std::filesystem::exists(filename, error) && !error)
        return {};
    file_reader file(filename);
    if (!file.is_open()) {
        error_line("Cannot open ", filename);
        return {};
    }
    const std::string text = contents(file);
    if (file.failed()) {
        error_line(file.failure());
        return {};
    }
    recording_info info;
    const bool is_too_long = text.size() > longest_file;
    const char* const fault = is_too_long ? "too long for what describes a recording" : parse(text, info);
    if (!fault)
        return info;
    error_line(filename, ": ", fault);
    return {};
}

bool take_recording_text(const std::string& text, recording_info& info)
{
    recording_info told;
    if (parse(text, told))
        return false;
    info = told;
    return true;
}

std::string recording_text(const recording_info& info)
{
    QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(info.further)).object();
    object["pixel_um"] = info.scale.pixel_um;
    object["plane_um"] = info.scale.plane_um;
    if (info.interval_s)
        object["interval_s"] = *info.interval_s;
    if (info.focal_planes)
        object["focal_planes"] = QJsonArray{info.focal_planes->first, info.focal_planes->last};
    if (info.time_points)
        object["time_points"] = QJsonArray{info.time_points->first, info.time_points->last};
    if (info.image_size)
        object["image_size"] = QJsonArray{info.image_size->width, info.image_size->height};
    const QByteArray text = QJsonDocument(object).toJson();
    // With much of other programs in it, as short as it was read.
    return (text.size() <= static_cast<qsizetype>(longest_file)
                ? text
                : QJsonDocument(object).toJson(QJsonDocument::Compact))
        .toStdString();
}

bool write_recording_file(const std::string& filename, const recording_info& info)
{
    replacing_file file(filename);
    file.append(recording_text(info));
    return file.commit_or_say("Cannot open ");
}
