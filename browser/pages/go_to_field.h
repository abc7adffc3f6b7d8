// go_to_field.h - the field over the canvas where a person types where to go.
#pragma once
#include "places.h"

#include <QLineEdit>

class GoToField : public QLineEdit {
    Q_OBJECT

public:
    GoToField(ORVBrowser& window, Places& places);

    void open();

protected:
    bool eventFilter(QObject* watched, QEvent* e) override;    // before the rules for every field

private:
    void close_field();
    void give_way();
    void go();

    ORVBrowser& _window;
    Places& _places;
};
