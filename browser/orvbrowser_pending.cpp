// Operations that are not built yet: each says so and changes nothing.
#include "orvbrowser.h"

#include <iostream>

namespace {

void not_built_yet(const char* operation) { std::cerr << operation << " is not built yet" << std::endl; }

}    // namespace

unsigned int ORVBrowser::cross_section_size(string, pos3d, pos3d, bool&, bool&) { return 0; }
pos3d ORVBrowser::search_cutting_position(string, pos3d, pos3d E_pos, int) { return E_pos; }
void ORVBrowser::manualSplit(string, set<string>, int, int, int) { not_built_yet("manualSplit"); }
void ORVBrowser::pushButton_auto_split_toggled(bool on) { m_auto_split = on; }
void ORVBrowser::pushButton_split_clicked() { not_built_yet("Split"); }
void ORVBrowser::splitROI(string, pos3d, pos3d, list<roi>&, list<roi>&) { not_built_yet("splitROI"); }
