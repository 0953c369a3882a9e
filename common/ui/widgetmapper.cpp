#include "common/ui/widgetmapper.h"

#include "common/ui/mapperlogging.h"

#include <QLayout>
#include <QWidget>

namespace vantrel {

bool WidgetMapper::initialized() const
{
    if (!ObjectMapper::initialized() || !m_layout)
        return false;
    if (!objectType() || !objectType()->inherits(&QWidget::staticMetaObject)) {
        qCWarning(lcMapper) << "Object type is not a widget type";
        return false;
    }
    return true;
}

QObject* WidgetMapper::createInstance()
{
    QObject* instance = ObjectMapper::createInstance();
    if (instance && !qobject_cast<QWidget*>(instance))
        qCWarning(lcMapper) << "Created instance is not a widget";
    return instance;
}

void WidgetMapper::postPopulateHook(MappedObject& mapped)
{
    auto* widget = qobject_cast<QWidget*>(mapped.object);
    if (!widget)
        return;
    Q_EMIT widgetAdded(widget, mapped.index);
    // A receiver may have put it somewhere already.
    const bool placed = widget->parentWidget() && widget->parentWidget()->layout() &&
                        widget->parentWidget()->layout()->indexOf(widget) >= 0;
    if (!placed && m_layout)
        m_layout->addWidget(widget);
}

void WidgetMapper::objectRemovedHook(const MappedObject& mapped)
{
    if (auto* widget = qobject_cast<QWidget*>(mapped.object))
        Q_EMIT widgetRemoved(widget, mapped.index);
}

} // namespace vantrel
