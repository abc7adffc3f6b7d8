#include "help_window.h"

#include "roi_colors.h"

#include <QCoreApplication>

namespace {

struct help_row {
    const char* what;
    const char* does;
};

const help_row keys[] = {
    {"Left, D &nbsp; Right, F", "the time point before, the time point after"},
    {"Up &nbsp; Down", "the lower focal plane, the higher focal plane"},
    {"Z", "select across focal planes what overlaps the selection of this time point by more than half"},
    {"C",
     "show or hide the lineage: centroids of this time point in red, of the one before in blue, and links"},
    {"T", "show tracked ROIs only, or all"},
    {"L, W", "choose a lineage head with the next click; pressed again, forget it"},
    {"A", "link the unit of the next click to the lineage head"},
    {"R", "release the unit of the next click from its parents"},
    {"M, X", "merge the unit of the next click into that of the lineage head"},
    {"S", "split the unit of the lineage head: click on two parent units, then on the place of the cut"},
    {"E", "mark or unmark the unit of the next click as elite: known to be right"},
};

const help_row mouse[] = {
    {"left click", "select an ROI, or take it out of the selection; in a mode, what its key says"},
    {"right click", "mark an ROI as removed (false positive), or take the mark away"},
    {"wheel", "focal planes"},
    {"in the tree", "wheel zooms, drag pans, a click on a unit shows it in the main window"},
};

const help_row modes[] = {
    {"pointing hand", "a mode is armed: the next left click does what its key says and ends it"},
    {"Auto", "tracking goes on to the end of the recording until Stop"},
    {"Auto split",
     "doubtful units are split or repaired one by one until it is switched off; mark the units of the "
     "first time point as elite before: parents without elite ancestors count as one nucleus"},
};

struct color_row {
    int index;
    const char* state;
};

const color_row colors[] = {
    {DEFAULT, "untouched"},
    {SELECTED, "selected"},
    {FORWARD, "tracked forward"},
    {BACKWARD, "tracked backward"},
    {FORWARD | BACKWARD, "tracked both ways, or related to the lineage head"},
    {LINEAGE, "the lineage head"},
    {ELITE, "elite"},
    {REMOVED, "removed"},
};

template <class Rows>
QString table(const char* title, const Rows& rows)
{
    QString html = QString("<h3>%1</h3><table cellspacing=4>").arg(title);
    for (const help_row& row : rows)
        html += QString("<tr><td><b>%1</b></td><td>%2</td></tr>").arg(row.what, row.does);
    return html + "</table>";
}

QString swatch(const QColor& color)
{
    return QString("<td bgcolor='%1'>&nbsp;&nbsp;&nbsp;&nbsp;&nbsp;&nbsp;</td>").arg(color.name());
}

}    // namespace

HelpWindow::HelpWindow(const LineageAccess& access) : QTextBrowser(&access.window()), _access(access)
{
    setWindowFlag(Qt::Window);
    setObjectName("helpWindow");
    setWindowTitle(QCoreApplication::translate("HelpWindow", "Nuclear Detector: help"));
    resize(640, 720);
}

void HelpWindow::update_text()
{
    QString html = table("Keys", keys) + table("Mouse", mouse) + table("Modes", modes);
    html += "<h3>Colours; on the right, under the pointer</h3><table cellspacing=4>";
    for (const auto& [index, state] : colors)
        html += "<tr>" + swatch(_access.color(index)) + swatch(_access.color(index | HIGHLIGHT)) +
                QString("<td>%1</td></tr>").arg(state);
    setHtml(html + "</table>");
}
