// help_window.h - keys, mouse, modes and colours, in a window of their own.
#pragma once
#include "orvbrowser.h"

#include <QTextBrowser>

class HelpWindow : public QTextBrowser {
public:
    explicit HelpWindow(ORVBrowser& window);

    // Tells the colours as they are now.
    void update_text();

private:
    ORVBrowser& _window;
};
