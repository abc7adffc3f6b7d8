// The slots that the curation alone serves.
#include "orvbrowser.h"

#include <utility>

void ORVBrowser::forwardTracking(int t) { curation::forwardTracking(t); }

void ORVBrowser::backwardTracking(int start_time_point) { curation::backwardTracking(start_time_point); }

void ORVBrowser::zTracking(int t) { curation::zTracking(t); }

void ORVBrowser::checkAdjacentFocalPlane(roi& r_from, int t, int z, set<string>* roiset, double mor_t,
                                         double mor_z)
{
    curation::checkAdjacentFocalPlane(r_from, t, z, roiset, mor_t, mor_z);
}

void ORVBrowser::makeLinkage(int t) { curation::makeLinkage(t); }

void ORVBrowser::release_child(string parent, string child)
{
    curation::release_child(std::move(parent), std::move(child));
}

void ORVBrowser::link(string unit1, string unit2) { curation::link(std::move(unit1), std::move(unit2)); }

void ORVBrowser::search_doubt_units() { curation::search_doubt_units(); }

void ORVBrowser::mergeUnits(string a, string b) { curation::mergeUnits(std::move(a), std::move(b)); }

void ORVBrowser::splitROI(string doubt, pos3d E_normal, pos3d E_m, list<roi>& roi_plus, list<roi>& roi_minus)
{
    curation::splitROI(std::move(doubt), E_normal, E_m, roi_plus, roi_minus);
}
