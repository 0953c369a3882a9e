#pragma once

#include <QAbstractTableModel>
#include <QPointer>

#include <memory>

namespace vantrel {

class AbstractMediaLibraryProvider;
class GuiMediaCollection;

/// The collections of the library in a table of number and name, by number. Follows the provider row by row;
/// main thread only.
class CollectionModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    explicit CollectionModel(AbstractMediaLibraryProvider* provider, QObject* parent = nullptr);
    ~CollectionModel() override;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    /// Null for an invalid index.
    std::shared_ptr<const GuiMediaCollection> getCollection(const QModelIndex& index) const;
    /// -1 when absent.
    int getRowForCollectionIndex(uint collectionIndex) const;
    QModelIndex getLeftmostIndex(int row) const;
    QModelIndex getRightmostIndex(int row) const;

public Q_SLOTS:
    virtual void reset();
    void onCollectionChanged(uint collectionIndex);
    void onCollectionInserted(uint collectionIndex);
    void onCollectionRemoved(uint collectionIndex);

private:
    int lowerBound(uint collectionIndex) const;

    QPointer<AbstractMediaLibraryProvider> m_provider;
    QList<std::shared_ptr<const GuiMediaCollection>> m_collections;
};

} // namespace vantrel
