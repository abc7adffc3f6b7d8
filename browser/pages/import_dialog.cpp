#include "import_dialog.h"

#include "file_dialogs.h"
#include "import_options.h"

#include <QDir>

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <utility>

namespace {

struct option_row {
    const char* name;    // of the option
    const char* label;
    const char* hint;    // shown while nothing is typed
};

const option_row option_rows[] = {
    {"range", QT_TRANSLATE_NOOP("ImportDialog", "Grey range"), "low:high (0.1 % and 99.9 % of all pixels)"},
    {"bin", QT_TRANSLATE_NOOP("ImportDialog", "Bin"), "N x N pixels become one (1)"},
    {"crop", QT_TRANSLATE_NOOP("ImportDialog", "Crop"), "x,y,width,height in pixels (all)"},
    {"times", QT_TRANSLATE_NOOP("ImportDialog", "Time points"), "first:last (all)"},
    {"planes", QT_TRANSLATE_NOOP("ImportDialog", "Focal planes"), "first:last (all)"},
    {"pixel", QT_TRANSLATE_NOOP("ImportDialog", "Pixel"), "micrometres (0.105)"},
    {"plane", QT_TRANSLATE_NOOP("ImportDialog", "Focal-plane step"), "micrometres (0.5)"},
    {"interval", QT_TRANSLATE_NOOP("ImportDialog", "Interval"), "seconds (not known)"},
};

const option_row& row_of(const import_option& option)
{
    return *std::ranges::find(option_rows, std::string_view(option.name), &option_row::name);
}

}    // namespace

ImportDialog::ImportDialog(ORVBrowser& window)
    : ExchangeDialog(window, "importDialog", tr("Import -- ORVBrowser"), tr("Import"))
{
    kind = new QComboBox(this);
    kind->setObjectName("kind");
    kind->setFocusPolicy(Qt::TabFocus);
    kind->addItems({tr("Label images (TIFF)"), tr("Cell Tracking Challenge (masks and table of tracks)")});
    form().addRow(tr("Format"), kind);
    source = add_path("source", tr("Label images"), wanted::file_or_folder, QFileDialog::AcceptOpen);
    images = add_path("images", tr("Grey images, if any"), wanted::file_or_folder, QFileDialog::AcceptOpen);
    folder = add_path("folder", tr("Write into folder"), wanted::folder, QFileDialog::AcceptOpen);
    folder->setText(QDir::cleanPath(default_file({}, "")));
    name = add_line("name", tr("Name of the recording"), "");
    for (const import_option& option : import_options()) {
        const option_row& row = row_of(option);
        options.push_back(add_line(option.name, tr(row.label), tr(row.hint)));
    }
    replace = new QCheckBox(tr("Replace what has this name there"), this);
    replace->setObjectName("replace");
    form().addRow({}, replace);
    resize(640, 640);
}

void ImportDialog::show_for(ORVBrowser& window)
{
    auto* dialog = window.findChild<ImportDialog*>("importDialog", Qt::FindDirectChildrenOnly);
    if (!dialog)
        dialog = new ImportDialog(window);
    dialog->show();
    dialog->raise();
}

// False when one is none: its field is named.
bool ImportDialog::read_options(import_request& request)
{
    for (std::size_t i = 0; i < options.size(); ++i) {
        const QString text = options[i]->text().trimmed();
        const import_option& option = import_options()[i];
        if (text.isEmpty() || option.read(text.toStdString(), request))
            continue;
        say(tr("%1: %2 is no value").arg(tr(row_of(option).label), text));
        options[i]->setFocus();
        return false;
    }
    return true;
}

void ImportDialog::begin()
{
    import_request request{.kind = static_cast<import_kind>(kind->currentIndex()),
                           .source = native_name(source->text()),
                           .folder = native_name(folder->text()),
                           .name = name->text().toStdString(),
                           .images = native_name(images->text()),
                           .replaces = replace->isChecked()};
    if (!read_options(request))
        return;
    const QPointer<ImportDialog> self(this);
    import_report report;
    const outcome found =
        work([&](const run_callbacks& callbacks) { return import_recording(request, report, callbacks); });
    if (found != outcome::done)
        return;
    open_result(request);
    if (self)
        show_report(std::move(report), request);
}

// The images of a recording are looked for below one folder: where they came along, below the one that they
// were written into.
void ImportDialog::open_result(const import_request& request)
{
    ORVBrowser& window = window_of();
    const QPointer<ORVBrowser> self(&window);
    const std::string stem = (std::filesystem::path(request.folder) / request.name).string();
    if (!request.images.empty())
        qputenv("ORVBROWSER_IMAGE_ROOT", QByteArray::fromStdString(request.folder));
    if (window.openRoiFile(stem + ".roi") && self)
        (void)window.take_lineage(stem + ".lineage");
}

void ImportDialog::show_report(import_report report, const import_request& request)
{
    QString text = tr("Written to %5/%6.roi: ROIs %1, units %2, links %3, gaps %4")
                       .arg(report.rois)
                       .arg(report.units)
                       .arg(report.links)
                       .arg(report.gaps)
                       .arg(QString::fromStdString(request.folder), QString::fromStdString(request.name));
    for (const std::string& note : report.notes)
        text += '\n' + QString::fromStdString(note);
    show_result(text, std::move(report.losses), window_of().recording());
}
