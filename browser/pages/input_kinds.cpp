#include "input_kinds.h"

#include "keyboard_rules.h"
#include "view_page.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>

#include <algorithm>
#include <cstring>

bool is_typing() { return is_field(QApplication::focusWidget()); }

bool is_looking(int key)
{
    static const int keys[] = {Qt::Key_Up,   Qt::Key_Down,  Qt::Key_PageUp, Qt::Key_PageDown,
                               Qt::Key_Plus, Qt::Key_Minus, Qt::Key_0,      Qt::Key_1,
                               Qt::Key_H,    Qt::Key_Space, Qt::Key_Shift,  Qt::Key_Control,
                               Qt::Key_Alt,  Qt::Key_C,     Qt::Key_T};
    return std::ranges::find(keys, key) != std::end(keys);
}

bool is_idle_repeat(const QEvent* e)
{
    static const int keys[] = {Qt::Key_Up,          Qt::Key_Down,        Qt::Key_Left,   Qt::Key_Right,
                               Qt::Key_D,           Qt::Key_F,           Qt::Key_PageUp, Qt::Key_PageDown,
                               Qt::Key_BracketLeft, Qt::Key_BracketRight};
    if (e->type() != QEvent::KeyPress)
        return false;
    const auto* const key = static_cast<const QKeyEvent*>(e);
    return key->isAutoRepeat() && std::ranges::find(keys, key->key()) == std::end(keys);
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
