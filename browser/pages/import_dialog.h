// import_dialog.h - makes a recording of label images of another program, and opens it.
#pragma once
#include "exchange_dialog.h"
#include "import.h"

#include <QCheckBox>
#include <QComboBox>

class ImportDialog : public ExchangeDialog {
    Q_OBJECT

public:
    explicit ImportDialog(ORVBrowser& window);

    // The one of this window, made when there is none yet.
    static void show_for(ORVBrowser& window);

    // ---- Controls; owned by the dialog
    QComboBox* kind = nullptr;    // import_kind
    QLineEdit* source = nullptr;
    QLineEdit* images = nullptr;
    QLineEdit* folder = nullptr;
    QLineEdit* name = nullptr;
    QCheckBox* replace = nullptr;
    std::vector<QLineEdit*> options;    // in the order of import_options(); empty: as it is without

private:
    void begin() override;
    [[nodiscard]] bool read_options(import_request& request);
    void open_result(const import_request& request);
    void show_report(import_report report, const import_request& request);
};
