#include "help_window.h"

#include "roi_colors.h"

#include <QCoreApplication>

namespace {

struct help_row {
    const char* what;
    const char* does;
};

const help_row words[] = {
    {QT_TRANSLATE_NOOP("HelpWindow", "ROI"),
     QT_TRANSLATE_NOOP("HelpWindow", "the outline of one nucleus in one image")},
    {QT_TRANSLATE_NOOP("HelpWindow", "unit"),
     QT_TRANSLATE_NOOP("HelpWindow", "the ROIs of one nucleus on all focal planes of one time point")},
    {QT_TRANSLATE_NOOP("HelpWindow", "link"),
     QT_TRANSLATE_NOOP("HelpWindow",
                       "from a unit to its parent: the same nucleus, or its mother, one time point before")},
    {QT_TRANSLATE_NOOP("HelpWindow", "chosen nucleus"),
     QT_TRANSLATE_NOOP("HelpWindow", "the unit that A, M and S work on: choose it with L")},
    {QT_TRANSLATE_NOOP("HelpWindow", "elite"), QT_TRANSLATE_NOOP("HelpWindow", "a unit known to be right")},
};

const help_row keys[] = {
    {"Left, D &nbsp; Right, F",
     QT_TRANSLATE_NOOP("HelpWindow", "the time point before, the time point after")},
    {"Up &nbsp; Down", QT_TRANSLATE_NOOP("HelpWindow", "the lower focal plane, the higher focal plane")},
    {"Z", QT_TRANSLATE_NOOP("HelpWindow",
                            "select across focal planes what overlaps the selection of this time point by "
                            "more than half")},
    {"C",
     QT_TRANSLATE_NOOP("HelpWindow",
                       "show or hide the lineage: centroids of this time point in red, of the one before in "
                       "blue, and links")},
    {"T", QT_TRANSLATE_NOOP("HelpWindow", "show tracked ROIs only, or all")},
    {"L, W",
     QT_TRANSLATE_NOOP(
         "HelpWindow",
         "choose a nucleus with the next click. Pressed again: nothing is chosen any more, and A and R "
         "are put away")},
    {"A", QT_TRANSLATE_NOOP("HelpWindow", "link the unit of the next click to the chosen nucleus")},
    {"R",
     QT_TRANSLATE_NOOP(
         "HelpWindow",
         "remove all links of the unit of the next click to its parents; it becomes the chosen nucleus")},
    {"M, X", QT_TRANSLATE_NOOP("HelpWindow", "merge the unit of the next click into the chosen nucleus")},
    {"S",
     QT_TRANSLATE_NOOP("HelpWindow",
                       "split the chosen nucleus: click on two parent units, then on the place of the cut")},
    {"E", QT_TRANSLATE_NOOP("HelpWindow", "mark or unmark the unit of the next click as elite")},
    {"Ctrl+Z &nbsp; Ctrl+Shift+Z, Ctrl+Y", QT_TRANSLATE_NOOP("HelpWindow", "undo, redo: whatever it was")},
    {"Ctrl+S", QT_TRANSLATE_NOOP("HelpWindow", "save everything that has changed beside the ROI file")},
    {"Tab",
     QT_TRANSLATE_NOOP("HelpWindow",
                       "to the buttons, sliders and fields; after use the keys are the canvas's again")},
    {"Enter, Esc", QT_TRANSLATE_NOOP("HelpWindow", "in a field: done with typing")},
    {"Esc", QT_TRANSLATE_NOOP("HelpWindow", "put away the mode that is armed, or the field to go somewhere")},
};

const help_row view_keys[] = {
    {"+ &nbsp; -, Ctrl+wheel",
     QT_TRANSLATE_NOOP("HelpWindow", "larger, smaller: about the middle, about the pointer")},
    {"0 &nbsp; 1", QT_TRANSLATE_NOOP("HelpWindow", "one screen pixel for each pixel; the whole picture")},
    {QT_TRANSLATE_NOOP("HelpWindow", "middle button, Space + left button"),
     QT_TRANSLATE_NOOP("HelpWindow", "drag the picture; Shift+wheel and the scroll bars move it too")},
    {"H", QT_TRANSLATE_NOOP("HelpWindow", "while held, the image without outlines")},
    {"Home", QT_TRANSLATE_NOOP("HelpWindow", "the plane with the most ROIs of this time point")},
    {"PageUp &nbsp; PageDown",
     QT_TRANSLATE_NOOP("HelpWindow", "the next plane with ROIs: with a lower number, with a higher one")},
    {"Ctrl+Left &nbsp; Ctrl+Right", QT_TRANSLATE_NOOP("HelpWindow", "the first and the last time point")},
    {"G", QT_TRANSLATE_NOOP(
              "HelpWindow",
              "go to a ROI key, the number or name of a unit, or \"time point, plane\" as two numbers")},
    {QT_TRANSLATE_NOOP("HelpWindow", "Backspace, back and forward buttons"),
     QT_TRANSLATE_NOOP("HelpWindow", "through the places one has been to")},
};

const help_row quick_keys[] = {
    {QT_TRANSLATE_NOOP("HelpWindow", "Ctrl + left click"),
     QT_TRANSLATE_NOOP("HelpWindow", "choose a nucleus, without L before it")},
    {QT_TRANSLATE_NOOP("HelpWindow", "Ctrl + Shift + left click"),
     QT_TRANSLATE_NOOP("HelpWindow", "link a nucleus to the chosen one, or remove the link that there is")},
    {QT_TRANSLATE_NOOP("HelpWindow", "Shift + right click"),
     QT_TRANSLATE_NOOP("HelpWindow",
                       "mark the whole unit as false positive, or unmark it; with Ctrl too, and all its "
                       "descendants. A ROI in no unit: what Z would reach")},
    {"N / P",
     QT_TRANSLATE_NOOP("HelpWindow", "the next finding / the one before, as the page Review lists them")},
    {"Return",
     QT_TRANSLATE_NOOP("HelpWindow", "do what is proposed for the finding shown, and go to the next")},
    {"I", QT_TRANSLATE_NOOP("HelpWindow", "the finding shown is not an error")},
    {"V", QT_TRANSLATE_NOOP("HelpWindow", "the nucleus shown, or chosen, has been reviewed; once more: not")},
    {"K",
     QT_TRANSLATE_NOOP("HelpWindow",
                       "show where that nucleus would be cut in two; , and . move the cut, Return does it")},
    {"U", QT_TRANSLATE_NOOP("HelpWindow",
                            "remove the one link between the chosen nucleus and that of the next click")},
    {"O", QT_TRANSLATE_NOOP("HelpWindow",
                            "swapped tracks: the chosen nucleus and that of the next click, of the same time "
                            "point, change parents")},
    {"J",
     QT_TRANSLATE_NOOP("HelpWindow",
                       "the chosen nucleus is missing for some time points: go to where it is seen again "
                       "and click it. That the track ends and begins there is no error any more; the same "
                       "again takes it back")},
    {"[ &nbsp; ]",
     QT_TRANSLATE_NOOP("HelpWindow",
                       "the parent, the larger child of the chosen nucleus becomes the chosen one")},
};

const help_row canvas_marks[] = {
    {QT_TRANSLATE_NOOP("HelpWindow", "red cross"), QT_TRANSLATE_NOOP("HelpWindow", "a false positive")},
    {"1 &nbsp; 2", QT_TRANSLATE_NOOP("HelpWindow", "the parents picked for a split")},
    {QT_TRANSLATE_NOOP("HelpWindow", "a number"),
     QT_TRANSLATE_NOOP("HelpWindow", "the chosen nucleus; G takes the number")},
    {QT_TRANSLATE_NOOP("HelpWindow", "white ring"),
     QT_TRANSLATE_NOOP("HelpWindow", "the unit that was gone to; yellow: its parents (p) and children (c)")},
    {QT_TRANSLATE_NOOP("HelpWindow", "blue, orange, yellow lines"),
     QT_TRANSLATE_NOOP("HelpWindow", "tails: where nuclei came from, where they go; fresh daughters")},
};

const help_row mouse[] = {
    {QT_TRANSLATE_NOOP("HelpWindow", "left click"),
     QT_TRANSLATE_NOOP("HelpWindow",
                       "select an ROI, or take it out of the selection; in a mode, what its key says")},
    {QT_TRANSLATE_NOOP("HelpWindow", "right click"),
     QT_TRANSLATE_NOOP("HelpWindow", "mark an ROI as a false positive, or take the mark away")},
    {QT_TRANSLATE_NOOP("HelpWindow", "wheel"), QT_TRANSLATE_NOOP("HelpWindow", "focal planes")},
    {QT_TRANSLATE_NOOP("HelpWindow", "in the tree"),
     QT_TRANSLATE_NOOP(
         "HelpWindow",
         "wheel zooms, drag pans, a click on a unit shows and chooses it, a double click asks for its name; "
         "keys act in the main window")},
};

const help_row modes[] = {
    {QT_TRANSLATE_NOOP("HelpWindow", "pointing hand"),
     QT_TRANSLATE_NOOP("HelpWindow",
                       "a mode is armed: the next left click does what its key says and ends it")},
    {"Auto", QT_TRANSLATE_NOOP("HelpWindow", "tracking goes on to the end of the recording until Stop")},
    {"Auto split",
     QT_TRANSLATE_NOOP(
         "HelpWindow",
         "doubtful units are split or repaired one by one until it is switched off; mark the units of the "
         "first time point as elite before: parents without elite ancestors count as one nucleus")},
};

const help_row buttons[] = {
    {"Drop FP",
     QT_TRANSLATE_NOOP("HelpWindow",
                       "take every ROI marked as a false positive out of the recording; the next save leaves "
                       "them out")},
    {"Clean Up",
     QT_TRANSLATE_NOOP("HelpWindow",
                       "mark every ROI that is neither selected nor tracked as a false positive")},
    {"Restore ROIs",
     QT_TRANSLATE_NOOP("HelpWindow",
                       "replace the ROIs of all time points after this one by those of an ROI file of "
                       "this recording")},
    {"Read Info, Save Info",
     QT_TRANSLATE_NOOP("HelpWindow", "the selection, from and to a file; reading adds to it")},
    {"Read FP, Save FP",
     QT_TRANSLATE_NOOP("HelpWindow", "the false positives, from and to a file; reading adds to them")},
    {"Forward, Backward tracking",
     QT_TRANSLATE_NOOP("HelpWindow", "step in time and mark what overlaps the ROIs selected or tracked")},
    {"Select all",
     QT_TRANSLATE_NOOP("HelpWindow", "select every ROI of this time point that is no false positive")},
    {"Reset",
     QT_TRANSLATE_NOOP(
         "HelpWindow",
         "forget what was tracked, and all units, links and elite marks; the selection and the false "
         "positives stay")},
};

struct color_row {
    int index;
    const char* state;
};

const color_row colors[] = {
    {DEFAULT, QT_TRANSLATE_NOOP("HelpWindow", "untouched")},
    {SELECTED, QT_TRANSLATE_NOOP("HelpWindow", "selected")},
    {FORWARD, QT_TRANSLATE_NOOP("HelpWindow", "tracked forward")},
    {BACKWARD, QT_TRANSLATE_NOOP("HelpWindow", "tracked backward")},
    {FORWARD | BACKWARD,
     QT_TRANSLATE_NOOP("HelpWindow", "tracked both ways, or related to the chosen nucleus")},
    {LINEAGE, QT_TRANSLATE_NOOP("HelpWindow", "the chosen nucleus")},
    {ELITE, QT_TRANSLATE_NOOP("HelpWindow", "elite")},
    {REMOVED, QT_TRANSLATE_NOOP("HelpWindow", "false positive")},
};

QString tr(const char* text) { return QCoreApplication::translate("HelpWindow", text); }

template <class Rows>
QString table(const char* title, const Rows& rows)
{
    QString html = QString("<h3>%1</h3><table cellspacing=4>").arg(tr(title));
    for (const help_row& row : rows)
        html += QString("<tr><td><b>%1</b></td><td>%2</td></tr>").arg(tr(row.what), tr(row.does));
    return html + "</table>";
}

QString swatch(const QColor& color)
{
    return QString("<td bgcolor='%1'>&nbsp;&nbsp;&nbsp;&nbsp;&nbsp;&nbsp;</td>").arg(color.name());
}

}    // namespace

HelpWindow::HelpWindow(ORVBrowser& window) : QTextBrowser(&window), _window(window)
{
    setWindowFlag(Qt::Window);
    setObjectName("helpWindow");
    setWindowTitle(tr("Nuclear Detector: help"));
    resize(640, 720);
}

void HelpWindow::update_text()
{
    QString html = table(QT_TRANSLATE_NOOP("HelpWindow", "Words"), words) +
                   table(QT_TRANSLATE_NOOP("HelpWindow", "Keys"), keys) +
                   table(QT_TRANSLATE_NOOP("HelpWindow", "Mouse"), mouse) +
                   table(QT_TRANSLATE_NOOP("HelpWindow", "View and places"), view_keys) +
                   table(QT_TRANSLATE_NOOP("HelpWindow", "Corrections in fewer inputs"), quick_keys) +
                   table(QT_TRANSLATE_NOOP("HelpWindow", "Marks on the canvas"), canvas_marks) +
                   table(QT_TRANSLATE_NOOP("HelpWindow", "Modes"), modes) +
                   table(QT_TRANSLATE_NOOP("HelpWindow", "Buttons"), buttons);
    html += "<h3>" + tr("Colours; on the right, under the pointer") + "</h3><table cellspacing=4>";
    for (const auto& [index, state] : colors)
        html += "<tr>" + swatch(_window.color_of(index)) + swatch(_window.color_of(index | HIGHLIGHT)) +
                QString("<td>%1</td></tr>").arg(tr(state));
    setHtml(html + "</table>");
}
