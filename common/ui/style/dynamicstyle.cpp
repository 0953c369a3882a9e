#include "common/ui/style/dynamicstyle.h"

#include <QStyle>
#include <QVariant>
#include <QWidget>

namespace vantrel {

void setDynamicStyle(QWidget* widget, const char* property, const QVariant& value)
{
    if (!widget || (widget->dynamicPropertyNames().contains(property) && widget->property(property) == value))
        return;
    widget->setProperty(property, value);
    widget->style()->unpolish(widget);
    widget->style()->polish(widget);
    widget->update();
}

} // namespace vantrel
