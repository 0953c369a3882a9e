#include "common/ui/toolkit/ztdrag.h"

#include "common/ui/style/colors.h"

#include <QDrag>
#include <QMimeData>
#include <QPainter>
#include <QWidget>

namespace vantrel {

using colors::getColor;

namespace {

constexpr int padding = 8;
constexpr int widest = 280; // pixels of text

} // namespace

QPixmap ZTDrag::tag(const QWidget* source, const QString& label)
{
    const QFontMetrics metrics(source->font());
    const QString text = metrics.elidedText(label, Qt::ElideRight, widest);
    const QSize size(metrics.horizontalAdvance(text) + 2 * padding, metrics.height() + padding);
    const qreal ratio = source->devicePixelRatioF();
    QPixmap pixmap(size * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(getColor(colors::Zt_orange));
    painter.setBrush(getColor(colors::Slate_grey_700));
    painter.drawRoundedRect(QRectF(QPointF(), size).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
    painter.setFont(source->font());
    painter.setPen(getColor(colors::White));
    painter.drawText(QRect(QPoint(), size), Qt::AlignCenter, text);
    return pixmap;
}

Qt::DropAction ZTDrag::startDrag(QWidget* source, QMimeData* data, Qt::DropActions actions,
                                 const QString& label)
{
    auto* drag = new QDrag(source); // deletes itself once it is dropped
    drag->setMimeData(data);
    drag->setPixmap(tag(source, label));
    drag->setHotSpot({-12, -8});
    return drag->exec(actions, Qt::CopyAction);
}

} // namespace vantrel
