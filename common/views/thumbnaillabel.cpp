#include "common/views/thumbnaillabel.h"

#include "common/ui/style/fontsizefollower.h"
#include "common/ui/style/smoothpicture.h"

#include <QPainter>

namespace vantrel {

ThumbnailLabel::ThumbnailLabel(QWidget* parent)
    : QWidget(parent)
{
    followFontSize(this, [this](FontSize size) { setFixedSize(scaled(128, size), scaled(72, size)); });
}

void ThumbnailLabel::setPixmap(const QPixmap& pixmap)
{
    m_pixmap = pixmap;
    update();
}

void ThumbnailLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), Qt::black);
    if (m_pixmap.isNull())
        return;
    QRect target(QPoint(), m_pixmap.size().scaled(size(), Qt::KeepAspectRatio));
    target.moveCenter(rect().center());
    drawSmoothly(painter, target, m_pixmap);
}

} // namespace vantrel
