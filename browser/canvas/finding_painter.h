// finding_painter.h - what would be, drawn over the picture before it is done: a link as a dashed arrow, a
// merge as one colour, a cut as two; and the others that a finding is about.
#pragma once
#include "canvas_view.h"
#include "finding.h"
#include "unit_parting.h"

#include <QColor>
#include <QImage>
#include <QPainter>

// The sides of a cut, and one for what becomes one.
extern const QColor plus_color;
extern const QColor minus_color;

// Its pixels in the colours of their sides, the others transparent; the size of its box.
[[nodiscard]] QImage picture_of(const roi_parting& part);

// On the plane that the window shows.
void paint_finding(QPainter& painter, ORVBrowser& window, const view_transform& view, const finding& f,
                   const unit_parting* parting);
