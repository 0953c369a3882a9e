#include "common/import/stillimagecandidatemodel.h"

#include "common/media/address/medialogging.h"

#include <cmath>

namespace vantrel {

using images::ImageResultType;
using images::ImagesResult;
using images::StillImage;

QList<CandidateModel::Place> StillImageCandidateModel::placesOf(const QList<ImagesResult>& results) const
{
    QList<Place> places;
    for (qsizetype i = 0; i < results.size(); ++i) {
        for (qsizetype j = 0; j < results[i].stillImages().size() && !results[i].isSequence(); ++j)
            places.append(Place{i, j});
    }
    return places;
}

QVariant StillImageCandidateModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const ImagesResult& result = resultAt(index.row());
    const StillImage& still = result.stillImages()[placeAt(index.row()).still];
    switch (role) {
    case PathRole:
        return still.filePath;
    case NameRole:
    case Qt::DisplayRole:
        return still.name();
    case DurationSecondsRole:
        return still.durationSeconds;
    case HasInfiniteDurationRole:
        return still.hasInfiniteDuration;
    case ImageTypeRole:
        return QVariant::fromValue(result.type());
    case FileSystemRole:
        return QVariant::fromValue(result.fileSystem());
    default:
        qCWarning(lcMedia) << "Unable to handle role" << role << "request for row" << index.row()
                           << "and column" << index.column();
        return {};
    }
}

bool StillImageCandidateModel::write(ImagesResult& result, qsizetype still, const QVariant& value, int role)
{
    StillImage changed = result.stillImages()[still];
    const double seconds = value.toDouble();
    if (role == DurationSecondsRole && std::isfinite(seconds) && seconds > 0) {
        changed.durationSeconds = seconds;
    } else if (role == HasInfiniteDurationRole && value.canConvert<bool>()) {
        changed.hasInfiniteDuration = value.toBool();
    } else if (role == ImageTypeRole && value.canConvert<ImageResultType>()) {
        // Its row goes once the results without it are set, when the other list shows it.
        result.setType(value.value<ImageResultType>());
        return true;
    } else {
        return false;
    }
    result.setStillImage(still, changed);
    return true;
}

QVariantMap StillImageCandidateModel::get(int row) const
{
    if (row < 0 || row >= rowCount())
        return {};
    const QModelIndex at = index(row);
    return {{QStringLiteral("name"), data(at, NameRole)},
            {QStringLiteral("durationSeconds"), data(at, DurationSecondsRole)},
            {QStringLiteral("imageType"), data(at, ImageTypeRole)},
            {QStringLiteral("filePath"), data(at, PathRole)}};
}

QHash<int, QByteArray> StillImageCandidateModel::roleNames() const
{
    return {{PathRole, "path"},
            {NameRole, "name"},
            {DurationSecondsRole, "durationSeconds"},
            {HasInfiniteDurationRole, "hasInfiniteDuration"},
            {ImageTypeRole, "imageType"},
            {FileSystemRole, "fileSystem"}};
}

} // namespace vantrel
