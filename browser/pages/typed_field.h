// typed_field.h - a field for one thing at a time: Return takes it, anything else leaves it as it was.
#pragma once
#include <QLineEdit>

#include <functional>

class TypedField : public QLineEdit {
public:
    // Enter hands the text without blanks at its ends to `take`, before the rules for every field give the
    // keyboard back.
    TypedField(QWidget* parent, std::function<void(const QString& text)> take);

    // What stands there while nobody types.
    void show_text(const QString& text);

protected:
    void focusInEvent(QFocusEvent* e) override;
    void focusOutEvent(QFocusEvent* e) override;
    bool eventFilter(QObject* watched, QEvent* e) override;

private:
    std::function<void(const QString&)> _take;
    QString _shown;
};
