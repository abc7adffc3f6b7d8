// file_dialogs.h - the program's questions: for a file name, and before something is replaced.
//
// While a question is open handlers may delete its parent. The question goes with it, answered with No, and
// the caller must look whether it is still there itself.
#pragma once
#include <QFileDialog>
#include <QMessageBox>
#include <QString>
#include <QWidget>

#include <string>

struct file_question {
    QFileDialog::AcceptMode mode;    // open or save
    QString filter;
    QString object_name;
    QString caption;
};

// The file of this name in the working directory: $PWD/<dataset><suffix>.
[[nodiscard]] QString default_file(const std::string& dataset, const char* suffix);

// The file name that the person chose, or "" when the dialog was cancelled. A file to open need not
// exist: the caller says so in its own words.
[[nodiscard]] QString ask_filename(QWidget* parent, const file_question& question, const QString& start_name);

// True iff the person answers Yes. Escape is No.
[[nodiscard]] bool ask_yes_or_no(QWidget* parent, const QString& caption, const QString& text,
                                 QMessageBox::StandardButton default_button);

// True iff there is no file of this name, or the person wants it overwritten.
[[nodiscard]] bool may_write(QWidget* parent, const QString& filename);

// True iff there is a file of this name; otherwise one line on standard error says so.
[[nodiscard]] bool is_there(const std::string& filename);

// A file name as the system's own functions take it.
[[nodiscard]] std::string native_name(const QString& filename);
