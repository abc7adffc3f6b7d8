#include "message_line.h"

#include "orvbrowser.h"

MessageLine::MessageLine(ORVBrowser& window)
    : QLabel(&window), _errors([this](const std::string& line) { say_error(QString::fromStdString(line)); })
{
    setObjectName("message_line");
    setGeometry(14, 860, 592, 17);
    setTextFormat(Qt::PlainText);    // a file name is no markup
    QFont small = font();
    small.setPixelSize(12);
    setFont(small);
}

MessageLine* MessageLine::of(const ORVBrowser& window)
{
    return window.findChild<MessageLine*>("message_line", Qt::FindDirectChildrenOnly);
}

void MessageLine::say(const QString& text)
{
    _result = text;
    show_first();
}

void MessageLine::say_error(const QString& text)
{
    _error = text;
    show_first();
}

void MessageLine::say_mode(const QString& text)
{
    _mode = text;
    show_first();
}

void MessageLine::say_pointer(const QString& text)
{
    _pointer = text;
    show_first();
}

void MessageLine::forget_error() { say_error({}); }

void MessageLine::forget_result() { say({}); }

void MessageLine::resizeEvent(QResizeEvent*) { show_first(); }

// What does not fit can be read when the pointer rests on it.
void MessageLine::show_first()
{
    const QString& said = !_error.isEmpty()    ? _error
                          : !_result.isEmpty() ? _result
                          : !_mode.isEmpty()   ? _mode
                                               : _pointer;
    const QString fitting = fontMetrics().elidedText(said, Qt::ElideMiddle, width());
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText,
                    _error.isEmpty() ? QPalette().color(QPalette::WindowText) : QColor("#c00000"));
    if (colors != palette())
        setPalette(colors);
    if (fitting != text())
        setText(fitting);
    if (said != toolTip())
        setToolTip(said);
}
