// literal_search.h - the search for a cutting plane in its plainest form, which looks at every pixel of every
// member afresh for each plane: what the window's own search is compared with.
#pragma once
#include "keygen.h"
#include "orvbrowser.h"

#include <iostream>

// Window derives from ORVBrowser and shows m_roidb and m_q_roiimgdb.
template <class Window>
unsigned int literal_section_size(Window& w, const std::string& doubt, pos3d E_normal, pos3d E_pos,
                                  bool& plus, bool& minus)
{
    const pos3d nom = E_normal / E_normal.size();
    unsigned int cross_section = 0;
    for (const std::string& key : w.member(doubt)) {
        const q_roiimg* const qrimg = w.m_q_roiimgdb->qrimg(w.m_roidb->find_plus(key));
        const double left = qrimg->top_left().x();
        const double top = qrimg->top_left().y();
        for (int j = 0; j < qrimg->height(); ++j)
            for (int i = 0; i < qrimg->width(); ++i) {
                if (qrimg->value(i, j) == 0)
                    continue;
                const pos3d E_point1(left + i, top + j, qrimg->z() * (100.0 / 21.0));
                const pos3d E_point2(left + i, top + j, (qrimg->z() + 1) * (100.0 / 21.0));
                const double cos1 = inner_product(E_point1 - E_pos, nom);
                const double cos2 = inner_product(E_point2 - E_pos, nom);
                if (cos1 * cos2 < 0)
                    ++cross_section;
                (cos1 < 0 ? minus : plus) = true;
            }
    }
    return cross_section;
}

// REQUIRES: some plane with this normal divides the unit
template <class Window>
pos3d literal_search(Window& w, const std::string& doubt, pos3d E_normal, pos3d E_pos, int width)
{
    const pos3d nom = E_normal / E_normal.size();
    unsigned int min_size = 65535;
    pos3d min_pos = E_pos;
    bool ok = false;
    for (int i = -width; i <= width; ++i) {
        QCoreApplication::processEvents();
        bool plus = false;
        bool minus = false;
        const pos3d E_search_point = E_pos + nom * i;
        const unsigned int s = literal_section_size(w, doubt, E_normal, E_search_point, plus, minus);
        std::cout << "s=" << s << " (" << E_search_point << ")" << std::endl;
        if (s < min_size && plus && minus) {
            min_size = s;
            min_pos = E_search_point;
            ok = true;
        }
    }
    return ok ? min_pos : literal_search(w, doubt, E_normal, (E_pos + w.E_g(doubt)) / 2, width);
}
