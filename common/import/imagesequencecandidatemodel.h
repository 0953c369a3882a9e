#pragma once

#include "common/import/candidatemodel.h"

#include <QHash>
#include <QUrl>

namespace vantrel {

/// "hh:mm:ss.mmm".
QString durationToString(double seconds);

/// The sequences that were found in a drop: a row for each result that holds a candidate, also for one that
/// is to become stills. Main thread only.
class ImageSequenceCandidateModel : public CandidateModel
{
    Q_OBJECT

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

    using CandidateModel::CandidateModel;

    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

protected:
    QList<Place> placesOf(const QList<images::ImagesResult>& results) const override;
    bool write(images::ImagesResult& result, qsizetype still, const QVariant& value, int role) override;

private:
    struct Counted
    {
        std::size_t first = 0;
        std::size_t last = 0;
        qsizetype pictures = -1;
        int missing = 0;
    };

    int missingOf(const images::ImagesResult& result) const;

    mutable QHash<QUrl, Counted> m_counted; // of those that were asked for
};

} // namespace vantrel
