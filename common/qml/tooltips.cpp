#include "common/qml/tooltips.h"

#include <QApplication>
#include <QQuickItem>
#include <QStyle>
#include <QToolTip>

namespace vantrel {

ToolTips::ToolTips(QObject* parent)
    : QObject(parent)
{
    m_delay.setSingleShot(true);
    connect(&m_delay, &QTimer::timeout, this, &ToolTips::appear);
}

void ToolTips::show(QQuickItem* item, const QString& text)
{
    m_item = item;
    m_text = text;
    if (!text.isEmpty())
        m_delay.start(QApplication::style()->styleHint(QStyle::SH_ToolTip_WakeUpDelay));
}

void ToolTips::hide(QQuickItem* item)
{
    if (m_item != item)
        return;
    m_delay.stop();
    m_item = nullptr;
    QToolTip::hideText();
}

void ToolTips::appear()
{
    if (!m_item || !m_item->isVisible())
        return;
    const QPointF place = m_item->mapToGlobal(QPointF(0, m_item->height()));
    QToolTip::showText(
        place.toPoint(),
        QStringLiteral("<qt>%1</qt>").arg(m_text.toHtmlEscaped().replace(u'\n', QLatin1String("<br>"))));
}

} // namespace vantrel
