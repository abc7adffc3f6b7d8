// scripted_dialogs.h - a person who answers the modal dialogs, in the order they come up.
//
// An answer is a file name or the text of a message box's button; an empty one, as well as one too few, is
// Escape.
#pragma once
#include <QAbstractItemView>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

class ScriptedDialogs : public QObject {
public:
    explicit ScriptedDialogs(QStringList to_give) : answers(std::move(to_give))
    {
        qApp->installEventFilter(this);
    }

    QStringList answers;    // those not given yet

    // A line for each dialog, such as "open file dialog|Choose a file|*.txt|/start/name.txt" and
    // "A question|Are you sure?|&Yes*|&No", the default button with a star.
    QStringList seen;

protected:
    bool eventFilter(QObject* watched, QEvent* e) override
    {
        if (auto* dialog = qobject_cast<QDialog*>(watched); dialog && e->type() == QEvent::Show)
            QMetaObject::invokeMethod(
                dialog, [this, dialog] { answer(*dialog); },
                Qt::QueuedConnection);    // once it waits for events
        return false;
    }

private:
    void answer(QDialog& dialog)
    {
        const QString given = answers.isEmpty() ? QString() : answers.takeFirst();
        if (auto* files = qobject_cast<QFileDialog*>(&dialog))
            choose(*files, given);
        else if (auto* box = qobject_cast<QMessageBox*>(&dialog))
            press(*box, given);
        if (dialog.isVisible())    // also when it refused the answer
            QTest::keyClick(&dialog, Qt::Key_Escape);
    }

    void choose(QFileDialog& dialog, const QString& filename)
    {
        seen << QStringList({dialog.objectName(), dialog.windowTitle(), dialog.nameFilters().join(";;"),
                             dialog.selectedFiles().value(0)})
                    .join('|');
        dialog.findChild<QAbstractItemView*>("listView")
            ->clearSelection();    // else the start file stays chosen
        dialog.findChild<QLineEdit*>("fileNameEdit")->setText(filename);
        if (!filename.isEmpty())
            static_cast<QDialog&>(dialog).accept();
    }

    void press(QMessageBox& box, const QString& text)
    {
        seen << box.windowTitle() + '|' + box.text();
        QAbstractButton* chosen = nullptr;
        for (QAbstractButton* button : box.buttons()) {
            seen.last() += '|' + button->text() + (button == box.defaultButton() ? "*" : "");
            if (button->text() == text)
                chosen = button;
        }
        if (chosen)
            chosen->click();
    }
};
