#include "MimeSourceFactory_ORVBrowser.h"

// Resources of a static library must be linked in; the macro works only outside namespaces.
static void link_in_icons() { Q_INIT_RESOURCE(icons); }

static QPixmap icon(const QString& name)
{
    link_in_icons();
    return QPixmap(":/icons/" + name);
}

QStringList MimeSourceFactory_ORVBrowser::names()
{
    return {"filenew", "fileopen", "filesave", "print",     "undo",
            "redo",    "editcut",  "editcopy", "editpaste", "searchfind"};
}

QPixmap MimeSourceFactory_ORVBrowser::data(const QString& name)
{
    return names().contains(name) ? icon(name) : QPixmap();
}

QPixmap MimeSourceFactory_ORVBrowser::application_icon() { return icon("orvbrowser"); }
