#include "input_kinds.h"

#include "view_page.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QLineEdit>

#include <algorithm>
#include <cstring>

bool is_typing()
{
    const QWidget* const focus = QApplication::focusWidget();
    return qobject_cast<const QLineEdit*>(focus) || qobject_cast<const QAbstractSpinBox*>(focus);
}

bool is_looking(int key)
{
    static const int keys[] = {Qt::Key_Up,   Qt::Key_Down,  Qt::Key_PageUp, Qt::Key_PageDown,
                               Qt::Key_Plus, Qt::Key_Minus, Qt::Key_0,      Qt::Key_1,
                               Qt::Key_H,    Qt::Key_Space, Qt::Key_Shift,  Qt::Key_Control,
                               Qt::Key_Alt,  Qt::Key_C,     Qt::Key_T};
    return std::ranges::find(keys, key) != std::end(keys);
}

bool acts(const QWidget* control)
{
    for (const QWidget* w = control; w; w = w->parentWidget())
        if (qobject_cast<const ViewPage*>(w))
            return false;
    return qobject_cast<const QAbstractButton*>(control) ||
           qobject_cast<const QAbstractItemView*>(control->parentWidget());
}

bool arms_a_mode(int key) { return key > 0 && key < 128 && std::strchr("AELMRSWX", key); }
