#include "common/session/mirror/objecttreemodel.h"

#include "common/session/settings/sessionlogging.h"

#include <QFile>

namespace vantrel {

ObjectTreeModel::ObjectTreeModel(QObject* parent)
    : QAbstractItemModel(parent)
{
}

ObjectTreeModel::~ObjectTreeModel()
{
    if (m_scene)
        m_scene->removeStructureObserver(this);
}

void ObjectTreeModel::setScene(Scene* scene)
{
    if (m_scene.get() == scene)
        return;
    beginResetModel();
    if (m_scene)
        m_scene->removeStructureObserver(this);
    m_scene = Ref<Scene>(scene);
    if (m_scene)
        m_scene->addStructureObserver(this);
    endResetModel();
}

Object* ObjectTreeModel::nodeOf(const QModelIndex& index) const
{
    if (index.isValid())
        return static_cast<Object*>(index.internalPointer());
    return m_scene ? m_scene->root() : nullptr;
}

Object* ObjectTreeModel::object(const QModelIndex& index) const
{
    return index.isValid() ? static_cast<Object*>(index.internalPointer()) : nullptr;
}

QModelIndex ObjectTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    const Object* node = nodeOf(parent);
    if (!node || row < 0 || column != 0)
        return {};
    if (Object* child = node->childAt(row))
        return createIndex(row, 0, child);
    const bool list = dynamic_cast<const ObjectArray*>(node) || dynamic_cast<const ObjectMap*>(node);
    qCWarning(lcSession) << (list ? "index out of range" : "child row out of range");
    return {};
}

QModelIndex ObjectTreeModel::index(Object* object) const
{
    if (!object || !m_scene || object == m_scene->root())
        return {};
    const Object* parent = object->getParent();
    const int row = parent ? parent->childIndex(object) : -1;
    if (row < 0) {
        qCWarning(lcSession) << "Child not found in parent array";
        return {};
    }
    return createIndex(row, 0, object);
}

QModelIndex ObjectTreeModel::index(const QString& path) const
{
    Object* object = m_scene ? m_scene->find(path.toStdString()).deref() : nullptr;
    if (!object) {
        qCWarning(lcSession).noquote() << QStringLiteral("Could not find ") + path;
        return {};
    }
    return index(object);
}

bool ObjectTreeModel::hasPath(const QString& path) const
{
    return m_scene && m_scene->find(path.toStdString()).deref();
}

QModelIndex ObjectTreeModel::index(const QString& name, const QModelIndex& parent) const
{
    const Object* node = nodeOf(parent);
    return node ? index(node->findChildByName(name.toStdString(), true)) : QModelIndex();
}

QModelIndex ObjectTreeModel::parent(const QModelIndex& index) const
{
    const Object* node = object(index);
    return node ? this->index(node->getParent()) : QModelIndex();
}

int ObjectTreeModel::rowCount(const QModelIndex& parent) const
{
    const Object* node = parent.column() > 0 ? nullptr : nodeOf(parent);
    return node ? node->childCount() : 0;
}

int ObjectTreeModel::columnCount(const QModelIndex&) const
{
    return 1;
}

Qt::ItemFlags ObjectTreeModel::flags(const QModelIndex& index) const
{
    return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
}

QVariant ObjectTreeModel::data(const QModelIndex& index, int role) const
{
    Object* node = object(index);
    if (!node)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return displayName(node);
    case Qt::ToolTipRole:
        return QString::fromStdString(node->getTypeName());
    case Qt::DecorationRole:
        return icon(node);
    case ObjectRole:
        return QVariant::fromValue(node);
    case SceneRole:
        return QVariant::fromValue(m_scene.get());
    default:
        return {};
    }
}

/// The index within an array, the key within a map, the child's name otherwise.
QString ObjectTreeModel::displayName(const Object* object)
{
    const Object* parent = object->getParent();
    return parent ? QString::fromStdString(parent->childName(parent->childIndex(object))) : QString();
}

QVariant ObjectTreeModel::icon(const Object* object) const
{
    const auto* array = dynamic_cast<const ObjectArray*>(object);
    const TypeInfo* type = array ? array->getItemType() : object->getType();
    if (!type)
        return {};
    const QString name = QString::fromStdString(type->name);
    auto& cache = array ? m_arrayIcons : m_objectIcons;
    auto found = cache.find(name);
    if (found == cache.end()) {
        QIcon drawing;
        for (; type && drawing.isNull(); type = type->base) {
            const QString file =
                QStringLiteral(":/icons/scene_%1.svg").arg(QString::fromStdString(type->name).toLower());
            if (QFile::exists(file))
                drawing = QIcon(file);
        }
        found = cache.insert(name, drawing);
    }
    return found->isNull() ? QVariant() : QVariant(*found);
}

bool ObjectTreeModel::isShown(const Object* parent) const
{
    Path path;
    return m_scene && m_scene->pathOf(parent, path);
}

void ObjectTreeModel::rowAboutToBeInserted(Object* parent, int row)
{
    m_changingRows = isShown(parent);
    if (m_changingRows)
        beginInsertRows(index(parent), row, row);
    else
        qCWarning(lcSession) << "Could not resolve path";
}

void ObjectTreeModel::rowInserted(Object* parent, int row)
{
    if (!std::exchange(m_changingRows, false))
        return;
    endInsertRows();
    renumberFrom(parent, row + 1);
}

void ObjectTreeModel::rowAboutToBeRemoved(Object* parent, int row)
{
    m_changingRows = isShown(parent) && parent->childAt(row);
    if (m_changingRows)
        beginRemoveRows(index(parent), row, row);
    else
        qCWarning(lcSession) << "No valid index found";
}

void ObjectTreeModel::rowRemoved(Object* parent, int row)
{
    if (!std::exchange(m_changingRows, false))
        return;
    endRemoveRows();
    renumberFrom(parent, row);
}

/// The items of an array are shown by their index, which has changed for those from this row on.
void ObjectTreeModel::renumberFrom(Object* parent, int row)
{
    const int last = parent->childCount() - 1;
    if (row <= last && dynamic_cast<ObjectArray*>(parent))
        Q_EMIT dataChanged(createIndex(row, 0, parent->childAt(row)),
                           createIndex(last, 0, parent->childAt(last)), {Qt::DisplayRole});
}

} // namespace vantrel
