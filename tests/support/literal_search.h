// literal_search.h - the search for a cutting plane in its plainest form, which looks at every pixel of every
// member afresh for each plane: what the window's own search is compared with.
#pragma once
#include "keygen.h"
#include "orvbrowser.h"

#include <iostream>

// Window derives from ORVBrowser and shows m_roidb and m_q_roiimgdb.
// REQUIRES: some plane with this normal divides the unit
template <class Window>
pos3d literal_search(Window& w, const std::string& doubt, pos3d E_normal, pos3d E_pos, int width)
{
    const pos3d nom = E_normal / E_normal.size();
    unsigned int min_size = 65535;
    pos3d min_pos = E_pos;
    for (int step = -width; step <= width; ++step) {
        QCoreApplication::processEvents();
        const pos3d point = E_pos + nom * step;
        bool plus = false;
        bool minus = false;
        unsigned int s = 0;
        for (const std::string& key : w.member(doubt)) {
            const q_roiimg* const qrimg = w.m_q_roiimgdb->qrimg(w.m_roidb->find_plus(key));
            const pos2i corner = qrimg->top_left();
            for (int j = 0; j < qrimg->height(); ++j)
                for (int i = 0; i < qrimg->width(); ++i) {
                    if (qrimg->value(i, j) == 0)
                        continue;
                    const double z = qrimg->z() * (100.0 / 21.0);
                    const double next_z = (qrimg->z() + 1) * (100.0 / 21.0);
                    const double cos1 = inner_product(pos3d(corner.x() + i, corner.y() + j, z) - point, nom);
                    const double cos2 =
                        inner_product(pos3d(corner.x() + i, corner.y() + j, next_z) - point, nom);
                    s += cos1 * cos2 < 0;
                    (cos1 < 0 ? minus : plus) = true;
                }
        }
        std::cout << "s=" << s << " (" << point << ")" << std::endl;
        if (s < min_size && plus && minus) {
            min_size = s;
            min_pos = point;
        }
    }
    const bool found = min_size < 65535;
    return found ? min_pos : literal_search(w, doubt, E_normal, (E_pos + w.E_g(doubt)) / 2, width);
}
