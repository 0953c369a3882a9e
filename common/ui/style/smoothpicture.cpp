#include "common/ui/style/smoothpicture.h"

#include <QPainter>
#include <QPixmap>

#include <algorithm>

namespace vantrel {

namespace {

/// Lines of the screen. The painter shares out what has more than 95 pieces of lines: with softened edges,
/// some for each.
constexpr double bandLines = 64, softBandLines = 20;

/// Draws what lies within the rectangle band by band.
template <typename Draw>
void drawInBands(QPainter& painter, const QRect& whole, double lines, const Draw& draw)
{
    const int height = std::max(1, static_cast<int>(lines / painter.device()->devicePixelRatioF()));
    for (int top = whole.top(); top <= whole.bottom(); top += height) {
        painter.save();
        painter.setClipRect(QRect(whole.left(), top, whole.width(), height), Qt::IntersectClip);
        draw();
        painter.restore();
    }
}

} // namespace

void drawSmoothly(QPainter& painter, const QRectF& target, const QPixmap& picture, const QRectF& part)
{
    drawInBands(painter, target.toAlignedRect(), bandLines, [&] {
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawPixmap(target, picture, part);
    });
}

void drawSmoothly(QPainter& painter, const QRectF& target, const QPixmap& picture)
{
    drawSmoothly(painter, target, picture, picture.rect());
}

void drawRounded(QPainter& painter, const QRectF& box, double radius)
{
    const double edge = painter.pen().widthF();
    drawInBands(painter, box.adjusted(-edge, -edge, edge, edge).toAlignedRect(), softBandLines,
                [&] { painter.drawRoundedRect(box, radius, radius); });
}

void fillThrough(QPainter& painter, const QRect& box, const QColor& colour)
{
    drawInBands(painter, box, bandLines, [&] { painter.fillRect(box, colour); });
}

} // namespace vantrel
