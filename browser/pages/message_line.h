// message_line.h - the line at the foot of the main window that says what is going on.
//
// What it says, the first that there is: an error, which stays in red until the next key or click; the result
// of the last action, or why it was refused; which mode is armed and what it waits for; what lies under the
// pointer.
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

    void say(const QString& text);          // the result of an action
    void say_error(const QString& text);    // in red
    void say_mode(const QString& text);
    void say_pointer(const QString& text);

    void forget_error();
    void forget_result();

protected:
    void resizeEvent(QResizeEvent* e) override;

private:
    void show_first();

    QString _error;
    QString _mode;
    QString _result;
    QString _pointer;
    const error_listener _errors;
};
