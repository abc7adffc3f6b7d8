// Importing and exporting in the window: what is there leaves, what comes in is opened, and nothing that
// happens meanwhile does harm.
#include "../support/captured_lines.h"
#include "../support/paged_window.h"
#include "../support/tiff_files.h"
#include "export_dialog.h"
#include "import_dialog.h"

#include <QTimer>

#include <memory>

namespace {

template <class Dialog>
Dialog* opened(PagedWindow& w, const char* button, const char* name)
{
    w.findChild<QWidget*>("lineagePage")->findChild<QPushButton*>(button)->click();
    return w.findChild<Dialog*>(name);
}

ExportDialog* export_dialog(PagedWindow& w) { return opened<ExportDialog>(w, "export", "exportDialog"); }

ImportDialog* import_dialog(PagedWindow& w) { return opened<ImportDialog>(w, "import", "importDialog"); }

QString row_text(ExchangeDialog& dialog, int row)
{
    return dialog.losses->model()->index(row, 0).data().toString();
}

void click_row(ExchangeDialog& dialog, int row)
{
    const QRect place = dialog.losses->visualRect(dialog.losses->model()->index(row, 0));
    QTest::mouseClick(dialog.losses->viewport(), Qt::LeftButton, {}, place.center());
}

// Two time points of label images: label 7, at time point 1 in two pieces.
void write_labels(const SmallRecording& recording)
{
    QDir().mkpath(recording.path("labels"));
    write_tiff(recording.folder.path("labels/t0.tif"), {7, 7, 0, 0, 0, 0}, 3, 2);
    write_tiff(recording.folder.path("labels/t1.tif"), {7, 0, 7, 0, 0, 0}, 3, 2);
}

ImportDialog* filled_import(PagedWindow& w, const SmallRecording& recording)
{
    write_labels(recording);
    ImportDialog* const dialog = import_dialog(w);
    dialog->source->setText(recording.path("labels"));
    dialog->images->setText(recording.path("labels"));
    dialog->folder->setText(recording.path("made"));
    dialog->name->setText("cells");
    return dialog;
}

}    // namespace

class TestGuiExchange : public QObject {
    Q_OBJECT
private slots:
    void whatIsInTheWindowIsExportedAndLossesLeadToTheirNucleus()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        const std::string one = put_unit(w, {"000020010005"}), other = put_unit(w, {"001020010005"}),
                          over = put_unit(w, {"003020010005"});
        put_unit(w, {put_roi(w, {11, 6, 20, 3}, 2, 2)});
        w.link(one, other);
        QVERIFY(w.unsaved_edits() > 0);
        ExportDialog* const dialog = export_dialog(w);
        QVERIFY(!dialog->progress->isVisible());
        for (int format = 0; format < 4; ++format) {
            dialog->format->setCurrentIndex(format);
            dialog->start->click();
            QVERIFY2(dialog->result->text().contains("units 4, links 1"), qPrintable(dialog->result->text()));
        }
        QCOMPARE(recording.folder.contents("tiny_ctc/01_RES/res_track.txt"), "1 0 1 0\n2 3 3 0\n3 3 3 0\n");
        QVERIFY(!recording.folder.contents("tiny_tables/units.csv").empty());
        QVERIFY(!recording.folder.contents("tiny.xml").empty());
        QVERIFY(QFileInfo::exists(recording.path("tiny.geff/.zattrs")));

        dialog->format->setCurrentIndex(0);
        const CapturedLines lines(std::cerr);
        dialog->start->click();
        QVERIFY2(dialog->result->text().contains("\"Replace\""), "it is there already");
        dialog->replace->setChecked(true);
        dialog->start->click();
        int row = 0;
        while (!row_text(*dialog, row).startsWith("overlap"))
            QVERIFY(++row < dialog->losses->model()->rowCount());
        QCOMPARE(row_text(*dialog, row), QString::fromStdString("overlap " + over + ": 4 pixels"));
        click_row(*dialog, row);
        QCOMPARE(w.here(), (place{3, 20}));

        w.setCurrentTimePoint(0);
        QVERIFY(w.openRoiFile(recording.file));    // the line is not about this one
        click_row(*dialog, row);
        QCOMPARE(w.here().t, 0);
    }

    void labelImagesAreImportedAndOpened()
    {
        const SmallRecording recording;
        PagedWindow w(recording);
        ImportDialog* const dialog = filled_import(w, recording);
        QLineEdit* const bin = dialog->findChild<QLineEdit*>("bin");
        bin->setText("many");
        dialog->start->click();
        QVERIFY(dialog->result->text().contains("many"));
        QVERIFY(!QFileInfo::exists(recording.path("made")));
        bin->clear();
        dialog->findChild<QLineEdit*>("pixel")->setText("0.25");
        dialog->start->click();
        QVERIFY2(dialog->result->text().contains("ROIs 3, units 2,"), qPrintable(dialog->result->text()));
        QCOMPARE(w.dataset(), "cells");
        QCOMPARE(w.head_members().size(), 3u);
        QCOMPARE(w.info().scale.pixel_um, 0.25);
        QVERIFY2(QFileInfo::exists(QString::fromStdString(w.image_filename())),
                 "images that came along are shown");
        click_row(*dialog, 0);
        QCOMPARE(w.here(), (place{1, 0}));
    }

    // rows: what happens while it works
    void itEndsWellWhateverHappensMeanwhile_data()
    {
        QTest::addColumn<QString>("event");
        for (const char* const event : {"stop", "close", "delete", "other recording"})
            QTest::newRow(event) << event;
    }

    void itEndsWellWhateverHappensMeanwhile()
    {
        QFETCH(QString, event);
        const SmallRecording second("second");
        const SmallRecording recording;
        auto w = std::make_unique<PagedWindow>(recording);
        put_unit(*w, {"000020010005"});
        const QPointer<ExportDialog> out = export_dialog(*w);
        const QPointer<ImportDialog> in = filled_import(*w, recording);
        out->target->setText(recording.path("set"));
        bool has_happened = false;
        const auto happen = [&] {
            has_happened = true;
            if (event == "delete")
                w.reset();
            else if (event == "other recording")
                QVERIFY(w->openRoiFile(second.file));
            else if (event == "stop")
                (out->stop->isEnabled() ? out->stop : in->stop)->click();
            else
                out->isVisible() && out->stop->isEnabled() ? out->reject() : in->reject();
        };
        const bool is_written = event == "other recording";
        for (ExchangeDialog* const dialog :
             {static_cast<ExchangeDialog*>(out), static_cast<ExchangeDialog*>(in)}) {
            if (!w)
                break;
            has_happened = false;
            QTimer::singleShot(0, qApp, happen);
            dialog->start->click();
            QVERIFY(has_happened);
        }
        QCOMPARE(QFileInfo::exists(recording.path("set")), is_written);
        QCOMPARE(QFileInfo::exists(recording.path("made")), is_written);
        QCOMPARE(out.isNull(), event == "delete");
    }
};

QTEST_MAIN(TestGuiExchange)
#include "test_gui_exchange.moc"
