// The colour table and Reset.
#include "color_file.h"
#include "error_line.h"
#include "orvbrowser.h"
#include "roi_colors.h"

#include <QFile>

#include <algorithm>
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

}    // namespace

bool ORVBrowser::loadConfigFile()
{
    if (!qEnvironmentVariableIsSet("HOME"))
        return false;
    if (!read_color_file(QFile::decodeName(qgetenv("HOME") + "/.orvbrowser"), color))
        return false;
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
        error_line("Cannot find the config file in your home directory.");
}

void ORVBrowser::pushButton_reset_clicked()
{
    reset();
    show_changes();
}
