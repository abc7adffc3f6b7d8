// help_window.h - keys, mouse, modes and colours, in a window of their own.
#pragma once
#include "lineage_access.h"

#include <QTextBrowser>

class HelpWindow : public QTextBrowser {
public:
    explicit HelpWindow(const LineageAccess& access);

    // Tells the colours as they are now.
    void update_text();

private:
    LineageAccess _access;
};
