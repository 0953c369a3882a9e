#pragma once

#include "tarn/scene/scene.h"
#include "tarn/scene/scenestructureobserver.h"

#include <QAbstractItemModel>
#include <QHash>
#include <QIcon>

namespace vantrel {

/// The whole scene as an item model of one column; the internal pointer of an index is its Object, and the
/// invalid index stands for the root. Owned by the session; main thread only.
class ObjectTreeModel : public QAbstractItemModel, private SceneStructureObserver
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
    void rowAboutToBeInserted(Object* parent, int row) override;
    void rowInserted(Object* parent, int row) override;
    void rowAboutToBeRemoved(Object* parent, int row) override;
    void rowRemoved(Object* parent, int row) override;

    void renumberFrom(Object* parent, int row);
    /// Whether rows of this parent can be told of: it is the root or has an index.
    bool isShown(const Object* parent) const;
    /// The object that an index stands for; the root for the invalid one, null without a scene.
    Object* nodeOf(const QModelIndex& index) const;
    static QString displayName(const Object* object);
    QVariant icon(const Object* object) const;

    Ref<Scene> m_scene;
    bool m_changingRows = false;                 // between the two halves of an announced change
    mutable QHash<QString, QIcon> m_objectIcons; // by type name
    mutable QHash<QString, QIcon> m_arrayIcons;  // by the type name of the items
};

} // namespace vantrel

Q_DECLARE_METATYPE(vantrel::Object*)
Q_DECLARE_METATYPE(vantrel::Scene*)
