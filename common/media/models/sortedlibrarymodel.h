#pragma once

#include <QSortFilterProxyModel>

namespace vantrel {

class MediaLibraryModel;

/// MediaLibraryModel as views show it: without what has the number 0.
class SortedLibraryModel : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit SortedLibraryModel(MediaLibraryModel* model, QObject* parent = nullptr);

    /// Always true: views show an empty collection too.
    Q_INVOKABLE bool hasMedias(const QModelIndex& index) const;

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override;
};

} // namespace vantrel
