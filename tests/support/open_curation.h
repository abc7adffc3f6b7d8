// open_curation.h - a recording without an ROI, open without a window.
#pragma once
#include "curation_probe.h"
#include "units.h"

class OpenCuration : public CurationProbe {
public:
    OpenCuration()
    {
        open_rois(std::make_unique<roidb_plus>("tiny"));
        m_max_time_point = 999;
    }
};
