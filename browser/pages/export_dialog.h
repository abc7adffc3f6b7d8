// export_dialog.h - writes what is in the window, unsaved edits included, as other programs read it.
#pragma once
#include "exchange_dialog.h"

#include <QCheckBox>
#include <QComboBox>

class ExportDialog : public ExchangeDialog {
    Q_OBJECT

public:
    explicit ExportDialog(ORVBrowser& window);

    // The one of this window, made when there is none yet.
    static void show_for(ORVBrowser& window);

    // ---- Controls; owned by the dialog
    QComboBox* format = nullptr;    // export_format
    QLineEdit* target = nullptr;
    QCheckBox* replace = nullptr;

private:
    void begin() override;
    void propose_target();
    void show_losses(loss_report report, unsigned long recording);
};
