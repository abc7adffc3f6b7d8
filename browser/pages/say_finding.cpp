#include "say_finding.h"

#include "message_line.h"

#include <QCoreApplication>

namespace {

QString tr(const char* text) { return QCoreApplication::translate("SayFinding", text); }

struct finding_text {
    const char* found;    // of its number
    const char* none;
};

const finding_text texts[] = {
    {QT_TRANSLATE_NOOP("SayFinding", "Doubtful: unit %1 has two parents or more"),
     QT_TRANSLATE_NOOP("SayFinding", "No doubtful units")},
    {QT_TRANSLATE_NOOP("SayFinding", "Dead end: unit %1 has no child"),
     QT_TRANSLATE_NOOP("SayFinding", "No dead ends")},
    {QT_TRANSLATE_NOOP("SayFinding", "Unlinked: unit %1 has no parent"),
     QT_TRANSLATE_NOOP("SayFinding", "No unlinked units")},
};

}    // namespace

void say_finding(ORVBrowser& window, walk what, const std::optional<std::string>& unit)
{
    MessageLine* const line = MessageLine::of(window);
    const finding_text& text = texts[static_cast<int>(what)];
    if (line)
        line->say(unit ? tr(text.found).arg(window.ID(*unit)) : tr(text.none));
}
