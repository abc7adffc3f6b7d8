#include "typed_field.h"

#include <QFocusEvent>
#include <QKeyEvent>

#include <utility>

TypedField::TypedField(QWidget* parent, std::function<void(const QString&)> take)
    : QLineEdit(parent), _take(std::move(take))
{
}

void TypedField::show_text(const QString& text)
{
    _shown = text;
    if (!hasFocus())
        setText(text);
}

void TypedField::focusInEvent(QFocusEvent* e)
{
    removeEventFilter(this);
    installEventFilter(this);    // the last one comes first
    QLineEdit::focusInEvent(e);
}

void TypedField::focusOutEvent(QFocusEvent* e)
{
    QLineEdit::focusOutEvent(e);
    if (e->reason() != Qt::PopupFocusReason)
        setText(_shown);
}

bool TypedField::eventFilter(QObject* watched, QEvent* e)
{
    const int key = e->type() == QEvent::KeyPress ? static_cast<QKeyEvent*>(e)->key() : 0;
    if (key == Qt::Key_Return || key == Qt::Key_Enter)
        _take(text().trimmed());
    return QLineEdit::eventFilter(watched, e);
}
