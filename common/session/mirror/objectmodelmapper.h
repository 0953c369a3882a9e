#pragma once

#include <QAbstractItemModel>
#include <QList>
#include <QMetaProperty>
#include <QObject>
#include <QPointer>

namespace vantrel {

/// Binds properties of objects to the columns of one row of a model, both ways. The targets and the model are
/// the caller's. Main thread only.
class ObjectModelMapper : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int currentIndex READ currentIndex WRITE setCurrentIndex NOTIFY currentIndexChanged)

public:
    explicit ObjectModelMapper(QAbstractItemModel* model, QObject* parent = nullptr);

    /// Needs a property with a notify signal.
    void addMapping(QObject* object, const QString& property, int column);
    int currentIndex() const { return m_currentIndex; }

public Q_SLOTS:
    void toFirst();
    void toLast();
    void toNext();
    void toPrevious();
    /// A row of the model; any other number is ignored.
    void setCurrentIndex(int index);
    void setCurrentModelIndex(const QModelIndex& index);
    void onPropertyChange();
    void onModelDataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight);

Q_SIGNALS:
    void currentIndexChanged();

private:
    struct PropertyMapping
    {
        QPointer<QObject> object;
        QMetaProperty property;
        int column = 0;
    };
    void updateAllMappings();
    void update(const PropertyMapping& mapping);

    QPointer<QAbstractItemModel> m_model;
    int m_currentIndex = -1;
    QList<PropertyMapping> m_mappings;
    bool m_updating = false; // what the model brings is not written back to it
};

} // namespace vantrel
