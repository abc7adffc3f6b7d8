#include "pages.h"

#include "canvas_view.h"
#include "lineage_page.h"
#include "message_line.h"
#include "orvbrowser.h"
#include "window_input.h"
#include "window_layout.h"

void add_pages(ORVBrowser& window)
{
    auto* const view = new CanvasView(window);
    new WindowInput(window, *view);
    (new MessageLine(window))->show();
    new WindowLayout(window);
    window.tabWidget_control_panel->addTab(new LineagePage(window), LineagePage::tr("Lineage"));
}
