// The colour table, the file it is read from, and Reset.
#include "orvbrowser.h"
#include "roi_colors.h"

#include <QFile>
#include <QTextStream>

#include <algorithm>
#include <iostream>
#include <iterator>
#include <utility>

namespace {

constexpr std::pair<int, const char*> default_colors[] = {
    {DEFAULT, "#a8a8ff"},
    {DEFAULT | HIGHLIGHT, "#cfcfff"},
    {FORWARD, "#b7ff00"},
    {FORWARD | HIGHLIGHT, "#d4ffc0"},
    {BACKWARD, "#ee86ff"},
    {BACKWARD | HIGHLIGHT, "#f7c3ff"},
    {FORWARD | BACKWARD, "#ff8f00"},
    {FORWARD | BACKWARD | HIGHLIGHT, "#ffb66c"},
    {ELITE, "#ffff00"},
    {ELITE | HIGHLIGHT, "#ffffaa"},
    {SELECTED, "#00ffda"},
    {SELECTED | HIGHLIGHT, "#8effef"},
    {REMOVED, "#000000"},
    {REMOVED | HIGHLIGHT, "#aaaaaa"},
    {LINEAGE, "#ff5555"},
    {LINEAGE | HIGHLIGHT, "#ffaaaa"},
};

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

bool ORVBrowser::loadConfigFile()
{
    if (!qEnvironmentVariableIsSet("HOME"))
        return false;
    QFile config(QFile::decodeName(qgetenv("HOME") + "/.orvbrowser"));
    if (!config.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    std::fill(std::begin(color), std::end(color), QColor(Qt::white));
    QTextStream words(&config);
    QString key;
    QString value;
    while (!(words >> key).atEnd()) {
        words >> value;
        if (value.isEmpty())
            break;
        color[color_index_of(key)] = color_named(value);
    }
    show_changes();
    return true;
}

void ORVBrowser::initColors()
{
    if (loadConfigFile())
        return;
    std::fill(std::begin(color), std::end(color), QColor(Qt::white));
    for (const auto& [index, name] : default_colors)
        color[index] = QColor(name);
}

void ORVBrowser::pushButton_reload_config_file_clicked()
{
    if (!loadConfigFile())
        std::cerr << "Cannot find the config file in your home directory." << std::endl;
}

void ORVBrowser::pushButton_reset_clicked()
{
    m_fwd_roi_set.clear();
    m_bwd_roi_set.clear();
    m_mouse_over_roi_set.clear();
    m_make_unit_roi_set.clear();
    m_head_members.clear();
    m_members_head.clear();
    m_elite_head_roi_set.clear();
    m_smallest_enclosing_circle.clear();
    m_linkage_set.clear();
    m_linkage_multimap.clear();
    ++m_edits;
    show_changes();
}
