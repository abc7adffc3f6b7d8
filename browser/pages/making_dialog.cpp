#include "making_dialog.h"

#include <QCoreApplication>
#include <QLocale>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

namespace {

QString tr(const char* text) { return QCoreApplication::translate("LineagePage", text); }

// "1,655 units -> 1,412; 268 links go"
QString change(const making_counts& counts, const QString& what, const making_counts::outcome& outcome)
{
    const QLocale locale(QLocale::English);
    const auto number = [&locale](std::size_t n) { return locale.toString(qulonglong(n)); };
    const QString units = QString("%1 %2 -> %3").arg(number(counts.now), what, number(outcome.after));
    return outcome.links_gone > 0 ? units + tr("; %1 links go").arg(number(outcome.links_gone)) : units;
}

}    // namespace

std::optional<spared> ask_what_to_spare(QWidget* parent, const QString& caption, const QString& what,
                                        const QString& only, const making_counts& counts)
{
    const QPointer<QMessageBox> box = new QMessageBox(parent);
    box->setIcon(QMessageBox::Question);
    box->setWindowTitle(caption);
    box->setText(tr("All anew: %1\n%2: %3\nUntouched: %4")
                     .arg(change(counts, what, counts.all_anew), only, change(counts, what, counts.only_free),
                          change(counts, what, counts.untouched)));
    box->setInformativeText(
        tr("\"Untouched\" spares what you have made, changed, named, reviewed or marked as elite."));
    QAbstractButton* const anew = box->addButton(tr("All anew"), QMessageBox::AcceptRole);
    QPushButton* const free = box->addButton(only, QMessageBox::AcceptRole);
    QAbstractButton* const untouched = box->addButton(tr("Untouched"), QMessageBox::AcceptRole);
    box->addButton(QMessageBox::Cancel);
    box->setDefaultButton(free);
    box->exec();
    if (!box)    // it went with its parent
        return std::nullopt;
    const QAbstractButton* const chosen = box->clickedButton();
    std::optional<spared> answer;
    if (chosen == anew)
        answer = spared::nothing;
    else if (chosen == free)
        answer = spared::what_is;
    else if (chosen == untouched)
        answer = spared::touched;
    delete box;
    return answer;
}
