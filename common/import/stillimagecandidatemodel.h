#pragma once

#include "common/import/imagesresult.h"

#include <QAbstractListModel>
#include <QList>
#include <QVariantMap>

namespace vantrel {

/// The stills that were found in a drop, also those of sequences that are to become stills: a row for each.
/// Main thread only.
class StillImageCandidateModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(QList<vantrel::images::ImagesResult> imageResults READ imageResults WRITE setImageResults
                   NOTIFY imageResultsChanged)

public:
    enum StillImageRoles {
        PathRole = 257,
        NameRole = 258,
        DurationSecondsRole = 259,
        HasInfiniteDurationRole = 260,
        ImageTypeRole = 261, // of the result that it is of
        FileSystemRole = 262,
    };
    Q_ENUM(StillImageRoles)

    using QAbstractListModel::QAbstractListModel;

    const QList<images::ImagesResult>& imageResults() const { return m_results; }
    void setImageResults(const QList<images::ImagesResult>& results);

    /// "name", "durationSeconds", "imageType" and "filePath"; empty for a row that there is not.
    Q_INVOKABLE QVariantMap get(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    bool removeRows(int row, int count, const QModelIndex& parent = {}) override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void imageResultsChanged();
    void imageResultTypeChanged(vantrel::images::ImagesResult result);

private:
    struct Place
    {
        qsizetype result = 0;
        qsizetype still = 0;
    };
    void rebuildPlaces();
    const images::StillImage& stillAt(int row) const;

    QList<images::ImagesResult> m_results;
    QList<Place> m_places; // of each row
};

} // namespace vantrel
