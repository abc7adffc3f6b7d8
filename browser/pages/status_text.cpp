#include "status_text.h"

#include "keygen.h"
#include "unit_names.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>

namespace {

QString tr(const char* text) { return QCoreApplication::translate("StatusText", text); }

QString number_of(ORVBrowser& window, const std::string& unit)
{
    return is_roi_key(unit) ? QString::number(window.ID(unit)) : QString::fromStdString(unit);
}

QString number_and_name_of(ORVBrowser& window, const std::string& unit, unit_name_table& known)
{
    const std::string name = name_of(window, unit, known);
    const QString number = number_of(window, unit);
    return name.empty() ? number : number + " (" + QString::fromStdString(name) + ')';
}

QString numbers_and_names_of(ORVBrowser& window, const std::set<std::string>& units, unit_name_table& known)
{
    QStringList texts;
    for (const std::string& unit : units)
        texts << number_and_name_of(window, unit, known);
    return texts.isEmpty() ? tr("none") : texts.join(' ');
}

struct step_text {
    const char* title;    // without its keys
    const char* text;     // of them, in the order of time: a parent comes before its child
};

const step_text step_texts[] = {
    {"Link", QT_TRANSLATE_NOOP("StatusText", "Linked %1 -> %2")},
    {"Unlink", QT_TRANSLATE_NOOP("StatusText", "Removed links: %1 %2")},
    {"Merge", QT_TRANSLATE_NOOP("StatusText", "Merged %1 and %2")},
    {"Swap", QT_TRANSLATE_NOOP("StatusText", "%1 and %2 have changed parents")},
    {"Gap", QT_TRANSLATE_NOOP("StatusText", "%1 is seen again as %2")},
    {"No gap", QT_TRANSLATE_NOOP("StatusText", "%1 is not seen again as %2")},
    {"Split", QT_TRANSLATE_NOOP("StatusText", "Split %1 %2")},
    {"Name", QT_TRANSLATE_NOOP("StatusText", "Named %1 %2")},
    {"Elite", QT_TRANSLATE_NOOP("StatusText", "Marked %1 as elite %2")},
    {"Not elite", QT_TRANSLATE_NOOP("StatusText", "%1 is not elite any more %2")},
};

QString mode_text(ORVBrowser::armed mode, std::size_t parents)
{
    switch (mode) {
    case ORVBrowser::armed::elite:
        return tr("Elite: click the nucleus to mark or unmark.");
    case ORVBrowser::armed::choose:
        return tr("Choose: click the nucleus.");
    case ORVBrowser::armed::remove:
        return tr("Remove links: click the nucleus that loses its parents.");
    case ORVBrowser::armed::add:
        return tr("Link: click the nucleus to link to the chosen one.");
    case ORVBrowser::armed::merge:
        return tr("Merge: click the nucleus to merge with the chosen one.");
    case ORVBrowser::armed::split:
        return parents == 0   ? tr("Split: click the first parent.")
               : parents == 1 ? tr("Split: click the second parent.")
                              : tr("Split: click where to cut.");
    case ORVBrowser::armed::none:
        break;
    }
    return {};
}

}    // namespace

QString text_of_mode(ORVBrowser& window)
{
    const QString text = mode_text(window.armed_mode(), window.split_parents().size());
    return text.isEmpty() ? text : text + ' ' + tr("Esc: cancel");
}

QString text_of_step(ORVBrowser& window, const std::string& title)
{
    QStringList words = QString::fromStdString(title).split(' ');
    if (words.contains("N/A"))
        return text_of_no_unit();
    QStringList keys;
    while (!words.isEmpty() && (is_roi_key(words.last().toStdString()) || words.last() == "and")) {
        if (words.last() != "and")
            keys.prepend(words.last());
        words.removeLast();
    }
    const QString what = words.join(' ');
    for (const auto& [of, text] : step_texts) {
        if (what != of)
            continue;
        keys.sort();
        unit_name_table known;
        for (QString& key : keys)
            key = number_and_name_of(window, key.toStdString(), known);
        return tr(text).arg(keys.value(0), keys.value(1)).trimmed();
    }
    return (QStringList{what} + keys).join(' ');
}

QString text_of_choice(ORVBrowser& window, const std::string& unit)
{
    unit_name_table known;
    return is_roi_key(unit) ? tr("Chosen: %1").arg(number_and_name_of(window, unit, known))
                            : text_of_no_unit();
}

QString text_of_no_unit() { return tr("This ROI is in no unit: make units first (page Lineage)."); }

QString text_of_no_choice() { return tr("No nucleus is chosen: press L and click one."); }

QString text_of_failed_split(const std::string& chosen, const std::set<std::string>& parents)
{
    if (!is_roi_key(chosen))
        return text_of_no_choice();
    return std::ranges::all_of(parents, is_roi_key)
               ? tr("Not split: no cut was found there.")
               : tr("Not split: a parent is in no unit. Press S and click two units.");
}

QString text_of_refusal(ORVBrowser& window, ORVBrowser::armed mode, const std::string& clicked)
{
    using armed = ORVBrowser::armed;
    const bool needs_unit = mode == armed::add || mode == armed::merge || mode == armed::remove;
    if (needs_unit && !is_roi_key(clicked))
        return text_of_no_unit();
    if ((mode == armed::add || mode == armed::merge) && !is_roi_key(window.chosen()))
        return text_of_no_choice();
    if (mode == armed::merge)
        return clicked == window.head(window.chosen())
                   ? tr("A nucleus cannot be merged with itself.")
                   : tr("Not merged: only units of one time point can be merged.");
    if (mode == armed::add)
        return tr("Not linked: the units are linked already, or not of successive time points.");
    if (mode == armed::remove)
        return tr("This nucleus has no parents.");
    return {};
}

QString text_of_pixel(ORVBrowser& window, QPoint at)
{
    if (!window.isOpen())
        return {};
    QStringList parts{tr("x %1, y %2").arg(at.x()).arg(at.y())};
    const QPixmap* const image = window.image_on_view();
    if (image && image->rect().contains(at))
        parts << tr("grey %1").arg(qGray(image->toImage().pixel(at)));
    const std::string key = window.xyROI(at.x(), at.y());
    if (key.empty())
        return parts.join("; ");
    const std::string unit = window.head(key);
    parts << tr("ROI %1").arg(QString::fromStdString(key));
    unit_name_table known;    // in a deep lineage the way to where a name was typed is walked once
    if (is_roi_key(unit))
        parts << tr("unit %1").arg(number_and_name_of(window, unit, known))
              << tr("parents %1").arg(numbers_and_names_of(window, window.parents(unit), known))
              << tr("children %1").arg(numbers_and_names_of(window, window.children(unit), known));
    else
        parts << tr("no unit");
    return parts.join("; ");
}
