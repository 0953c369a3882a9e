#include "common/session/mirror/objectmapper.h"

#include "common/session/settings/sessionlogging.h"

namespace vantrel {

ObjectMapper::ObjectMapper(QObject* parent)
    : QObject(parent)
{
}

ObjectMapper::~ObjectMapper()
{
    for (const MappedObject& mapped : std::as_const(m_mapped))
        delete mapped.object;
}

void ObjectMapper::setModel(const QAbstractItemModel* model, const QModelIndex& root)
{
    depopulate();
    if (m_model)
        m_model->disconnect(this);
    m_model = model;
    m_root = root;
    m_hasRoot = root.isValid();
    if (!root.isValid())
        qCWarning(lcSession) << "Root is not valid " << objectName();
    if (model) {
        connect(model, &QAbstractItemModel::modelReset, this, &ObjectMapper::onModelReset);
        connect(model, &QAbstractItemModel::rowsInserted, this, &ObjectMapper::onRowsInserted);
        connect(model, &QAbstractItemModel::rowsAboutToBeRemoved, this,
                &ObjectMapper::onRowsAboutToBeRemoved);
    }
    populate();
}

void ObjectMapper::setModel(const QModelIndex& root)
{
    setModel(root.model(), root);
}

void ObjectMapper::setRoot(const QModelIndex& root)
{
    setModel(m_model, root);
}

bool ObjectMapper::initialized() const
{
    return m_model != nullptr;
}

QObject* ObjectMapper::createInstance()
{
    if (!m_objectType)
        return nullptr;
    QObject* instance = m_objectType->newInstance();
    if (!instance)
        qCWarning(lcSession).noquote() << QStringLiteral("Could not create instance of ") +
                                              QLatin1String(m_objectType->className()) +
                                              QStringLiteral(" is the constructor Q_INVOKABLE?");
    return instance;
}

void ObjectMapper::postPopulateHook(MappedObject&) {}

void ObjectMapper::objectRemovedHook(const MappedObject&) {}

void ObjectMapper::populate()
{
    if (!initialized() || (m_hasRoot && !m_root.isValid()))
        return;
    const int rows = m_model->rowCount(m_root);
    for (int row = 0; row < rows && m_mapped.size() < m_most; ++row)
        populate(m_model->index(row, 0, m_root));
}

void ObjectMapper::populate(const QModelIndex& index)
{
    if (!index.isValid()) {
        qCWarning(lcSession) << "Invalid index " << index;
        return;
    }
    MappedObject mapped{index, createInstance()};
    m_mapped.append(mapped);
    Q_EMIT objectAdded(mapped.object, index);
    postPopulateHook(mapped);
}

void ObjectMapper::depopulate()
{
    const QList<MappedObject> all = std::exchange(m_mapped, {});
    for (const MappedObject& mapped : all)
        drop(mapped);
}

/// The rows from first to last below the root.
void ObjectMapper::depopulate(int first, int last)
{
    QList<MappedObject> gone;
    m_mapped.removeIf([&](const MappedObject& mapped) {
        const bool found = mapped.index.row() >= first && mapped.index.row() <= last;
        if (found)
            gone.append(mapped);
        return found;
    });
    for (const MappedObject& mapped : std::as_const(gone))
        drop(mapped);
}

void ObjectMapper::drop(const MappedObject& mapped)
{
    Q_EMIT objectRemoved(mapped.object, mapped.index);
    objectRemovedHook(mapped);
    if (mapped.object)
        release(mapped.object);
}

void ObjectMapper::release(QObject* object)
{
    // A widget leaves its parent by itself as it ends.
    if (!object->isWidgetType())
        object->setParent(nullptr);
    delete object;
}

bool ObjectMapper::concerns(const QModelIndex& parent) const
{
    if (m_root == parent)
        return m_root.isValid() || !m_hasRoot;
    if (m_root.isValid() && parent.isValid() && m_root.internalPointer() == parent.internalPointer() &&
        m_root.internalPointer())
        qCWarning(lcSession) << "Not equal, but internal pointer is correct";
    return false;
}

void ObjectMapper::onModelReset()
{
    depopulate();
    populate();
}

void ObjectMapper::onRowsInserted(const QModelIndex& parent, int first, int last)
{
    if (!initialized() || !concerns(parent))
        return;
    for (int row = first; row <= last && m_mapped.size() < m_most; ++row)
        populate(m_model->index(row, 0, parent));
}

void ObjectMapper::onRowsAboutToBeRemoved(const QModelIndex& parent, int first, int last)
{
    if (!m_model || !concerns(parent))
        return;
    depopulate(first, last);
}

} // namespace vantrel
