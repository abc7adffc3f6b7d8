#include "parting_strip.h"

#include "finding_painter.h"

#include <QPainter>

#include <algorithm>
#include <map>

namespace {

constexpr int number_height = 12;    // of the plane's number below each picture

QRect all_of(const unit_parting& parting)
{
    QRect all;
    for (const roi_parting& part : parting.rois)
        all |= QRect(QPoint(part.box.left, part.box.top), QPoint(part.box.right, part.box.bottom));
    return all;
}

}    // namespace

void PartingStrip::show_parting(const std::optional<unit_parting>& parting)
{
    _parting = parting;
    update();
}

// The lowest plane on the left.
void PartingStrip::paintEvent(QPaintEvent*)
{
    if (!_parting || _parting->rois.empty())
        return;
    std::map<int, std::vector<const roi_parting*>> planes;
    for (const roi_parting& part : _parting->rois)
        planes[part.z].push_back(&part);
    const QRect area = all_of(*_parting);
    const int cell = std::min(height() - number_height, width() / static_cast<int>(planes.size()));
    const double scale = (cell - 2.0) / std::max(area.width(), area.height());
    QPainter painter(this);
    QFont small = font();
    small.setPixelSize(9);
    painter.setFont(small);
    int left = 0;
    for (const auto& [z, parts] : planes) {
        painter.fillRect(left, 0, cell - 1, cell - 1, QColor(40, 40, 40));
        for (const roi_parting* const part : parts) {
            const QPointF corner(left + 1 + (part->box.left - area.left()) * scale,
                                 1 + (part->box.top - area.top()) * scale);
            const QImage picture = picture_of(*part);
            painter.drawImage(QRectF(corner, QSizeF(picture.size()) * scale), picture);
        }
        painter.drawText(QRect(left, cell, cell, number_height), Qt::AlignCenter, QString::number(z));
        left += cell;
    }
}
