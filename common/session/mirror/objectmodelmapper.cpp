#include "common/session/mirror/objectmodelmapper.h"

#include "common/session/settings/sessionlogging.h"

#include <QScopedValueRollback>

namespace vantrel {

ObjectModelMapper::ObjectModelMapper(QAbstractItemModel* model, QObject* parent)
    : QObject(parent)
    , m_model(model)
{
    if (!model)
        return;
    connect(model, &QAbstractItemModel::dataChanged, this, &ObjectModelMapper::onModelDataChanged);
    connect(model, &QAbstractItemModel::modelReset, this, &ObjectModelMapper::updateAllMappings);
}

void ObjectModelMapper::addMapping(QObject* object, const QString& property, int column)
{
    if (!object)
        return;
    const int index = object->metaObject()->indexOfProperty(property.toUtf8().constData());
    if (index < 0) {
        qCWarning(lcSession) << "Property" << property << "not found in object";
        return;
    }
    const QMetaProperty target = object->metaObject()->property(index);
    if (!target.hasNotifySignal()) {
        qCWarning(lcSession) << "Property" << property << "does not have a NOTIFY signal.";
        return;
    }
    m_mappings.append({object, target, column});
    const int slot = metaObject()->indexOfSlot("onPropertyChange()");
    connect(object, target.notifySignal(), this, metaObject()->method(slot));
}

void ObjectModelMapper::toFirst()
{
    setCurrentIndex(0);
}

void ObjectModelMapper::toLast()
{
    setCurrentIndex(m_model ? m_model->rowCount() - 1 : -1);
}

void ObjectModelMapper::toNext()
{
    setCurrentIndex(m_currentIndex + 1);
}

void ObjectModelMapper::toPrevious()
{
    setCurrentIndex(m_currentIndex - 1);
}

void ObjectModelMapper::setCurrentIndex(int index)
{
    if (!m_model || index < 0 || index >= m_model->rowCount())
        return;
    const bool changed = std::exchange(m_currentIndex, index) != index;
    updateAllMappings();
    if (changed)
        Q_EMIT currentIndexChanged();
}

void ObjectModelMapper::setCurrentModelIndex(const QModelIndex& index)
{
    setCurrentIndex(index.row());
}

void ObjectModelMapper::updateAllMappings()
{
    for (const PropertyMapping& mapping : std::as_const(m_mappings))
        update(mapping);
}

void ObjectModelMapper::update(const PropertyMapping& mapping)
{
    if (!m_model || !mapping.object || m_currentIndex < 0)
        return;
    const QScopedValueRollback updating(m_updating, true);
    mapping.property.write(mapping.object, m_model->index(m_currentIndex, mapping.column).data(Qt::EditRole));
}

void ObjectModelMapper::onPropertyChange()
{
    if (m_updating || !m_model || m_currentIndex < 0)
        return;
    const QObject* source = sender();
    const int signal = senderSignalIndex();
    for (const PropertyMapping& mapping : std::as_const(m_mappings))
        if (mapping.object == source && mapping.property.notifySignalIndex() == signal)
            m_model->setData(m_model->index(m_currentIndex, mapping.column),
                             mapping.property.read(mapping.object), Qt::EditRole);
}

void ObjectModelMapper::onModelDataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight)
{
    if (m_currentIndex < topLeft.row() || m_currentIndex > bottomRight.row())
        return;
    for (const PropertyMapping& mapping : std::as_const(m_mappings))
        if (mapping.column >= topLeft.column() && mapping.column <= bottomRight.column())
            update(mapping);
}

} // namespace vantrel
