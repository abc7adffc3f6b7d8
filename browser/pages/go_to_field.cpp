#include "go_to_field.h"

#include "message_line.h"

#include <QKeyEvent>

GoToField::GoToField(ORVBrowser& window, Places& places)
    : QLineEdit(&window), _window(window), _places(places)
{
    setObjectName("go_to");
    setPlaceholderText(tr("ROI key, number or name of a unit, or time point and plane"));
    setMaxLength(60);
    hide();
}

void GoToField::open()
{
    clear();
    const QRect canvas = _window.frame_canvas->geometry();
    setGeometry(canvas.left() + 10, canvas.top() + 10, 340, 26);
    show();
    raise();
    _window.activateWindow();    // the key may come from the tree
    setFocus();
    removeEventFilter(this);
    installEventFilter(this);    // the last one comes first
}

void GoToField::close_field()
{
    hide();
    _window.frame_canvas->setFocus();
}

// To another field, or to another window: coming back from there one is on the canvas.
void GoToField::give_way() { _window.focusWidget() == this ? close_field() : hide(); }

void GoToField::go()
{
    close_field();
    if (!_window.isOpen() || text().trimmed().isEmpty() || _places.go_to_typed(text().toStdString()))
        return;
    if (MessageLine* const line = MessageLine::of(_window))
        line->say_error(tr("There is no such place: %1").arg(text()));
}

bool GoToField::eventFilter(QObject* watched, QEvent* e)
{
    if (e->type() == QEvent::FocusOut && static_cast<QFocusEvent*>(e)->reason() != Qt::PopupFocusReason)
        give_way();
    if (e->type() != QEvent::KeyPress)
        return QLineEdit::eventFilter(watched, e);
    const auto* const key = static_cast<QKeyEvent*>(e);
    switch (key->key()) {
    case Qt::Key_G:    // that opened the field is still held
        return key->isAutoRepeat();
    case Qt::Key_Return:
    case Qt::Key_Enter:
        go();
        return true;
    case Qt::Key_Escape:
        close_field();
        return true;
    default:
        return false;
    }
}
