#include "common/ui/toolkit/pushbutton.h"

#include "common/ui/style/dynamicstyle.h"

#include <QFocusEvent>
#include <QVariant>

namespace vantrel {

PushButton::PushButton(QWidget* parent)
    : PushButton(QString(), parent)
{
}

PushButton::PushButton(const QString& text, QWidget* parent)
    : QPushButton(text, parent)
{
    setAutoDefault(false);
    setAttribute(Qt::WA_Hover);
}

void PushButton::setObjectNames(const QString& base)
{
    setObjectName(base);
}

void PushButton::setStyleClass(const QString& name)
{
    setDynamicStyle(this, "class", name);
}

void PushButton::focusInEvent(QFocusEvent* event)
{
    const bool byKeyboard =
        event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason;
    setDynamicStyle(this, "keyboardfocus", byKeyboard);
    QPushButton::focusInEvent(event);
}

void PushButton::focusOutEvent(QFocusEvent* event)
{
    setDynamicStyle(this, "keyboardfocus", false);
    QPushButton::focusOutEvent(event);
}

} // namespace vantrel
