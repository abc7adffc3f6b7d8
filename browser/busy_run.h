// busy_run.h - a long operation that a person waits for: the wait cursor is shown and the tracking buttons
// are disabled until the outermost such run ends.
#pragma once
#include "long_run.h"
#include "orvbrowser.h"

#include <QPointer>

class BusyRun : public LongRun {
public:
    explicit BusyRun(ORVBrowser& window);
    ~BusyRun();

private:
    QPointer<ORVBrowser> _window;
};
