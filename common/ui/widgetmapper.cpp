#include "common/ui/widgetmapper.h"

#include "common/ui/mapperlogging.h"

#include <QLayout>
#include <QWidget>

namespace vantrel {

namespace {

bool holds(const QLayout* layout, const QWidget* widget)
{
    for (int i = 0; layout && i < layout->count(); ++i) {
        const QLayoutItem* item = layout->itemAt(i);
        if (item->widget() == widget || holds(const_cast<QLayoutItem*>(item)->layout(), widget))
            return true;
    }
    return false;
}

} // namespace

bool WidgetMapper::initialized() const
{
    if (!ObjectMapper::initialized())
        return false;
    if (!m_layout) {
        qCWarning(lcMapper) << "No layout set";
        return false;
    }
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
    const bool placed = widget->parentWidget() && holds(widget->parentWidget()->layout(), widget);
    if (!placed && m_layout)
        m_layout->addWidget(widget);
}

void WidgetMapper::objectRemovedHook(const MappedObject& mapped)
{
    if (auto* widget = qobject_cast<QWidget*>(mapped.object))
        Q_EMIT widgetRemoved(widget, mapped.index);
}

} // namespace vantrel
