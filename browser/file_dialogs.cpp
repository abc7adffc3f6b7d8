#include "file_dialogs.h"

#include "error_line.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
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
    QFileDialog dialog(parent, question.caption, QFileInfo(start_name).path(), question.filter);
    dialog.setObjectName(question.object_name);
    dialog.setAcceptMode(question.mode);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setOption(QFileDialog::DontConfirmOverwrite);    // may_write() asks
    dialog.selectFile(QDir::cleanPath(start_name));         // it takes "//" for the root
    if (dialog.exec() != QDialog::Accepted)
        return {};
    return dialog.selectedFiles().value(0);
}

bool may_write(QWidget* parent, const QString& filename)
{
    if (!QFileInfo::exists(filename))
        return true;
    QMessageBox question(QMessageBox::Question, tr("Overwrite File? -- ORVBrowser"),
                         tr("A file called %1 already exists. Do you want to overwrite it?").arg(filename),
                         QMessageBox::Yes | QMessageBox::No, parent);
    question.setTextFormat(Qt::PlainText);    // a file name is no markup
    question.button(QMessageBox::Yes)->setText(tr("&Yes"));
    question.button(QMessageBox::No)->setText(tr("&No"));
    question.setDefaultButton(QMessageBox::Yes);
    question.setEscapeButton(QMessageBox::No);
    return question.exec() == QMessageBox::Yes;
}

bool is_there(const std::string& filename)
{
    if (QFileInfo::exists(QFile::decodeName(filename.c_str())))
        return true;
    error_line("No such file or directory: ", filename);
    return false;
}

std::string native_name(const QString& filename) { return QFile::encodeName(filename).toStdString(); }
