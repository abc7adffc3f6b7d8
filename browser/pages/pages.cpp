#include "pages.h"

#include "history_page.h"
#include "lineage_page.h"
#include "message_line.h"
#include "orvbrowser.h"

void add_pages(ORVBrowser& window)
{
    (new MessageLine(window))->show();
    window.tabWidget_control_panel->addTab(new LineagePage(window), LineagePage::tr("Lineage"));
    window.tabWidget_control_panel->addTab(new HistoryPage(window), HistoryPage::tr("History"));
}
