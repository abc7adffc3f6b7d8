#include "scale_dialog.h"

#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QPointer>

namespace {

class ScaleDialog : public QDialog {
    Q_DECLARE_TR_FUNCTIONS(ScaleDialog)

public:
    ScaleDialog(QWidget* parent, recording_info info) : QDialog(parent), _info(std::move(info))
    {
        setObjectName("scaleDialog");
        setWindowTitle(tr("Scale -- ORVBrowser"));
        add_number(_pixel, "pixel_um", tr("Pixel (micrometres)"), _info.scale.pixel_um, 0.001, 1000);
        add_number(_plane, "plane_um", tr("Focal-plane step (micrometres)"), _info.scale.plane_um, 0.001,
                   1000);
        add_number(_interval, "interval_s", tr("Interval (seconds; 0: not known)"),
                   _info.interval_s.value_or(0), 0, 1e6);
        const key_range planes = _info.focal_planes.value_or(default_focal_planes);
        add_plane(_first, "first_plane", tr("First focal plane"), planes.first);
        add_plane(_last, "last_plane", tr("Last focal plane"), planes.last);
        auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
        _form.addRow(buttons);
        connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    }

    // As it was but for the fields that a person has changed: a field may show less than a file holds.
    [[nodiscard]] recording_info changed() const
    {
        recording_info info = _info;
        if (_pixel.is_changed())
            info.scale.pixel_um = _pixel.field->value();
        if (_plane.is_changed())
            info.scale.plane_um = _plane.field->value();
        if (_interval.is_changed())
            info.interval_s =
                _interval.field->value() > 0 ? std::optional(_interval.field->value()) : std::nullopt;
        if (_first.is_changed() || _last.is_changed())
            info.focal_planes =
                key_range{_first.field->value(), std::max(_first.field->value(), _last.field->value())};
        return info;
    }

private:
    template <class Field>
    struct input {
        Field* field = nullptr;
        decltype(std::declval<Field>().value()) before{};    // as the field shows it

        [[nodiscard]] bool is_changed() const { return field->value() != before; }
    };

    template <class Field, class Value>
    void add(input<Field>& to, const char* name, const QString& label, Value value)
    {
        to.field->setObjectName(name);
        to.field->setValue(value);
        to.before = to.field->value();
        _form.addRow(label, to.field);
    }

    void add_number(input<QDoubleSpinBox>& to, const char* name, const QString& label, double value,
                    double least, double most)
    {
        to.field = new QDoubleSpinBox;
        to.field->setDecimals(6);
        to.field->setRange(least, most);
        add(to, name, label, value);
    }

    void add_plane(input<QSpinBox>& to, const char* name, const QString& label, int value)
    {
        to.field = new QSpinBox;
        to.field->setRange(0, 999);
        add(to, name, label, value);
    }

    const recording_info _info;
    QFormLayout& _form = *new QFormLayout(this);
    input<QDoubleSpinBox> _pixel, _plane, _interval;
    input<QSpinBox> _first, _last;
};

}    // namespace

void edit_scale(ORVBrowser& window)
{
    const QPointer<ORVBrowser> self(&window);
    const QPointer<ScaleDialog> dialog = new ScaleDialog(&window, window.info());
    const unsigned long recording = window.recording();
    const bool is_accepted = dialog->exec() == QDialog::Accepted && dialog && self;
    if (is_accepted && window.has_rois() && window.recording() == recording)
        window.change_info(dialog->changed());
    delete dialog;
}
