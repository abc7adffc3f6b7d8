// keyboard_rules.h - who gets the keys: the canvas, but for what a person is typing.
//
// Buttons, sliders and tabs take the keyboard by Tab alone and hand it back after each use. What they
// have no use for goes to the main window, whose key table so holds wherever the keyboard is. In a field
// keys are typing, but for Up and Down, which go to the window; Enter and Esc hand the keyboard back and do
// nothing else.
#pragma once
#include <QObject>

class ORVBrowser;
class QKeyEvent;
class QWidget;

// True iff what is typed goes into this widget. Null is none.
[[nodiscard]] bool is_field(const QObject* widget);

class KeyboardRules : public QObject {
public:
    // For `root` and all it holds now or later, up to windows of their own. `home` has the keyboard
    // whenever nobody else needs it. Lives as long as `root`.
    KeyboardRules(ORVBrowser& window, QWidget& root, QWidget& home);

protected:
    bool eventFilter(QObject* watched, QEvent* e) override;

private:
    void watch(QWidget& widget);
    void hand_back();
    [[nodiscard]] bool take_key(QObject* watched, QKeyEvent& e);
    [[nodiscard]] bool take_key_of_field(QObject* field, QKeyEvent& e);

    ORVBrowser& _window;
    QWidget& _home;
};
