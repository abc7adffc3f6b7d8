#include "ORV_roi.h"

#include <utility>

roi::roi(pos4i position, std::string outline) : pos4i(position), _outline(std::move(outline)) {}

roi::roi(int x, int y, int z, int t, std::string outline) : roi(pos4i(x, y, z, t), std::move(outline)) {}

bool roi::operator==(const roi& o) const noexcept { return pos4i::operator==(o) && _outline == o._outline; }
