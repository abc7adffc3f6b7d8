#include "keyboard_rules.h"

#include "orvbrowser.h"

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QChildEvent>
#include <QDoubleSpinBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSpinBox>
#include <QTabBar>

bool is_field(const QObject* widget)
{
    return qobject_cast<const QLineEdit*>(widget) || qobject_cast<const QAbstractSpinBox*>(widget);
}

namespace {

// What a person uses with the pointer, and only now and then with keys.
bool is_tool(const QObject* widget)
{
    return qobject_cast<const QAbstractButton*>(widget) || qobject_cast<const QAbstractSlider*>(widget) ||
           qobject_cast<const QTabBar*>(widget);
}

// What was typed and does not hold yet is gone.
void put_back(QObject* field)
{
    if (auto* const whole = qobject_cast<QSpinBox*>(field))
        whole->setValue(whole->value());
    if (auto* const real = qobject_cast<QDoubleSpinBox*>(field))
        real->setValue(real->value());
}

using shortcut = void (*)(ORVBrowser&);

// Null when the keys are none. They are taken also when there is nothing to do: else their letters would be.
shortcut shortcut_of(const QKeyEvent& e)
{
    const Qt::KeyboardModifiers modifiers = e.modifiers() & ~Qt::KeypadModifier;
    const bool is_shifted = modifiers == (Qt::ControlModifier | Qt::ShiftModifier);
    if (modifiers != Qt::ControlModifier && !(is_shifted && e.key() == Qt::Key_Z))
        return nullptr;
    if (e.key() == Qt::Key_S)
        return [](ORVBrowser& window) { (void)window.save_all(); };
    if (e.key() == Qt::Key_Y || is_shifted)
        return [](ORVBrowser& window) { window.redo(); };
    if (e.key() == Qt::Key_Z)
        return [](ORVBrowser& window) { window.undo(); };
    return nullptr;
}

bool is_use(const QObject* tool, int key)
{
    if (qobject_cast<const QAbstractButton*>(tool))
        return key == Qt::Key_Space;
    return (key >= Qt::Key_Home && key <= Qt::Key_Down) || key == Qt::Key_PageUp || key == Qt::Key_PageDown;
}

}    // namespace

KeyboardRules::KeyboardRules(ORVBrowser& window, QWidget& root, QWidget& home)
    : QObject(&root), _window(window), _home(home)
{
    watch(root);
}

void KeyboardRules::watch(QWidget& widget)
{
    widget.installEventFilter(this);
    for (QObject* const child : widget.children())
        if (auto* const inner = qobject_cast<QWidget*>(child); inner && !inner->isWindow())
            watch(*inner);
}

void KeyboardRules::hand_back() { _home.setFocus(); }

bool KeyboardRules::eventFilter(QObject* watched, QEvent* e)
{
    switch (e->type()) {
    case QEvent::ChildPolished:
        if (auto* const child = qobject_cast<QWidget*>(static_cast<QChildEvent*>(e)->child());
            child && !child->isWindow())
            watch(*child);
        return false;
    case QEvent::MouseButtonPress:    // the arrows of a field are tools
        if (is_tool(watched) || qobject_cast<const QAbstractSpinBox*>(watched))
            hand_back();
        return false;
    case QEvent::ShortcutOverride:    // else a field would take Ctrl+Z for its own
        if (!shortcut_of(*static_cast<QKeyEvent*>(e)))
            return false;
        e->accept();
        return true;
    case QEvent::KeyPress:
        return take_key(watched, *static_cast<QKeyEvent*>(e));
    case QEvent::KeyRelease:    // once the tool has done what the key asks for
        if (is_tool(watched) && is_use(watched, static_cast<QKeyEvent*>(e)->key()))
            QMetaObject::invokeMethod(this, &KeyboardRules::hand_back, Qt::QueuedConnection);
        return false;
    case QEvent::Wheel:    // the way it goes over the canvas
        if (watched != _window.slider_focal_plane)
            return false;
        _window.wheelEvent(static_cast<QWheelEvent*>(e));
        return true;
    default:
        return false;
    }
}

bool KeyboardRules::take_key(QObject* watched, QKeyEvent& e)
{
    if (const shortcut run = shortcut_of(e)) {
        run(_window);
        return true;
    }
    if (is_field(watched))
        return take_key_of_field(watched, e);
    const bool is_walk = e.key() == Qt::Key_Tab || e.key() == Qt::Key_Backtab;
    if (!is_tool(watched) || is_walk || is_use(watched, e.key()))
        return false;
    _window.keyPressEvent(&e);
    return true;
}

bool KeyboardRules::take_key_of_field(QObject* field, QKeyEvent& e)
{
    switch (e.key()) {
    case Qt::Key_Escape:
        put_back(field);
        [[fallthrough]];
    case Qt::Key_Return:
    case Qt::Key_Enter:
        hand_back();
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
        _window.keyPressEvent(&e);
        return true;
    default:
        return false;
    }
}
