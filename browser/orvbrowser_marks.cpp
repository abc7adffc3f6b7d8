// The selection and the removed marks: their files, and the buttons that mark many ROIs at once.
#include "error_line.h"
#include "keygen.h"
#include "mark_files.h"
#include "orvbrowser.h"
#include "roi_reader.h"

#include <limits>

namespace {

file_question info_question(QFileDialog::AcceptMode mode, const char* object_name, const QString& caption)
{
    return {mode, "info file (*.info)", object_name, caption};
}

file_question fp_question(QFileDialog::AcceptMode mode, const char* object_name, const QString& caption)
{
    return {mode, "fp file (*.fp)", object_name, caption};
}

// True iff the file belongs to the recording, reads to its end, and holds ROIs after time point t;
// otherwise one line on standard error.
bool can_restore(const std::string& filename, const std::string& dataset, int t)
{
    roi_reader reader(filename);
    std::string name;
    int later_rois = 0;
    if (!reader.is_open())
        error_line("roidb: Cannot open ", filename);
    else if ((!reader.read_word(name) || name != dataset) && !reader.failed())
        error_line("different dataset");
    else {
        bool is_whole = true;
        for (roi r; is_whole && !reader.is_at_end();) {
            is_whole = reader.read_record(r);
            later_rois += is_whole && r.t() > t;
        }
        if (reader.failed())
            error_line(reader.failure());
        else if (!is_whole)
            error_line("Not an ROI file to its end: ", filename);
        else if (later_rois == 0)
            error_line("No ROIs after time point ", t, " in ", filename);
        else
            return true;
    }
    return false;
}

}    // namespace

void ORVBrowser::read_marks(const file_question& question, const char* suffix, const char* keyword,
                            set<string>& marks)
{
    const QPointer<ORVBrowser> self(this);
    const std::string filename = native_name(ask_filename(this, question, default_file(m_dataset, suffix)));
    if (filename.empty() || !self || !is_there(filename))
        return;
    read_mark_file(filename, m_dataset, keyword, marks);
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
    if (is_wanted)
        write_mark_file(native_name(filename), m_dataset, keyword, marks);
    button.setEnabled(true);
    frame_canvas->setFocus();    // it went to another button meanwhile
}

void ORVBrowser::pushButton_read_info_clicked()
{
    read_marks(info_question(QFileDialog::AcceptOpen, "open info-file", tr("Choose a filename to read")),
               ".info", "SELECT", m_selected_roi_set);
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
               "FP", m_removed_roi_set);
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
    const auto [first, last] = at_time_point(m_roidb->db, m_time_point);
    for (auto entry = first; entry != last; ++entry)
        if (!m_removed_roi_set.contains(entry->first))
            m_selected_roi_set.insert(entry->first);
    finish();
}

void ORVBrowser::pushButton_clean_clicked()
{
    set<string> to_remove;
    std::size_t rois = 0;
    if (m_roidb) {
        rois = m_roidb->db.size();
        for (const auto& [key, r] : m_roidb->db)
            if (!isSelected(key) && !isFwdTracked(key) && !isBwdTracked(key))
                to_remove.insert(to_remove.end(), key);
    }
    if (to_remove.size() == rois) {    // marks that name no ROI of the recording count for nothing
        error_line("Nothing is selected or tracked: no ROI is marked as a false positive");
        return;
    }
    m_removed_roi_set.merge(to_remove);
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
    if (!filename.empty() && isOpen() && is_there(filename))
        restore_rois(filename);
    finish();
}

// The file is read through before anything is replaced. What it brings may lie outside the bounds of
// before, or end earlier.
void ORVBrowser::restore_rois(const string& filename)
{
    setCursor(Qt::WaitCursor);
    if (can_restore(filename, m_dataset, m_time_point)) {
        m_roidb->replace_plus(filename, m_time_point + 1, std::numeric_limits<int>::max());
        m_q_roiimgdb->remove_after(m_time_point);
        forget_missing_members();
        take_time_bounds();
    }
    end_waiting();
}
