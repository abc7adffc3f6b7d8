// Keys, wheel and pointer, and the modes that tell what a click does.
#include "edit_scope.h"
#include "keygen.h"
#include "orvbrowser.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

#include <iostream>
#include <utility>

namespace {

bool covers(const q_roiimg& raster, const pixel_box& box, int x, int y)
{
    return box.contains(x, y) && raster.value(x - box.left, y - box.top) != 0;
}

}    // namespace

std::string ORVBrowser::xyROI(int x, int y)
{
    if (!has_rois())
        return {};
    std::string hit;
    const auto plane = m_q_roiimgdb->plane(*m_roidb, m_time_point, m_focal_plane);
    for (plane_roi& r : plane->rois) {
        if (!covers(*m_q_roiimgdb->raster_of(r), r.box, x, y))
            continue;
        hit = *r.key;
        break;
    }
    release_dropped_rasters();
    return hit;
}

// Each mode remembers the cursor that was shown before it, and shows it again when it ends.
void ORVBrowser::set_mode(bool& flag, QCursor& before, bool on)
{
    if (!flag)    // a run that is going on shows the wait cursor only until it ends
        before = cursor().shape() == Qt::WaitCursor ? QCursor(Qt::ArrowCursor) : cursor();
    flag = on;
    setCursor(on ? QCursor(Qt::PointingHandCursor) : before);
}

// After a wait, unless a run is still waited for: a mode that is armed shows its hand again.
void ORVBrowser::show_fitting_cursor()
{
    setCursor(m_busy_runs > 0               ? Qt::WaitCursor
              : armed_mode() != armed::none ? Qt::PointingHandCursor
                                            : Qt::ArrowCursor);
}

// The first that is armed, in the order in which a click asks them.
ORVBrowser::armed ORVBrowser::armed_mode() const noexcept
{
    return m_manual_elite          ? armed::elite
           : m_lineage_mode        ? armed::choose
           : m_remove_lineage_mode ? armed::remove
           : m_add_lineage_mode    ? armed::add
           : m_merge_mode          ? armed::merge
           : m_split_mode          ? armed::split
                                   : armed::none;
}

void ORVBrowser::disarm()
{
    setManualEliteMode(false);
    setLineageMode(false);
    setRemoveLineageMode(false);
    setAddLineageMode(false);
    setMergeMode(false);
    setSplitMode(false);
    show_fitting_cursor();
}

void ORVBrowser::setManualEliteMode(bool on) { set_mode(m_manual_elite, m_cursor_before[elite_mode], on); }

void ORVBrowser::setLineageMode(bool on) { set_mode(m_lineage_mode, m_cursor_before[lineage_mode], on); }

void ORVBrowser::setAddLineageMode(bool on) { set_mode(m_add_lineage_mode, m_cursor_before[add_mode], on); }

void ORVBrowser::setRemoveLineageMode(bool on)
{
    set_mode(m_remove_lineage_mode, m_cursor_before[remove_mode], on);
}

void ORVBrowser::setMergeMode(bool on) { set_mode(m_merge_mode, m_cursor_before[merge_mode], on); }

void ORVBrowser::setSplitMode(bool on)
{
    if (!on)
        m_split_parents.clear();
    set_mode(m_split_mode, m_cursor_before[split_mode], on);
}

void ORVBrowser::setShowTrackedRoisMode(bool on) { m_show_tracked_rois_mode = on; }

// The keys that arm a mode or put it away.
bool ORVBrowser::press_mode_key(int key)
{
    const bool has_lineage_head = !m_lineage_mode_roi_set.empty();
    switch (key) {
    case Qt::Key_A:
        if (has_lineage_head)
            setAddLineageMode(!m_add_lineage_mode);
        return true;
    case Qt::Key_E:
        setLineageMode(false);
        setManualEliteMode(!m_manual_elite);
        return true;
    case Qt::Key_L:
    case Qt::Key_W:
        toggle_lineage_mode();
        return true;
    case Qt::Key_M:
    case Qt::Key_X:
        setMergeMode(!m_merge_mode);
        return true;
    case Qt::Key_R:
        setRemoveLineageMode(!m_remove_lineage_mode);
        return true;
    case Qt::Key_S:
        if (has_lineage_head)
            setSplitMode(!m_split_mode);
        return true;
    default:
        return false;
    }
}

void ORVBrowser::keyPressEvent(QKeyEvent* e)
{
    const QPointer<ORVBrowser> self(this);
    const bool is_taken = m_further_input && m_further_input->take_key(*e);
    if (!is_taken && !press_mode_key(e->key()))
        press_other_key(e->key());
    if (self)    // what the key started may let handlers run, which may delete the window
        end_input();
}

void ORVBrowser::end_input()
{
    if (m_further_input)
        m_further_input->input_served();
    processEvents();
}

void ORVBrowser::press_other_key(int key)
{
    switch (key) {
    case Qt::Key_C:
        m_show_centroid = !m_show_centroid;
        show_changes();
        break;
    case Qt::Key_D:
    case Qt::Key_Left:
        if (!m_auto)
            timePrev();
        break;
    case Qt::Key_F:
    case Qt::Key_Right:
        if (!m_auto)
            timeNext();
        break;
    case Qt::Key_T:
        setShowTrackedRoisMode(!m_show_tracked_rois_mode);
        show_changes();
        break;
    case Qt::Key_Z:
        do_zTracking();
        break;
    case Qt::Key_Up:
        focusUp();
        break;
    case Qt::Key_Down:
        focusDown();
        break;
    default:
        break;
    }
}

void ORVBrowser::toggle_lineage_mode()
{
    setManualEliteMode(false);
    if (!m_lineage_mode) {
        setLineageMode(true);
        return;
    }
    setLineageMode(false);
    choose("");
    setAddLineageMode(false);
    setRemoveLineageMode(false);
    show_changes();
}

// The toolkit turns a wheel sideways while Alt is held.
void ORVBrowser::wheelEvent(QWheelEvent* e)
{
    if (!m_imgdb)
        return;
    const QPoint turn = e->angleDelta();
    const bool is_sideways = turn.y() == 0 && (e->modifiers() & Qt::AltModifier);
    if (m_further_input && m_further_input->take_wheel(*e)) {
        m_further_input->pointer_moved();
        return;
    }
    if ((is_sideways ? turn.x() : turn.y()) > 0)
        focusUp();
    else
        focusDown();
    if (m_further_input)
        m_further_input->pointer_moved();
    processEvents();
}

void ORVBrowser::mouseMoveEvent(QMouseEvent* e)
{
    if (!has_rois() || (m_further_input && m_further_input->take_move(*e)))
        return;
    const QPoint on_canvas = e->position().toPoint() - frame_canvas->pos();
    if (!frame_canvas->rect().contains(on_canvas))
        return;
    light_roi_at(on_canvas);
    if (m_further_input)
        m_further_input->pointer_moved();
    processEvents();
}

void ORVBrowser::light_roi_at(QPoint on_canvas)
{
    const QPoint at = frame_canvas->picture_pixel(on_canvas);
    light_roi(xyROI(at.x(), at.y()));
}

// That one alone; none when the key is empty.
void ORVBrowser::light_roi(const string& key)
{
    set<string> under_pointer;
    if (!key.empty())
        under_pointer.insert(key);
    if (under_pointer != m_mouse_over_roi_set) {
        m_mouse_over_roi_set = std::move(under_pointer);
        show_changed_rois();
    } else if (dirty) {
        paint_canvas();
    }
}

void ORVBrowser::mousePressEvent(QMouseEvent* e)
{
    if (!m_roidb)
        return;
    const QPointer<ORVBrowser> self(this);    // what a press starts may let handlers run, which may delete it
    if (!m_further_input || !m_further_input->take_press(*e))
        press_canvas(*e);
    if (self)
        end_input();
}

void ORVBrowser::press_canvas(const QMouseEvent& e)
{
    const QPoint place = e.position().toPoint() - frame_canvas->pos();
    const bool on_canvas = frame_canvas->rect().contains(place);
    const QPoint at = frame_canvas->picture_pixel(place);
    const std::string key = on_canvas ? xyROI(at.x(), at.y()) : string();
    const bool left = e.button() == Qt::LeftButton;
    const bool in_lineage_modes =
        m_manual_elite || m_lineage_mode || m_remove_lineage_mode || m_add_lineage_mode;
    // Only the place of a cut may be anywhere.
    if (key.empty() && (!m_split_mode || in_lineage_modes || m_merge_mode)) {
        show_changes();
        return;
    }
    const QPointer<ORVBrowser> self(this);    // a split lets handlers run, which may delete the window
    if (in_lineage_modes) {
        if (left)
            click_in_lineage_modes(key);
    } else if (!m_merge_mode && !m_split_mode) {
        mark_roi(key, e.button());
    } else if (!m_merge_mode) {
        click_in_split_mode(key, left, at);
    } else if (left) {
        click_in_merge_mode(key);
    }
    if (self)
        show_changes();
}

// The one-shot modes that act on the unit under the pointer; the first that is armed takes the click.
void ORVBrowser::click_in_lineage_modes(const string& key)
{
    const std::string unit = head(key);
    if (m_manual_elite) {
        toggle_elite(unit);
        setManualEliteMode(false);
    } else if (m_lineage_mode) {
        choose(unit);
        setLineageMode(false);
    } else if (m_remove_lineage_mode) {
        const EditScope edit(*this, "Unlink", unit);
        const set<string> before = parents(unit);
        release_parents(unit);
        for (const string& parent : before)
            note_edited(parent);
        if (!before.empty())
            note_edited(unit);
        setRemoveLineageMode(false);
    } else {
        if (!m_lineage_mode_roi_set.empty())
            link_by_hand(chosen(), unit);
        setAddLineageMode(false);
    }
}

std::string ORVBrowser::roi_under_pointer() const
{
    return m_mouse_over_roi_set.empty() ? string() : *m_mouse_over_roi_set.begin();
}

void ORVBrowser::link_by_hand(const string& a, const string& b)
{
    const EditScope edit(*this, "Link", a, b);
    const unsigned long before = edits();
    link(a, b);
    if (edits() == before)
        return;
    note_edited(a);
    note_edited(b);
}

void ORVBrowser::mark_roi(const string& key, Qt::MouseButton button)
{
    if (button == Qt::RightButton)
        toggle_false_positive(key);
    if (button != Qt::LeftButton)
        return;
    toggle_selected(key);
    if (isSelected(key))
        std::cout << "roi(" << key << ") head(" << head(key) << ")" << std::endl;
}

// The first clicks pick the parents; once there are two, the next click, anywhere, splits at its point.
// The mode ends before that: the second half of a double click must not split once more.
void ORVBrowser::click_in_split_mode(const string& key, bool left, QPoint at)
{
    if (m_split_parents.size() > 1) {
        const set<string> split_parents = std::exchange(m_split_parents, {});
        setSplitMode(false);
        if (!m_lineage_mode_roi_set.empty())
            manualSplit(*m_lineage_mode_roi_set.begin(), split_parents, at.x(), at.y(), m_focal_plane);
    } else if (left && !key.empty()) {
        m_split_parents.insert(head(key));
    }
}

void ORVBrowser::click_in_merge_mode(const string& key)
{
    if (!m_lineage_mode_roi_set.empty()) {
        const string a = head(chosen());
        const EditScope edit(*this, "Merge", a, head(key));
        const unsigned long before = edits();
        mergeUnits(a, head(key));
        if (edits() != before)
            note_edited(chosen());    // under its new name
    }
    setMergeMode(false);
}
