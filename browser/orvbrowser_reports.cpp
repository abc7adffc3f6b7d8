// Showing a unit, and what looks wrong in the lineage.
#include "keygen.h"
#include "orvbrowser.h"

#include <iostream>

void ORVBrowser::view(string key)
{
    if (!is_roi_key(key))
        return;
    const pos4i position = decode(key);
    setCurrentTimePoint(position.t());
    setCurrentFocalPlane(position.z());
    finish();
}

void ORVBrowser::highlight(const string& unit)
{
    m_mouse_over_roi_set = member(unit);
    show_changes();
}

void ORVBrowser::report(const char* finding, const std::optional<string>& unit)
{
    std::cout << finding << unit.value_or("none") << std::endl;
    if (unit)
        view(*unit);
}

void ORVBrowser::pushButton_dead_end_clicked() { report("Dead-end branch: ", first_dead_end()); }

void ORVBrowser::pushButton_unlinked_unit_clicked() { report("Unlinked unit: ", first_unlinked()); }
