#include "common/ui/toolkit/clickablelayoutwidget.h"

#include "common/ui/style/dynamicstyle.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QVariant>

namespace vantrel {

ClickableLayoutWidget::ClickableLayoutWidget(QWidget* parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_StyledBackground);
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
}

void ClickableLayoutWidget::setObjectNames(const QString& base)
{
    setObjectName(base);
}

void ClickableLayoutWidget::enterEvent(QEnterEvent* event)
{
    setDynamicStyle(this, "hover", true);
    QWidget::enterEvent(event);
}

void ClickableLayoutWidget::leaveEvent(QEvent* event)
{
    setDynamicStyle(this, "hover", false);
    QWidget::leaveEvent(event);
}

void ClickableLayoutWidget::mousePressEvent(QMouseEvent* event)
{
    m_pressed = event->button() == Qt::LeftButton;
    setDynamicStyle(this, "pressed", m_pressed);
    event->accept();
}

void ClickableLayoutWidget::mouseReleaseEvent(QMouseEvent* event)
{
    const bool hit = m_pressed && rect().contains(event->position().toPoint());
    m_pressed = false;
    setDynamicStyle(this, "pressed", false);
    if (hit)
        Q_EMIT clicked();
}

void ClickableLayoutWidget::keyPressEvent(QKeyEvent* event)
{
    const int key = event->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space)
        Q_EMIT clicked();
    else
        QWidget::keyPressEvent(event);
}

void ClickableLayoutWidget::focusInEvent(QFocusEvent* event)
{
    setDynamicStyle(this, "keyboardfocus", true);
    QWidget::focusInEvent(event);
}

void ClickableLayoutWidget::focusOutEvent(QFocusEvent* event)
{
    setDynamicStyle(this, "keyboardfocus", false);
    QWidget::focusOutEvent(event);
}

} // namespace vantrel
