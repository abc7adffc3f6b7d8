#include "pages.h"

#include "canvas_marks.h"
#include "canvas_view.h"
#include "history_page.h"
#include "lineage_page.h"
#include "message_line.h"
#include "orvbrowser.h"
#include "places.h"
#include "review_page.h"
#include "view_page.h"
#include "window_input.h"
#include "window_layout.h"

void add_pages(ORVBrowser& window)
{
    auto* const view = new CanvasView(window);
    auto* const marks = new CanvasMarks(window, *view);
    auto* const places = new Places(window, *view, *marks);
    auto* const line = new MessageLine(window);
    line->show();
    auto* const walk = new ReviewWalk(window);
    new WindowInput(window, *view, *marks, *places, *line);
    new WindowLayout(window);
    window.tabWidget_control_panel->addTab(new LineagePage(window), LineagePage::tr("Lineage"));
    window.tabWidget_control_panel->addTab(new ReviewPage(window, *view, *walk), ReviewPage::tr("Review"));
    window.tabWidget_control_panel->addTab(new HistoryPage(window), HistoryPage::tr("History"));
    window.tabWidget_control_panel->addTab(new ViewPage(window, *view, *marks), ViewPage::tr("View"));
}
