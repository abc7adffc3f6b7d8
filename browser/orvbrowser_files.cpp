// ROI files: opening a recording from one, saving it, and dropping the ROIs marked as removed.
#include "error_line.h"
#include "file_dialogs.h"
#include "file_io.h"
#include "orvbrowser.h"
#include "roi_reader.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace {

const QString roi_filter = QStringLiteral("roi file (*.roi)");

// The first words of our other files.
constexpr std::string_view other_keywords[] = {"NAME", "TRACK", "JOURNAL"};

bool holds_a_nul_byte(const std::string& filename)
{
    file_reader file(filename);
    for (std::string_view piece = file.at_hand(); !piece.empty(); piece = file.at_hand()) {
        if (piece.find('\0') != std::string_view::npos)
            return true;
        file.take(piece.size());
    }
    return false;
}

// False, and one line, for a file that surely is no ROI file: opening it would close the recording that is
// open.
bool may_hold_rois(const std::string& filename)
{
    std::string first_word;
    (void)roi_reader(filename).read_word(first_word);
    if (std::ranges::find(other_keywords, first_word) == std::end(other_keywords) &&
        !holds_a_nul_byte(filename))
        return true;
    error_line("Not an ROI file: ", filename);
    return false;
}

}    // namespace

bool ORVBrowser::openRoiFile(const string& filename)
{
    if (!is_there(filename) || !may_hold_rois(filename))
        return false;
    setCursor(Qt::WaitCursor);
    // Read first: what is open stays open when the file cannot be read.
    auto roidb = std::make_unique<roidb_plus>("");
    bool was_read = roidb->read_plus(filename);
    if (was_read && roidb->name().empty()) {
        error_line("Not an ROI file: ", filename);
        was_read = false;
    }
    if (was_read && roidb->db.empty())
        error_line("0 ROIs read");
    if (was_read) {
        open_recording(std::move(roidb));
        m_work.opened(filename);
        take_focal_planes();
    }
    show_fitting_cursor();
    return was_read;
}

bool ORVBrowser::take_lineage(const string& filename)
{
    if (!isOpen())
        return false;
    std::optional<lineage> units = read_lineage(filename, m_dataset, *m_roidb);
    if (!units)
        return false;
    note_read(filename);
    replace_lineage(std::move(*units));
    show_changes();
    return true;
}

void ORVBrowser::open_recording(std::unique_ptr<roidb_plus> roidb)
{
    // The old bounds hold until the new ones are set: nothing of the positions in between is shown.
    setUpdatesEnabled(false);
    close_common();
    m_roidb = std::move(roidb);
    setDataset(m_roidb->name());
    build_imgdb();
    m_img_base = make_img_base(m_dataset);
    build_q_roiimgdb();
    read_common();
    take_time_bounds();
    setCurrentTimePoint(0);
    announce_recording();
    setUpdatesEnabled(true);
}

void ORVBrowser::pushButton_read_roifile_clicked()
{
    const QPointer<ORVBrowser> self(this);
    const QString filename = ask_filename(
        this, {QFileDialog::AcceptOpen, roi_filter, "open file dialog", tr("Choose a filename to read")},
        default_file(m_dataset, ".roi"));
    if (!self)
        return;
    if (!filename.isEmpty() && !openRoiFile(native_name(filename)) && m_roidb)
        take_time_bounds();
    finish();
}

void ORVBrowser::pushButton_save_roifile_clicked()
{
    const QPointer<ORVBrowser> self(this);
    pushButton_save_roifile->setEnabled(false);
    const QString filename = ask_filename(
        this,
        {QFileDialog::AcceptSave, roi_filter, "save file dialog", tr("Choose a filename to save under")},
        default_file(m_dataset, ".roi"));
    const bool is_wanted = !filename.isEmpty() && may_write(this, filename);
    if (!self)
        return;
    if (is_wanted)
        save_rois(native_name(filename));
    pushButton_save_roifile->setEnabled(true);
    frame_canvas->setFocus();    // it went to another button meanwhile
}

void ORVBrowser::save_rois(const string& filename)
{
    if (!m_roidb) {
        error_line("No recording is open: nothing to save in ", filename);
        return;
    }
    setCursor(Qt::WaitCursor);
    const kept_work::Writing writing(*this);
    m_roidb->write(filename);    // says so itself when it fails
    show_fitting_cursor();
}

void ORVBrowser::pushButton_drop_false_positive_clicked()
{
    if (!m_roidb)
        return;
    const QPointer<ORVBrowser> self(this);
    setCursor(Qt::WaitCursor);
    drop_false_positives();
    finish();
    if (self)
        show_fitting_cursor();
}
