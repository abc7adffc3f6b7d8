// The selection and the removed marks: their files, and the buttons that mark many ROIs at once.
#include "file_io.h"
#include "keygen.h"
#include "orvbrowser.h"
#include "roi_reader.h"

#include <QFileInfo>

#include <fstream>
#include <iostream>
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

bool is_there(const std::string& filename)
{
    if (QFileInfo::exists(QFile::decodeName(filename.c_str())))
        return true;
    std::cerr << "No such file or directory: " << filename << std::endl;
    return false;
}

// Reads pairs of words; those with the keyword bring a mark.
void read_mark_file(const std::string& filename, const std::string& dataset, const std::string& keyword,
                    std::set<std::string>& marks)
{
    std::ifstream file(filename);
    if (!file || (file.peek(), file.bad())) {    // a folder opens, but does not read
        std::cerr << "Cannot open " << filename << std::endl;
        return;
    }
    for (std::string word, value; file >> word;) {
        value.clear();
        file >> value;
        if (word == "NAME" && value != dataset) {
            std::cerr << "different dataset" << std::endl;
            return;
        }
        if (word == keyword && !value.empty())
            marks.insert(value);
    }
}

void write_mark_file(const std::string& filename, const std::string& dataset, const std::string& keyword,
                     const std::set<std::string>& marks)
{
    replacing_file file(filename);
    file.append("NAME " + dataset + '\n');
    for (const std::string& key : marks)
        file.append(keyword + ' ' + key + '\n');
    if (!file.commit())
        std::cerr << "Cannot open " << filename << std::endl;
}

}    // namespace

void ORVBrowser::read_marks(const file_question& question, const char* suffix, const char* keyword,
                            set<string>& marks)
{
    const std::string filename = native_name(ask_filename(this, question, default_file(m_dataset, suffix)));
    if (filename.empty() || !is_there(filename))
        return;
    read_mark_file(filename, m_dataset, keyword, marks);
    show_changes();
}

void ORVBrowser::save_marks(QPushButton& button, const file_question& question, const char* suffix,
                            const char* keyword, const set<string>& marks)
{
    button.setEnabled(false);
    const QString filename = ask_filename(this, question, default_file(m_dataset, suffix));
    if (!filename.isEmpty() && may_write(this, filename))
        write_mark_file(native_name(filename), m_dataset, keyword, marks);
    button.setEnabled(true);
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
    read_marks(fp_question(QFileDialog::AcceptOpen, "open fp-file", tr("Choose a filename to read")), ".fp",
               "FP", m_removed_roi_set);
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
    const auto last = m_roidb->db.lower_bound(keygen(pos4i(0, 0, 0, m_time_point + 1)));
    for (auto entry = m_roidb->db.lower_bound(keygen(pos4i(0, 0, 0, m_time_point))); entry != last; ++entry)
        if (!m_removed_roi_set.contains(entry->first))
            m_selected_roi_set.insert(entry->first);
    finish();
}

void ORVBrowser::pushButton_clean_clicked()
{
    if (!m_roidb)
        return;
    if (m_selected_roi_set.empty() && m_fwd_roi_set.empty() && m_bwd_roi_set.empty()) {
        std::cerr << "Nothing is selected or tracked: no ROI is marked as removed" << std::endl;
        return;
    }
    for (const auto& [key, r] : m_roidb->db)
        if (!isSelected(key) && !isFwdTracked(key) && !isBwdTracked(key))
            m_removed_roi_set.insert(key);
    finish();
}

void ORVBrowser::pushButton_restore_clicked()
{
    if (!m_roidb)
        return;
    const file_question question{QFileDialog::AcceptOpen, "roi file (*.roi)", "open restore file dialog",
                                 tr("Choose a filename to read")};
    const std::string filename = native_name(ask_filename(this, question, default_file(m_dataset, ".roi")));
    if (!filename.empty() && m_roidb && is_there(filename))
        restore_rois(filename);
    finish();
}

// What the file brings may lie outside the bounds of before, or end earlier.
void ORVBrowser::restore_rois(const string& filename)
{
    roi_reader reader(filename);
    std::string name;
    if (!reader.is_open()) {
        std::cerr << "roidb: Cannot open " << filename << std::endl;
        return;
    }
    if (!reader.read_word(name) || name != m_dataset) {
        std::cerr << "different dataset" << std::endl;
        return;
    }
    const int first = m_time_point + 1;
    setCursor(Qt::WaitCursor);
    m_roidb->replace_plus(filename, first, std::numeric_limits<int>::max());
    m_q_roiimgdb->remove_from(first);
    take_time_bounds();
    end_waiting();
}
