#include "making_dialog.h"

#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QLocale>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

namespace {

QString tr(const char* text) { return QCoreApplication::translate("LineagePage", text); }

// "1,655 units -> 1,412"
QString change(const making_counts& counts, const QString& what, std::size_t after)
{
    const QLocale locale(QLocale::English);
    return QString("%1 %2 -> %3")
        .arg(locale.toString(qulonglong(counts.now)), what, locale.toString(qulonglong(after)));
}

QDoubleSpinBox* add_size(QFormLayout& form, const char* name, const QString& label, double value,
                         double lowest)
{
    auto* const field = new QDoubleSpinBox;
    field->setObjectName(name);
    field->setDecimals(4);
    field->setRange(lowest, 100000);
    field->setValue(value);
    form.addRow(label, field);
    return field;
}

QSpinBox* add_plane(QFormLayout& form, const char* name, const QString& label, int value)
{
    auto* const field = new QSpinBox;
    field->setObjectName(name);
    field->setRange(0, 999);
    field->setValue(value);
    form.addRow(label, field);
    return field;
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
    box->setInformativeText(tr("\"Untouched\" spares what you have made, changed or marked as elite."));
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

void edit_scale(ORVBrowser& window)
{
    const QPointer<ORVBrowser> self(&window);
    const QPointer<QDialog> dialog = new QDialog(&window);
    dialog->setObjectName("scaleDialog");
    dialog->setWindowTitle(tr("Scale -- ORVBrowser"));
    auto* const form = new QFormLayout(dialog);
    const recording_info info = window.info();
    auto* const pixel = add_size(*form, "pixel_um", tr("Pixel (micrometres)"), info.scale.pixel_um, 0.0001);
    auto* const plane =
        add_size(*form, "plane_um", tr("Focal-plane step (micrometres)"), info.scale.plane_um, 0.0001);
    auto* const interval =
        add_size(*form, "interval_s", tr("Interval (seconds; 0: not known)"), info.interval_s.value_or(0), 0);
    const key_range planes = info.focal_planes.value_or(key_range{0, 55});
    auto* const first = add_plane(*form, "first_plane", tr("First focal plane"), planes.first);
    auto* const last = add_plane(*form, "last_plane", tr("Last focal plane"), planes.last);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    form->addRow(buttons);
    QObject::connect(buttons, &QDialogButtonBox::accepted, dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, dialog, &QDialog::reject);
    const bool is_accepted = dialog->exec() == QDialog::Accepted && dialog && self;
    if (is_accepted && window.has_rois()) {
        recording_info changed = info;
        changed.scale = {pixel->value(), plane->value()};
        changed.interval_s = interval->value() > 0 ? std::optional(interval->value()) : std::nullopt;
        const key_range wanted{first->value(), std::max(first->value(), last->value())};
        if (wanted != planes)
            changed.focal_planes = wanted;
        window.change_info(changed);
    }
    delete dialog;
}
