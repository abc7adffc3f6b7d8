// The rule "overlap", which the window has: ROIs that share pixels flow together, and so do units of
// successive time points.
#include "lineage_access.h"
#include "unit_rules.h"

#include <QApplication>

std::optional<lineage> lineage_by_overlap(const std::string& roi_file, double share)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    char name[] = "orvtool";
    char* words[] = {name, nullptr};
    int count = 1;
    QApplication application(count, words);
    ORVBrowser window;
    window.setApplication(&application);
    if (!window.openRoiFile(roi_file))
        return std::nullopt;
    LineageAccess access(window);
    for (int t = access.min_time_point(); t <= access.max_time_point(); ++t)
        access.make_units(t, share);
    for (int t = access.min_time_point() + 1; t <= access.max_time_point(); ++t)
        window.makeLinkage(t);
    return access.current();
}
