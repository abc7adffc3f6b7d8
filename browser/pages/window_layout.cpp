#include "window_layout.h"

#include "message_line.h"
#include "orvbrowser.h"

#include <QEvent>

WindowLayout::WindowLayout(ORVBrowser& window) : QObject(&window), _window(window), _first_size(window.size())
{
    _placed.push_back({window.frame_canvas, window.frame_canvas->geometry(), room::canvas});
    const int below = window.frame_canvas->geometry().bottom();
    for (QWidget* const child : window.findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        if (!child->isWindow() && child->geometry().top() > below)
            _placed.push_back({child, child->geometry(),
                               qobject_cast<MessageLine*>(child) ? room::wide_below : room::below});
    window.setMinimumSize(smallest);
    window.installEventFilter(this);
}

bool WindowLayout::eventFilter(QObject* watched, QEvent* e)
{
    if (e->type() == QEvent::Resize)
        place();
    return QObject::eventFilter(watched, e);
}

void WindowLayout::place()
{
    const QSize added = _window.size() - _first_size;
    for (const auto& [widget, at, share] : _placed) {
        if (!widget)
            continue;
        if (share == room::canvas)
            widget->setGeometry({at.topLeft(), at.size() + added});
        else
            widget->setGeometry(at.translated(0, added.height())
                                    .adjusted(0, 0, share == room::wide_below ? added.width() : 0, 0));
    }
}
