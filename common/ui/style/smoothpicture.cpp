#include "common/ui/style/smoothpicture.h"

#include <QPainter>
#include <QPixmap>

#include <algorithm>

namespace vantrel {

namespace {

/// Lines of the screen. The painter shares out what has more than 95 pieces of lines: with softened edges,
/// some for each.
constexpr double bandLines = 64;

} // namespace

void drawSmoothly(QPainter& painter, const QRectF& target, const QPixmap& picture, const QRectF& part)
{
    const QRect whole = target.toAlignedRect();
    const int height = std::max(1, static_cast<int>(bandLines / painter.device()->devicePixelRatioF()));
    for (int top = whole.top(); top <= whole.bottom(); top += height) {
        painter.save();
        painter.setClipRect(QRect(whole.left(), top, whole.width(), height), Qt::IntersectClip);
        painter.setRenderHint(QPainter::Antialiasing, false);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawPixmap(target, picture, part);
        painter.restore();
    }
}

void drawSmoothly(QPainter& painter, const QRectF& target, const QPixmap& picture)
{
    drawSmoothly(painter, target, picture, picture.rect());
}

} // namespace vantrel
