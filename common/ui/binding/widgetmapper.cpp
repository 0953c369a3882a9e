#include "common/ui/binding/widgetmapper.h"

#include "common/ui/binding/mapperlogging.h"

#include <QLayout>
#include <QWidget>

namespace vantrel {

namespace {

bool holds(QLayout* layout, const QWidget* widget)
{
    for (int i = 0; layout && i < layout->count(); ++i) {
        QLayoutItem* item = layout->itemAt(i);
        if (item->widget() == widget || holds(item->layout(), widget))
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
    if (!m_factory && (!objectType() || !objectType()->inherits(&QWidget::staticMetaObject))) {
        qCWarning(lcMapper) << "Object type is not a widget type";
        return false;
    }
    return true;
}

void WidgetMapper::keepSpare(QWidget* widget)
{
    m_keepsSpare = true;
    m_spare = widget;
    if (widget && m_layout)
        m_layout->addWidget(widget);
    hideSpare();
}

void WidgetMapper::hideSpare()
{
    if (m_spare)
        m_spare->hide();
}

QObject* WidgetMapper::createInstance()
{
    if (m_spare)
        return std::exchange(m_spare, nullptr);
    if (m_factory)
        return m_factory();
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
    if (placed && m_keepsSpare)
        widget->show();
}

void WidgetMapper::objectRemovedHook(const MappedObject& mapped)
{
    if (auto* widget = qobject_cast<QWidget*>(mapped.object))
        Q_EMIT widgetRemoved(widget, mapped.index);
}

void WidgetMapper::release(QObject* object)
{
    if (!m_keepsSpare || m_spare) {
        ObjectMapper::release(object);
        return;
    }
    m_spare = qobject_cast<QWidget*>(object);
    // Later: a row that is replaced needs it again at once.
    QMetaObject::invokeMethod(this, &WidgetMapper::hideSpare, Qt::QueuedConnection);
}

} // namespace vantrel
