#include "awaited_click.h"

#include <QCoreApplication>

#include <utility>

namespace {

QString tr(const char* text) { return QCoreApplication::translate("AwaitedClick", text); }

}    // namespace

AwaitedClick::kind AwaitedClick::kind_of(int key) noexcept
{
    switch (key) {
    case Qt::Key_U:
        return kind::unlink;
    case Qt::Key_J:
        return kind::gap;
    case Qt::Key_O:
        return kind::swap;
    default:
        return kind::nothing;
    }
}

bool AwaitedClick::take_key(int key)
{
    const kind wanted = kind_of(key);
    if (wanted == kind::nothing)
        return false;
    if (wanted == _what) {
        put_away();
    } else if (!_edits.has_chosen()) {
        _edits.say_none_is_chosen();
    } else {
        _window.disarm();
        _what = wanted;
    }
    return true;
}

void AwaitedClick::take_click(const std::string& roi)
{
    switch (std::exchange(_what, kind::nothing)) {
    case kind::unlink:
        return _edits.unlink(roi);
    case kind::gap:
        return _edits.toggle_gap(roi);
    case kind::swap:
        return _edits.swap_parents(roi);
    case kind::nothing:
        break;
    }
}

QString AwaitedClick::text() const
{
    switch (_what) {
    case kind::unlink:
        return tr("Remove a link: click the nucleus that is linked to the chosen one. Esc: cancel");
    case kind::gap:
        return tr("Gap: go to where the chosen nucleus is seen again, and click it. Esc: cancel");
    case kind::swap:
        return tr("Swap: click the nucleus that changes parents with the chosen one. Esc: cancel");
    case kind::nothing:
        break;
    }
    return {};
}
