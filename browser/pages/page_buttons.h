// page_buttons.h - the buttons of a page, made from a table.
#pragma once
#include <QPushButton>
#include <QRect>

#include <cstddef>

template <class Page>
struct button_row {
    QPushButton* Page::*button;
    const char* name;    // of the object
    const char* text;
    QRect place;    // on the page
    const char* tip;
};

// None of them takes the keyboard from the canvas.
template <class Page, std::size_t count>
void add_buttons(Page& page, const button_row<Page> (&rows)[count])
{
    for (const button_row<Page>& row : rows) {
        auto* const button = new QPushButton(Page::tr(row.text), &page);
        button->setObjectName(row.name);
        button->setGeometry(row.place);
        button->setToolTip(Page::tr(row.tip));
        button->setFocusPolicy(Qt::NoFocus);
        page.*row.button = button;
    }
}
