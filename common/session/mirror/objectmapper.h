#pragma once

#include <QAbstractItemModel>
#include <QList>
#include <QObject>
#include <QPersistentModelIndex>
#include <QPointer>

#include <limits>

namespace vantrel {

/// Keeps one object for each row below an index of a model, or only tells of the rows when no object type is
/// set. The objects are made through their Q_INVOKABLE constructor and owned by the mapper. Main thread only.
class ObjectMapper : public QObject
{
    Q_OBJECT

public:
    struct MappedObject
    {
        QPersistentModelIndex index;
        QObject* object = nullptr;
    };

    explicit ObjectMapper(QObject* parent = nullptr);
    ~ObjectMapper() override;

    void setObjectType(const QMetaObject* type) { m_objectType = type; }
    const QMetaObject* objectType() const { return m_objectType; }
    /// Tells of the removal of all rows mapped so far, then of each row below root.
    void setModel(const QAbstractItemModel* model, const QModelIndex& root);
    void setModel(const QModelIndex& root);
    void setRoot(const QModelIndex& root);
    /// Rows beyond so many objects get none, whatever a server tells of.
    void setMost(int objects) { m_most = objects; }
    /// Those that are mapped are the listener's no more, before their rows go: the model would look after the
    /// places of all of them with each row. Objects made here are not to be among them.
    void forget() { m_mapped.clear(); }
    QModelIndex root() const { return m_root; }
    const QAbstractItemModel* model() const { return m_model; }
    const QList<MappedObject>& mapped() const { return m_mapped; }

Q_SIGNALS:
    /// object is null when no object type is set.
    void objectAdded(QObject* object, QModelIndex idx);
    void objectRemoved(QObject* object, QModelIndex idx);

protected:
    virtual bool initialized() const;
    virtual QObject* createInstance();
    virtual void postPopulateHook(MappedObject& mapped);
    virtual void objectRemovedHook(const MappedObject& mapped);
    /// Ends an object whose row is gone.
    virtual void release(QObject* object);

    void populate();

private:
    void populate(const QModelIndex& index);
    void depopulate();
    void depopulate(int first, int last);
    void drop(const MappedObject& mapped);
    bool concerns(const QModelIndex& parent) const;
    void onModelReset();
    void onRowsInserted(const QModelIndex& parent, int first, int last);
    void onRowsAboutToBeRemoved(const QModelIndex& parent, int first, int last);

    const QMetaObject* m_objectType = nullptr;
    QPersistentModelIndex m_root;
    int m_most = std::numeric_limits<int>::max();
    bool m_hasRoot = false; // a root that went with its model's rows does not become the model's top
    QPointer<const QAbstractItemModel> m_model;
    QList<MappedObject> m_mapped;
};

} // namespace vantrel
