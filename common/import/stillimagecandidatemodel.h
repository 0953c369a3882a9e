#pragma once

#include "common/import/candidatemodel.h"

#include <QVariantMap>

namespace vantrel {

/// The stills that were found in a drop, also those of sequences that are to become stills: a row for each.
/// Main thread only.
class StillImageCandidateModel : public CandidateModel
{
    Q_OBJECT

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

    using CandidateModel::CandidateModel;

    /// "name", "durationSeconds", "imageType" and "filePath"; empty for a row that there is not.
    Q_INVOKABLE QVariantMap get(int row) const;

    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

protected:
    QList<Place> placesOf(const QList<images::ImagesResult>& results) const override;
    bool write(images::ImagesResult& result, qsizetype still, const QVariant& value, int role) override;
};

} // namespace vantrel
