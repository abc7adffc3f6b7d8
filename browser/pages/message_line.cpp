#include "message_line.h"

#include "orvbrowser.h"

MessageLine::MessageLine(ORVBrowser& window)
    : QLabel(&window), _errors([this](const std::string& line) { say_error(QString::fromStdString(line)); })
{
    setObjectName("message_line");
    setGeometry(14, 860, 592, 17);
    setTextFormat(Qt::PlainText);    // a file name is no markup
}

MessageLine* MessageLine::of(const ORVBrowser& window)
{
    return window.findChild<MessageLine*>("message_line", Qt::FindDirectChildrenOnly);
}

void MessageLine::say(const QString& text) { show_text(text, "palette(window-text)"); }

void MessageLine::say_error(const QString& text) { show_text(text, "#c00000"); }

// What does not fit can be read when the pointer rests on it.
void MessageLine::show_text(const QString& text, const char* color)
{
    setStyleSheet(QString("color: %1").arg(color));
    setText(fontMetrics().elidedText(text, Qt::ElideMiddle, width()));
    setToolTip(text);
}
