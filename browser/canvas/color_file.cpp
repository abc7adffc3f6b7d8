#include "color_file.h"

#include "roi_colors.h"

#include <QFile>
#include <QTextStream>

#include <algorithm>
#include <utility>

namespace {

constexpr std::pair<const char*, int> keywords[] = {
    {"FORWARD", FORWARD}, {"BACKWARD", BACKWARD}, {"HIGHLIGHT", HIGHLIGHT}, {"SELECTED", SELECTED},
    {"REMOVED", REMOVED}, {"ELITE", ELITE},       {"LINEAGE", LINEAGE},
};

// Keywords count wherever they stand in the key; a key without any names the default colour.
int color_index_of(const QString& key)
{
    int index = DEFAULT;
    for (const auto& [keyword, state] : keywords)
        if (key.contains(QLatin1String(keyword)))
            index |= state;
    return index;
}

// An invalid colour for what is no colour name; the toolkit's own constructor would print a line.
QColor color_named(const QString& name) { return QColor::isValidColor(name) ? QColor(name) : QColor(); }

}    // namespace

bool read_color_file(const QString& filename, std::span<QColor, 128> colors)
{
    QFile file(filename);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    std::fill(colors.begin(), colors.end(), QColor(Qt::white));
    QTextStream words(&file);
    QString key;
    QString value;
    while (!(words >> key).atEnd()) {
        words >> value;
        if (value.isEmpty())
            break;
        colors[static_cast<std::size_t>(color_index_of(key))] = color_named(value);
    }
    return true;
}
