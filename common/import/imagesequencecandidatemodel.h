#pragma once

#include "common/import/imagesresult.h"

#include <QAbstractListModel>
#include <QList>

namespace vantrel {

/// "hh:mm:ss.mmm".
QString durationToString(double seconds);

/// The sequences that were found in a drop, which the operator looks at and corrects: a row for each result
/// that holds a candidate, also for one that is to become stills. Main thread only.
class ImageSequenceCandidateModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(QList<vantrel::images::ImagesResult> imageResults READ imageResults WRITE setImageResults
                   NOTIFY imageResultsChanged)

public:
    enum ImageSequenceRoles {
        IdRole = 257,
        NameRole = 258,
        StartFrameRole = 259,
        EndFrameRole = 260,
        FpsRole = 261,
        FrameCountRole = 262,
        StillImageCountRole = 263,
        DurationStringRole = 264,
        StillImageDurationRole = 265, // seconds
        ImageTypeRole = 266,
        MissingFrameCountRole = 267, // each is shown as the picture before it
    };
    Q_ENUM(ImageSequenceRoles)

    using QAbstractListModel::QAbstractListModel;

    const QList<images::ImagesResult>& imageResults() const { return m_results; }
    void setImageResults(const QList<images::ImagesResult>& results);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    bool removeRows(int row, int count, const QModelIndex& parent = {}) override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void imageResultsChanged();
    void imageResultTypeChanged(vantrel::images::ImagesResult result);

private:
    void rebuildImageSequenceCache();
    bool write(images::ImagesResult& result, const QVariant& value, int role);

    QList<images::ImagesResult> m_results;
    QList<qsizetype> m_cache; // which of the results has a candidate
};

} // namespace vantrel
