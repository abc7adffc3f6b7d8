// open_window.h - the window on a small recording, with its state readable and its pictures counted.
#pragma once
#include "orvbrowser.h"
#include "small_recording.h"

#include <QTest>

#include <utility>

class WindowProbe : public ORVBrowser {
public:
    using ORVBrowser::color, ORVBrowser::dirty, ORVBrowser::m_add_lineage_head_set,
        ORVBrowser::m_add_lineage_mode, ORVBrowser::m_auto, ORVBrowser::m_auto_make_units,
        ORVBrowser::m_auto_split, ORVBrowser::m_bwd_roi_set, ORVBrowser::m_dataset, ORVBrowser::m_dataset3,
        ORVBrowser::m_elite_head_roi_set, ORVBrowser::m_falsely_grouped_units_candidates,
        ORVBrowser::m_focal_plane, ORVBrowser::m_fwd_roi_set, ORVBrowser::m_head_members, ORVBrowser::m_imgdb,
        ORVBrowser::m_lineage_mode, ORVBrowser::m_lineage_mode_roi_set, ORVBrowser::m_linkage_multimap,
        ORVBrowser::m_linkage_set, ORVBrowser::m_make_unit_roi_set, ORVBrowser::m_make_units,
        ORVBrowser::m_manual_elite, ORVBrowser::m_max_time_point, ORVBrowser::m_members_head,
        ORVBrowser::m_merge_mode, ORVBrowser::m_min_time_point, ORVBrowser::m_mouse_over_roi_set,
        ORVBrowser::m_q_roiimgdb, ORVBrowser::m_remove_lineage_head_set, ORVBrowser::m_remove_lineage_mode,
        ORVBrowser::m_removed_roi_set, ORVBrowser::m_roi_base, ORVBrowser::m_roidb,
        ORVBrowser::m_selected_roi_set, ORVBrowser::m_show_centroid, ORVBrowser::m_show_tracked_rois_mode,
        ORVBrowser::m_split_mode, ORVBrowser::m_split_parents, ORVBrowser::m_time_point,
        ORVBrowser::m_unit_roi_head;

    void myPaint() override
    {
        ++pictures;
        ORVBrowser::myPaint();
    }

    [[nodiscard]] int pictures_since_last_asked() { return std::exchange(pictures, 0); }

    // The picture that the canvas shows.
    [[nodiscard]] QColor shown(int x, int y) const
    {
        return frame_canvas->picture().toImage().pixelColor(x, y);
    }

private:
    int pictures = 0;
};

class ShownWindow : public WindowProbe {
public:
    ShownWindow()
    {
        show();
        if (!QTest::qWaitForWindowExposed(this))
            qFatal("the window is not shown");
    }
};

// The recording is open in it, at its first time point and focal plane 20, and no event is pending.
class OpenWindow : public ShownWindow {
public:
    explicit OpenWindow(const SmallRecording& recording)
    {
        if (!openRoiFile(recording.file))
            qFatal("the recording cannot be read");
        QCoreApplication::processEvents();
        (void)pictures_since_last_asked();
    }
};
