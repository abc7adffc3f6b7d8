// editing.h - ROIs, units and clicks for the tests of what a person does to them.
#pragma once
#include "keygen.h"
#include "open_window.h"

#include <QMouseEvent>

#include <string>
#include <vector>

// A filled rectangle; its key.
inline std::string put_roi(WindowProbe& w, pos4i at, int width = 4, int height = 4)
{
    std::string outline;
    for (const auto& [direction, pixels] :
         {std::pair('2', height), {'3', width}, {'0', height}, {'1', width}})
        outline.append(static_cast<std::size_t>(pixels), direction);
    w.m_roidb->entry_plus({at, outline});
    return keygen(at);
}

// A unit named by its first member; its head.
inline std::string put_unit(WindowProbe& w, const std::vector<std::string>& members)
{
    for (const std::string& key : members) {
        w.m_members_head.emplace(key, members.front());
        w.m_head_members.emplace(members.front(), key);
    }
    return members.front();
}

// At a picture point, on the canvas or beside it.
inline void click(WindowProbe& w, int x, int y, Qt::MouseButton button = Qt::LeftButton)
{
    QTest::mouseClick(&w, button, {}, w.frame_canvas->pos() + QPoint(x, y));
}

inline void move_pointer(WindowProbe& w, int x, int y)
{
    const QPointF at = w.frame_canvas->pos() + QPoint(x, y);
    QMouseEvent e(QEvent::MouseMove, at, w.mapToGlobal(at), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&w, &e);
}
