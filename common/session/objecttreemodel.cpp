#include "common/session/objecttreemodel.h"

#include "common/session/sessionlogging.h"

#include <QFile>

namespace vantrel {

ObjectTreeModel::ObjectTreeModel(QObject* parent) : QAbstractItemModel(parent) {}

ObjectTreeModel::~ObjectTreeModel()
{
    if (m_scene)
        m_scene->removeChangeCallback(&ObjectTreeModel::onSceneChangeStatic, this);
}

void ObjectTreeModel::setScene(Scene* scene)
{
    if (m_scene.get() == scene)
        return;
    if (m_scene)
        m_scene->removeChangeCallback(&ObjectTreeModel::onSceneChangeStatic, this);
    m_scene = Ref<Scene>(scene);
    if (m_scene)
        m_scene->addChangeCallback(&ObjectTreeModel::onSceneChangeStatic, this);
    beginResetModel();
    rebuild();
    endResetModel();
}

void ObjectTreeModel::rebuild()
{
    m_nodes.clear();
    m_root.reset();
    Object* root = m_scene ? m_scene->find(PathView()).deref() : nullptr;
    if (root)
        m_root = build(root, nullptr, 0);
}

std::unique_ptr<ObjectTreeModel::Node> ObjectTreeModel::build(Object* object, Node* parent, int row)
{
    auto node = std::make_unique<Node>();
    node->object = object;
    node->parent = parent;
    node->row = row;
    m_nodes[object] = node.get();
    const std::vector<Object*> children = object->getChildren();
    node->children.reserve(children.size());
    for (Object* child : children)
        node->children.push_back(build(child, node.get(), int(node->children.size())));
    return node;
}

void ObjectTreeModel::forget(const Node* node)
{
    m_nodes.erase(node->object);
    for (const auto& child : node->children)
        forget(child.get());
}

ObjectTreeModel::Node* ObjectTreeModel::nodeOf(const Object* object) const
{
    const auto found = m_nodes.find(object);
    return found == m_nodes.end() ? nullptr : found->second;
}

ObjectTreeModel::Node* ObjectTreeModel::nodeOf(const QModelIndex& index) const
{
    return index.isValid() ? nodeOf(static_cast<const Object*>(index.internalPointer())) : m_root.get();
}

int ObjectTreeModel::rowOf(const Node* node) const
{
    const auto& siblings = node->parent->children;
    const int size = int(siblings.size());
    const auto stands = [&](int row) { return row >= 0 && row < size && siblings[row].get() == node; };
    // Rows move by what was put in or taken out before them, so the last known place is the best start.
    const int start = std::clamp(node->row, 0, std::max(0, size - 1));
    for (int distance = 0; distance < size; ++distance) {
        if (stands(start - distance))
            return node->row = start - distance;
        if (stands(start + distance))
            return node->row = start + distance;
    }
    return -1;
}

QModelIndex ObjectTreeModel::indexOf(const Node* node) const
{
    if (!node || !node->parent)
        return {};
    const int row = rowOf(node);
    if (row < 0) {
        qCWarning(lcSession) << "Child not found in parent array";
        return {};
    }
    return createIndex(row, 0, node->object);
}

QModelIndex ObjectTreeModel::index(int row, int column, const QModelIndex& parent) const
{
    const Node* node = nodeOf(parent);
    if (!node || row < 0 || column != 0)
        return {};
    if (row >= int(node->children.size())) {
        const bool list = dynamic_cast<ObjectArray*>(node->object) || dynamic_cast<ObjectMap*>(node->object);
        qCWarning(lcSession) << (list ? "index out of range" : "child row out of range");
        return {};
    }
    const Node* child = node->children[row].get();
    child->row = row;
    return createIndex(row, 0, child->object);
}

QModelIndex ObjectTreeModel::index(Object* object) const
{
    if (!object)
        return {};
    const Node* node = nodeOf(object);
    if (!node) {
        qCWarning(lcSession) << "Child not found in parent array";
        return {};
    }
    return indexOf(node);
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
    const Node* node = nodeOf(parent);
    return node ? index(node->object->findChildByName(name.toStdString(), true)) : QModelIndex();
}

Object* ObjectTreeModel::object(const QModelIndex& index) const
{
    return index.isValid() ? static_cast<Object*>(index.internalPointer()) : nullptr;
}

QModelIndex ObjectTreeModel::parent(const QModelIndex& index) const
{
    const Node* node = index.isValid() ? nodeOf(index) : nullptr;
    return node ? indexOf(node->parent) : QModelIndex();
}

int ObjectTreeModel::rowCount(const QModelIndex& parent) const
{
    const Node* node = parent.column() > 0 ? nullptr : nodeOf(parent);
    return node ? int(node->children.size()) : 0;
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
    const Node* node = index.isValid() ? nodeOf(index) : nullptr;
    if (!node)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return displayName(node);
    case Qt::ToolTipRole:
        return QString::fromStdString(node->object->getTypeName());
    case Qt::DecorationRole:
        return icon(node->object);
    case ObjectRole:
        return QVariant::fromValue(node->object);
    case SceneRole:
        return QVariant::fromValue(m_scene.get());
    default:
        return {};
    }
}

QString ObjectTreeModel::displayName(const Node* node) const
{
    Object* container = node->parent ? node->parent->object : nullptr;
    if (!container)
        return {};
    if (dynamic_cast<ObjectArray*>(container))
        return QString::number(rowOf(node));
    if (const auto* map = dynamic_cast<ObjectMap*>(container))
        return QString::fromStdString(map->indexOf(node->object));
    return QString::fromStdString(container->childName(rowOf(node)));
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

void ObjectTreeModel::onSceneChangeStatic(Scene*, int count, const SceneChange* changes, void* user)
{
    static_cast<ObjectTreeModel*>(user)->onSceneChange(count, changes);
}

void ObjectTreeModel::onSceneChange(int count, const SceneChange* changes)
{
    for (int i = 0; i < count;) {
        if (changes[i].kind == SceneChange::Removed) {
            i += onObjectsRemoved(count - i, changes + i);
            continue;
        }
        if (changes[i].kind == SceneChange::Added)
            onObjectAdded(changes[i].object);
        ++i;
    }
}

void ObjectTreeModel::onObjectAdded(Object* object)
{
    if (nodeOf(object))
        return; // came with the subtree of an ancestor
    Object* container = object->getParent();
    Node* parent = container ? nodeOf(container) : nullptr;
    Path path;
    if (!parent || !m_scene->pathOf(object, path)) {
        qCWarning(lcSession) << "Could not resolve path";
        return;
    }
    const int place = container->childIndex(object);
    // Later changes of the same batch may have moved the place already; they are told next.
    const int row = std::clamp(place, 0, int(parent->children.size()));
    beginInsertRows(indexOf(parent), row, row);
    parent->children.insert(parent->children.begin() + row, build(object, parent, row));
    endInsertRows();
}

/// Takes out as many of the removed objects at once as stood next to each other; gives their number.
int ObjectTreeModel::onObjectsRemoved(int count, const SceneChange* changes)
{
    Node* node = nodeOf(changes[0].object);
    if (!node || !node->parent) {
        qCWarning(lcSession) << "No valid index found";
        return 1;
    }
    Node* parent = node->parent;
    int first = rowOf(node);
    int last = first;
    int taken = 1;
    for (; taken < count && changes[taken].kind == SceneChange::Removed; ++taken) {
        Node* next = nodeOf(changes[taken].object);
        if (!next || next->parent != parent)
            break;
        const int size = int(parent->children.size());
        if (last + 1 < size && parent->children[last + 1].get() == next)
            ++last;
        else if (first > 0 && parent->children[first - 1].get() == next)
            --first;
        else
            break;
    }
    beginRemoveRows(indexOf(parent), first, last);
    const auto begin = parent->children.begin() + first;
    const auto end = parent->children.begin() + last + 1;
    for (auto child = begin; child != end; ++child)
        forget(child->get());
    parent->children.erase(begin, end);
    endRemoveRows();
    return taken;
}

} // namespace vantrel
