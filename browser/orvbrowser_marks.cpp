// The selection and the removed marks: their files, and the buttons that mark many ROIs at once.
#include "mark_files.h"
#include "orvbrowser.h"

namespace {

file_question info_question(QFileDialog::AcceptMode mode, const char* object_name, const QString& caption)
{
    return {mode, "info file (*.info)", object_name, caption};
}

file_question fp_question(QFileDialog::AcceptMode mode, const char* object_name, const QString& caption)
{
    return {mode, "fp file (*.fp)", object_name, caption};
}

}    // namespace

void ORVBrowser::read_marks(const file_question& question, const char* suffix, const char* keyword,
                            void (curation::*add)(const set<string>&))
{
    const QPointer<ORVBrowser> self(this);
    const std::string filename = native_name(ask_filename(this, question, default_file(m_dataset, suffix)));
    if (filename.empty() || !self || !is_there(filename))
        return;
    set<string> marks;
    if (read_mark_file(filename, m_dataset, keyword, marks))
        note_read(filename);
    (this->*add)(marks);
    show_changes();
}

void ORVBrowser::save_marks(QPushButton& button, const file_question& question, const char* suffix,
                            const char* keyword, const set<string>& marks)
{
    const QPointer<ORVBrowser> self(this);
    button.setEnabled(false);
    const QString filename = ask_filename(this, question, default_file(m_dataset, suffix));
    const bool is_wanted = !filename.isEmpty() && may_write(this, filename);
    if (!self)
        return;
    const kept_work::Writing writing(*this);
    if (is_wanted)
        (void)write_mark_file(native_name(filename), m_dataset, keyword, marks);
    button.setEnabled(true);
    frame_canvas->setFocus();    // it went to another button meanwhile
}

void ORVBrowser::pushButton_read_info_clicked()
{
    read_marks(info_question(QFileDialog::AcceptOpen, "open info-file", tr("Choose a filename to read")),
               ".info", "SELECT", &curation::add_selected);
}

void ORVBrowser::pushButton_save_info_clicked()
{
    save_marks(
        *pushButton_save_info,
        info_question(QFileDialog::AcceptSave, "save info-file", tr("Choose a filename to save under")),
        ".info", "SELECT", m_selected_roi_set);
}

void ORVBrowser::pushButton_read_FP_clicked()
{
    const QPointer<ORVBrowser> self(this);
    read_marks(fp_question(QFileDialog::AcceptOpen, "open fp-file", tr("Choose a filename to read")), ".fp",
               "FP", &curation::add_false_positives);
    if (self)
        processEvents();
}

void ORVBrowser::pushButton_save_FP_clicked()
{
    save_marks(*pushButton_save_FP,
               fp_question(QFileDialog::AcceptSave, "save false-positive ROIs file",
                           tr("Choose a filename to save under")),
               ".fp", "FP", m_removed_roi_set);
}

void ORVBrowser::pushButton_select_all_clicked()
{
    if (!m_roidb)
        return;
    select_all(m_time_point);
    finish();
}

void ORVBrowser::pushButton_clean_clicked()
{
    if (clean_up())
        finish();
}

void ORVBrowser::pushButton_restore_clicked()
{
    if (!isOpen())
        return;
    const file_question question{QFileDialog::AcceptOpen, "roi file (*.roi)", "open restore file dialog",
                                 tr("Choose a filename to read")};
    const QPointer<ORVBrowser> self(this);
    const std::string filename = native_name(ask_filename(this, question, default_file(m_dataset, ".roi")));
    if (!self)
        return;
    if (!filename.empty() && isOpen() && is_there(filename)) {
        setCursor(Qt::WaitCursor);
        if (restore_rois(filename, m_time_point))
            take_time_bounds();
        show_fitting_cursor();
    }
    finish();
}
