#include "common/ui/toolkit/elidedlabel.h"

#include <QEvent>
#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <QToolTip>

namespace vantrel {

ElidedLabel::ElidedLabel(QWidget* parent)
    : ElidedLabel(QString(), parent)
{
}

ElidedLabel::ElidedLabel(const QString& text, QWidget* parent)
    : ZTLabel(text, parent)
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void ElidedLabel::setElided(bool elided)
{
    if (m_elided == elided)
        return;
    m_elided = elided;
    updateGeometry();
    update();
}

void ElidedLabel::setElideMode(Qt::TextElideMode mode)
{
    m_mode = mode;
    update();
}

void ElidedLabel::setLeastTextSize(int pixels)
{
    m_leastTextSize = pixels;
    update();
}

QFont ElidedLabel::shownFont() const
{
    QFont shown = font();
    while (m_leastTextSize > 0 && shown.pixelSize() > m_leastTextSize &&
           QFontMetrics(shown).horizontalAdvance(text()) > contentsRect().width())
        shown.setPixelSize(shown.pixelSize() - 1);
    return shown;
}

QString ElidedLabel::shownText() const
{
    return m_elided ? QFontMetrics(shownFont()).elidedText(text(), m_mode, contentsRect().width()) : text();
}

QSize ElidedLabel::minimumSizeHint() const
{
    QSize size = ZTLabel::minimumSizeHint();
    if (m_elided)
        size.setWidth(qMin(size.width(), fontMetrics().horizontalAdvance(QStringLiteral("MMM…"))));
    return size;
}

bool ElidedLabel::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip && shownText() != text()) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text().toHtmlEscaped(), this);
        return true;
    }
    return ZTLabel::event(event);
}

void ElidedLabel::paintEvent(QPaintEvent* event)
{
    if (!m_elided) {
        ZTLabel::paintEvent(event);
        return;
    }
    QPainter painter(this);
    QStyleOption option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
    painter.setFont(shownFont());
    style()->drawItemText(&painter, contentsRect(), static_cast<int>(alignment()) | Qt::TextSingleLine,
                          palette(), isEnabled(), shownText(), foregroundRole());
}

} // namespace vantrel
