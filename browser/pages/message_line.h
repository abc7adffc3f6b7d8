// message_line.h - the line at the foot of the main window that says what has happened.
#pragma once
#include "error_line.h"

#include <QLabel>

class ORVBrowser;

class MessageLine : public QLabel {
    Q_OBJECT

public:
    // A child of the window, below its control panel. Shows every line for standard error by itself.
    explicit MessageLine(ORVBrowser& window);

    // The one of this window; null where no pages were added.
    [[nodiscard]] static MessageLine* of(const ORVBrowser& window);

    void say(const QString& text);
    void say_error(const QString& text);    // in red

private:
    void show_text(const QString& text, const char* color);

    const error_listener _errors;
};
