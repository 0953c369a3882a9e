#include "common/import/stillimagecandidatemodel.h"

#include "common/media/address/medialogging.h"

#include <cmath>

namespace vantrel {

using images::ImageResultType;
using images::ImagesResult;
using images::StillImage;

void StillImageCandidateModel::setImageResults(const QList<ImagesResult>& results)
{
    if (results == m_results)
        return;
    beginResetModel();
    m_results = results;
    rebuildPlaces();
    endResetModel();
    Q_EMIT imageResultsChanged();
}

void StillImageCandidateModel::rebuildPlaces()
{
    m_places.clear();
    for (qsizetype i = 0; i < m_results.size(); ++i) {
        const ImagesResult& result = m_results.at(i);
        for (qsizetype j = 0; j < result.stillImages().size() && !result.isSequence(); ++j)
            m_places.append({i, j});
    }
}

const StillImage& StillImageCandidateModel::stillAt(int row) const
{
    const Place& place = m_places[row];
    return m_results[place.result].stillImages()[place.still];
}

int StillImageCandidateModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_places.size());
}

QVariant StillImageCandidateModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const ImagesResult& result = m_results[m_places[index.row()].result];
    const StillImage& still = stillAt(index.row());
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

bool StillImageCandidateModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return false;
    const Place place = m_places[index.row()];
    ImagesResult& result = m_results[place.result];
    QList<StillImage> stills = result.stillImages();
    const double seconds = value.toDouble();
    if (role == DurationSecondsRole && std::isfinite(seconds) && seconds > 0) {
        stills[place.still].durationSeconds = seconds;
    } else if (role == HasInfiniteDurationRole && value.canConvert<bool>()) {
        stills[place.still].hasInfiniteDuration = value.toBool();
    } else if (role == ImageTypeRole && value.canConvert<ImageResultType>()) {
        // Its row goes once the results without it are set, when the other list shows it.
        const ImageResultType before = result.type();
        result.setType(value.value<ImageResultType>());
        if (result.type() != before)
            Q_EMIT imageResultTypeChanged(result);
    } else {
        qCWarning(lcMedia) << "Unable to write data" << value << "to role" << role << "for row" << index.row()
                           << "and column" << index.column();
        return false;
    }
    result.setStillImages(stills);
    Q_EMIT dataChanged(index, index);
    return true;
}

bool StillImageCandidateModel::removeRows(int row, int count, const QModelIndex& parent)
{
    if (parent.isValid() || row < 0 || count < 1 || row + count > rowCount())
        return false;
    beginRemoveRows(parent, row, row + count - 1);
    for (int i = row + count - 1; i >= row; --i) {
        ImagesResult& result = m_results[m_places[i].result];
        QList<StillImage> stills = result.stillImages();
        stills.removeAt(m_places[i].still);
        result.setStillImages(stills);
        if (stills.isEmpty())
            m_results.removeAt(m_places[i].result);
    }
    rebuildPlaces();
    endRemoveRows();
    Q_EMIT imageResultsChanged();
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
