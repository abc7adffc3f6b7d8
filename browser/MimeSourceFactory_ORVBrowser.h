// MimeSourceFactory_ORVBrowser.h - the standard icons compiled into the program, by name.
#pragma once
#include <QPixmap>
#include <QString>
#include <QStringList>

class MimeSourceFactory_ORVBrowser {
public:
    [[nodiscard]] static QStringList names();

    // The icon of this name, such as "fileopen"; a null pixmap when there is none.
    [[nodiscard]] static QPixmap data(const QString& name);

    [[nodiscard]] static QPixmap application_icon();
};
