// bench_window.h - the window with its state readable, for the benchmarks.
#pragma once
#include "link_making.h"
#include "orvbrowser.h"

#include <iostream>
#include <string>

class BenchWindow : public ORVBrowser {
public:
    using ORVBrowser::m_fwd_roi_set, ORVBrowser::m_head_members, ORVBrowser::m_linkage_multimap,
        ORVBrowser::m_max_time_point, ORVBrowser::m_members_head, ORVBrowser::m_min_time_point,
        ORVBrowser::m_q_roiimgdb, ORVBrowser::m_roidb, ORVBrowser::m_selected_roi_set;

    // Hidden: nothing is painted.
    explicit BenchWindow(const std::string& filename) { openRoiFile(filename); }

    void make_units()
    {
        for (int t = m_min_time_point; t <= m_max_time_point; ++t)
            curation::make_units(t, 0);
    }

    void make_links()
    {
        for (int t = m_min_time_point + 1; t <= m_max_time_point; ++t)
            makeLinkage(t);
    }

    void make_units_by_nearest()
    {
        for (int t = m_min_time_point; t <= m_max_time_point; ++t)
            curation::make_units(t, making());
    }

    void make_links_by_nearest()
    {
        link_making links(*this, making());
        for (int t = m_min_time_point + 1; t <= m_max_time_point; ++t)
            (void)links.step(t);
    }

    void track_forward()
    {
        pushButton_auto->setChecked(true);
        pushButton_forward_tracking_clicked();
    }
};

// What is printed meanwhile goes nowhere.
class SilentStream {
public:
    explicit SilentStream(std::ostream& stream) : _stream(stream), _before(stream.rdbuf(nullptr)) {}
    ~SilentStream()
    {
        _stream.rdbuf(_before);
        _stream.clear();
    }
    SilentStream(const SilentStream&) = delete;
    SilentStream& operator=(const SilentStream&) = delete;

private:
    std::ostream& _stream;
    std::streambuf* _before;
};
