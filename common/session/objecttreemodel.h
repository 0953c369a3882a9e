#pragma once

#include "tarn/scene/scene.h"

#include <QAbstractItemModel>
#include <QHash>
#include <QIcon>

#include <memory>
#include <unordered_map>
#include <vector>

namespace vantrel {

/// The whole scene as an item model of one column; the internal pointer of an index is its Object. It keeps its
/// own record of the rows, since a scene reports its changes after it has made them and a model must announce them
/// before. Owned by the session; main thread only.
class ObjectTreeModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Role {
        ObjectRole = 257, // vantrel::Object*
        SceneRole = 258,  // vantrel::Scene*
    };

    explicit ObjectTreeModel(QObject* parent = nullptr);
    ~ObjectTreeModel() override;

    void setScene(Scene* scene);

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex index(Object* object) const;
    /// By path from the root, for example "/device/channels"; invalid, with a warning, when nothing is there.
    QModelIndex index(const QString& path) const;
    /// Whether index(path) would find something; silent.
    bool hasPath(const QString& path) const;
    /// The first descendant of this name.
    QModelIndex index(const QString& name, const QModelIndex& parent) const;
    Object* object(const QModelIndex& index) const;

    QModelIndex parent(const QModelIndex& index) const override;
    using QObject::parent;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    struct Node
    {
        Object* object = nullptr;
        Node* parent = nullptr;
        std::vector<std::unique_ptr<Node>> children;
        mutable int row = 0; // where it stood when last looked up
    };

    static void onSceneChangeStatic(Scene* scene, int count, const SceneChange* changes, void* user);
    void onSceneChange(int count, const SceneChange* changes);
    void onObjectAdded(Object* object);
    int onObjectsRemoved(int count, const SceneChange* changes);
    void rebuild();
    std::unique_ptr<Node> build(Object* object, Node* parent, int row);
    void forget(const Node* node);
    Node* nodeOf(const Object* object) const;
    Node* nodeOf(const QModelIndex& index) const;
    int rowOf(const Node* node) const;
    QModelIndex indexOf(const Node* node) const;
    QString displayName(const Node* node) const;
    QVariant icon(const Object* object) const;

    Ref<Scene> m_scene;
    std::unique_ptr<Node> m_root;
    std::unordered_map<const Object*, Node*> m_nodes;
    mutable QHash<QString, QIcon> m_objectIcons; // by type name
    mutable QHash<QString, QIcon> m_arrayIcons;  // by the type name of the items
};

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::Object*)
Q_DECLARE_METATYPE(vantrel::Scene*)
