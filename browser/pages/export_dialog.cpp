#include "export_dialog.h"

#include "export.h"
#include "file_dialogs.h"

#include <utility>

namespace {

// By export_format: where it is written when nobody says otherwise, behind the name of the recording.
constexpr const char* endings[] = {"_ctc", ".geff", ".xml", "_tables"};

}    // namespace

ExportDialog::ExportDialog(ORVBrowser& window)
    : ExchangeDialog(window, "exportDialog", tr("Export -- ORVBrowser"), tr("Export"))
{
    format = new QComboBox(this);
    format->setObjectName("format");
    format->setFocusPolicy(Qt::TabFocus);
    format->addItems({tr("Cell Tracking Challenge (masks and table of tracks)"), tr("GEFF (graph, zarr)"),
                      tr("TrackMate (XML)"), tr("Tables (CSV)")});
    form().addRow(tr("Format"), format);
    target = add_path("target", tr("Write to"), wanted::file, QFileDialog::AcceptSave);
    replace = new QCheckBox(tr("Replace an export that is there already"), this);
    replace->setObjectName("replace");
    form().addRow({}, replace);
    resize(640, 420);
    connect(format, &QComboBox::currentIndexChanged, this, &ExportDialog::propose_target);
    propose_target();
}

void ExportDialog::show_for(ORVBrowser& window)
{
    auto* dialog = window.findChild<ExportDialog*>("exportDialog", Qt::FindDirectChildrenOnly);
    if (!dialog)
        dialog = new ExportDialog(window);
    if (!dialog->isVisible() && dialog->start->isEnabled())
        dialog->propose_target();    // the recording may be another one
    dialog->show();
    dialog->raise();
}

void ExportDialog::propose_target()
{
    target->setText(default_file(window_of().dataset(), endings[format->currentIndex()]));
}

// From copies: while it is written the recording may be edited or closed.
void ExportDialog::begin()
{
    ORVBrowser& window = window_of();
    if (!window.has_rois()) {
        say(tr("No recording is open."));
        return;
    }
    const roidb rois = window.rois();
    const lineage units = window.current_lineage();
    const export_request request{.rois = rois,
                                 .units = units,
                                 .info = window.info(),
                                 .false_positives = window.false_positives(),
                                 .image_folder = window.make_img_base(window.dataset()),
                                 .target = native_name(target->text()),
                                 .replaces = replace->isChecked()};
    const auto chosen = static_cast<export_format>(format->currentIndex());
    const QPointer<ExportDialog> self(this);
    const unsigned long recording = window.recording();
    loss_report report;
    const outcome found = work(
        [&](const run_callbacks& callbacks) { return export_recording(chosen, request, report, callbacks); });
    if (self && found == outcome::done)
        show_losses(std::move(report), recording);
}

void ExportDialog::show_losses(loss_report report, unsigned long recording)
{
    QStringList kinds;
    for (const auto& [kind, count] : report.counts())
        kinds << QString("%1 %2").arg(QString::fromStdString(kind)).arg(count);
    const QString text =
        tr("Written to %3: units %1, links %2\nLost: %4")
            .arg(report.units)
            .arg(report.links)
            .arg(QString::fromStdString(report.written), kinds.isEmpty() ? tr("nothing") : kinds.join(", "));
    show_result(text, std::move(report.losses), recording);
}
