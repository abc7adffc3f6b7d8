#include "file_dialogs.h"

#include "error_line.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QPushButton>

namespace {

QString tr(const char* text) { return QCoreApplication::translate("ORVBrowser", text); }

}    // namespace

QString default_file(const std::string& dataset, const char* suffix)
{
    const QString folder = qEnvironmentVariable("PWD", QDir::currentPath());
    return folder + "/" + QString::fromStdString(dataset) + suffix;
}

QString ask_filename(QWidget* parent, const file_question& question, const QString& start_name)
{
    // On the heap: it goes with its parent, when a handler deletes that.
    const QPointer<QFileDialog> dialog =
        new QFileDialog(parent, question.caption, QFileInfo(start_name).path(), question.filter);
    dialog->setObjectName(question.object_name);
    dialog->setAcceptMode(question.mode);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setOption(QFileDialog::DontUseNativeDialog);
    dialog->setOption(QFileDialog::DontConfirmOverwrite);    // may_write() asks
    dialog->selectFile(QDir::cleanPath(start_name));         // it takes "//" for the root
    const bool is_chosen = dialog->exec() == QDialog::Accepted && dialog;
    const QString filename = is_chosen ? dialog->selectedFiles().value(0) : QString();
    delete dialog;
    return filename;
}

bool may_write(QWidget* parent, const QString& filename)
{
    if (!QFileInfo::exists(filename))
        return true;
    return ask_yes_or_no(parent, tr("Overwrite File? -- ORVBrowser"),
                         tr("A file called %1 already exists. Do you want to overwrite it?").arg(filename),
                         QMessageBox::Yes);
}

bool ask_yes_or_no(QWidget* parent, const QString& caption, const QString& text,
                   QMessageBox::StandardButton default_button)
{
    const QPointer<QMessageBox> question =
        new QMessageBox(QMessageBox::Question, caption, text, QMessageBox::Yes | QMessageBox::No, parent);
    question->setTextFormat(Qt::PlainText);    // a file name is no markup
    question->button(QMessageBox::Yes)->setText(tr("&Yes"));
    question->button(QMessageBox::No)->setText(tr("&No"));
    question->setDefaultButton(default_button);
    question->setEscapeButton(QMessageBox::No);
    const bool is_yes = question->exec() == QMessageBox::Yes;
    delete question;
    return is_yes;
}

bool is_there(const std::string& filename)
{
    if (QFileInfo::exists(QFile::decodeName(filename.c_str())))
        return true;
    error_line("No such file or directory: ", filename);
    return false;
}

std::string native_name(const QString& filename) { return QFile::encodeName(filename).toStdString(); }
