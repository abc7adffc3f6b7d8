// Operations that are not built yet: each says so and changes nothing.
#include "orvbrowser.h"

#include <iostream>

namespace {

void not_built_yet(const char* operation) { std::cerr << operation << " is not built yet" << std::endl; }

}    // namespace

std::string ORVBrowser::head(roi) { return "N/A"; }
std::string ORVBrowser::head(string) { return "N/A"; }
bool ORVBrowser::reach(string, string) { return false; }
int ORVBrowser::z_min(string) { return 0; }
int ORVBrowser::z_max(string) { return 0; }
std::set<std::string> ORVBrowser::member(string) { return {}; }
std::set<std::string> ORVBrowser::units(int) { return {}; }
unsigned int ORVBrowser::ID(string) { return 0; }
std::set<std::string> ORVBrowser::parents(string) { return {}; }
std::set<std::string> ORVBrowser::children(string) { return {}; }
std::set<std::string> ORVBrowser::upstream_units(string, int) { return {}; }
std::set<std::string> ORVBrowser::subset_of_unit_from(string) { return {}; }
std::set<std::string> ORVBrowser::subset_of_elite_unit_from(string) { return {}; }
pos3d ORVBrowser::g(string) { return {}; }
pos3d ORVBrowser::E_g(string) { return {}; }
bool ORVBrowser::isLink(string, string) { return false; }
unsigned int ORVBrowser::cross_section_size(string, pos3d, pos3d, bool&, bool&) { return 0; }
pos3d ORVBrowser::search_cutting_position(string, pos3d, pos3d E_pos, int) { return E_pos; }

void ORVBrowser::drawLineage(QPixmap&) { not_built_yet("drawLineage"); }
void ORVBrowser::manualSplit(string, set<string>, int, int, int) { not_built_yet("manualSplit"); }
void ORVBrowser::pushButton_auto_toggled(bool b) { m_auto = b; }
void ORVBrowser::pushButton_forward_tracking_clicked() { not_built_yet("Forward tracking"); }
void ORVBrowser::pushButton_backward_tracking_clicked() { not_built_yet("Backward tracking"); }
void ORVBrowser::do_zTracking() { not_built_yet("Z"); }
void ORVBrowser::pushButton_z_clicked() { do_zTracking(); }
void ORVBrowser::forwardTracking(int) { not_built_yet("forwardTracking"); }
void ORVBrowser::backwardTracking(int) { not_built_yet("backwardTracking"); }
void ORVBrowser::zTracking(int) { not_built_yet("zTracking"); }
void ORVBrowser::checkAdjacentFocalPlane(roi&, int, int, set<string>*, double, double)
{
    not_built_yet("checkAdjacentFocalPlane");
}
void ORVBrowser::pushButton_stop_clicked() { pushButton_auto->setChecked(false); }
void ORVBrowser::pushButton_clean_clicked() { not_built_yet("Clean Up"); }
void ORVBrowser::makeLinkage(int) { not_built_yet("makeLinkage"); }
void ORVBrowser::release_child(string, string) { not_built_yet("release_child"); }
void ORVBrowser::link(string, string) { not_built_yet("link"); }
void ORVBrowser::search_doubt_units() { not_built_yet("search_doubt_units"); }
void ORVBrowser::mergeUnits(string, string) { not_built_yet("mergeUnits"); }
void ORVBrowser::pushButton_restore_clicked() { not_built_yet("Restore ROIs"); }
void ORVBrowser::pushButton_select_all_clicked() { not_built_yet("Select all"); }
void ORVBrowser::pushButton_read_info_clicked() { not_built_yet("Read Info"); }
void ORVBrowser::pushButton_save_info_clicked() { not_built_yet("Save Info"); }
void ORVBrowser::pushButton_auto_split_toggled(bool on) { m_auto_split = on; }
void ORVBrowser::view(string) { not_built_yet("view"); }
void ORVBrowser::pushButton_split_clicked() { not_built_yet("Split"); }
void ORVBrowser::splitROI(string, pos3d, pos3d, list<roi>&, list<roi>&) { not_built_yet("splitROI"); }
void ORVBrowser::pushButton_dead_end_clicked() { not_built_yet("Dead end"); }
void ORVBrowser::pushButton_unlinked_unit_clicked() { not_built_yet("Unlinked unit"); }
void ORVBrowser::pushButton_read_FP_clicked() { not_built_yet("Read FP"); }
void ORVBrowser::pushButton_save_FP_clicked() { not_built_yet("Save FP"); }
