#include "common/import/imagesequencecandidatemodel.h"

#include "common/media/address/medialogging.h"
#include "util/clocktime.h"

#include <algorithm>
#include <cmath>

namespace vantrel {

using images::ImageResultType;
using images::ImagesResult;

namespace {

int missingFrames(const ImagesResult& result)
{
    const auto frames = static_cast<qsizetype>(result.getImageSequence().frameCount());
    return static_cast<int>(std::max<qsizetype>(0, frames - result.stillImages().size()));
}

/// Numbers of pictures are ints on their way to the server.
bool readFrame(const QVariant& value, std::size_t& frame)
{
    bool isNumber = false;
    const int number = value.toInt(&isNumber);
    if (!isNumber || number < 0)
        return false;
    frame = static_cast<std::size_t>(number);
    return true;
}

bool readPositive(const QVariant& value, double& number)
{
    bool isNumber = false;
    const double read = value.toDouble(&isNumber);
    if (!isNumber || !std::isfinite(read) || read <= 0)
        return false;
    number = read;
    return true;
}

} // namespace

QString durationToString(double seconds)
{
    return QString::fromStdString(clocktime::format(clocktime::fromSeconds(seconds)));
}

void ImageSequenceCandidateModel::setImageResults(const QList<ImagesResult>& results)
{
    if (results == m_results)
        return;
    beginResetModel();
    m_results = results;
    rebuildImageSequenceCache();
    endResetModel();
    Q_EMIT imageResultsChanged();
}

void ImageSequenceCandidateModel::rebuildImageSequenceCache()
{
    m_cache.clear();
    for (qsizetype i = 0; i < m_results.size(); ++i) {
        if (m_results[i].hasImageSequence())
            m_cache.append(i);
    }
}

int ImageSequenceCandidateModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_cache.size());
}

QVariant ImageSequenceCandidateModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const ImagesResult& result = m_results[m_cache[index.row()]];
    const ImageSequenceCandidate candidate = result.getImageSequence();
    switch (role) {
    case IdRole:
        return candidate.id;
    case NameRole:
    case Qt::DisplayRole:
        return candidate.name;
    case StartFrameRole:
        return static_cast<int>(candidate.startFrame);
    case EndFrameRole:
        return static_cast<int>(candidate.endFrame);
    case FpsRole:
        return candidate.fps;
    case FrameCountRole:
        return static_cast<int>(candidate.frameCount());
    case StillImageCountRole:
        return static_cast<int>(result.stillImages().size());
    case DurationStringRole:
        return durationToString(candidate.duration());
    case StillImageDurationRole:
        return result.stillImages().isEmpty() ? 0.0 : result.stillImages().constFirst().durationSeconds;
    case ImageTypeRole:
        return QVariant::fromValue(result.type());
    case MissingFrameCountRole:
        return missingFrames(result);
    default:
        qCWarning(lcMedia) << "Unable to handle role" << role << "request for row" << index.row()
                           << "and column" << index.column();
        return {};
    }
}

bool ImageSequenceCandidateModel::write(ImagesResult& result, const QVariant& value, int role)
{
    ImageSequenceCandidate candidate = result.getImageSequence();
    bool isTaken = true;
    double seconds = 0;
    switch (role) {
    case IdRole:
        candidate.id = value.toUrl();
        isTaken = candidate.id.isValid();
        break;
    case NameRole:
        candidate.name = value.toString();
        break;
    case StartFrameRole:
        isTaken = readFrame(value, candidate.startFrame);
        break;
    case EndFrameRole:
        isTaken = readFrame(value, candidate.endFrame);
        break;
    case FpsRole:
        isTaken = readPositive(value, candidate.fps);
        break;
    case StillImageDurationRole:
        isTaken = readPositive(value, seconds);
        if (isTaken)
            result.setStillImageDuration(seconds);
        break;
    case ImageTypeRole:
        isTaken = value.canConvert<ImageResultType>();
        if (isTaken)
            result.setType(value.value<ImageResultType>());
        break;
    default:
        return false;
    }
    if (isTaken)
        result.setImageSequence(candidate);
    return isTaken;
}

bool ImageSequenceCandidateModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return false;
    ImagesResult& result = m_results[m_cache[index.row()]];
    const ImageResultType before = result.type();
    if (!write(result, value, role)) {
        qCWarning(lcMedia) << "Unable to write data" << value << "to role" << role << "for row" << index.row()
                           << "and column" << index.column();
        return false;
    }
    Q_EMIT dataChanged(index, index); // of one value others are made
    if (result.type() != before)
        Q_EMIT imageResultTypeChanged(result);
    return true;
}

bool ImageSequenceCandidateModel::removeRows(int row, int count, const QModelIndex& parent)
{
    if (parent.isValid() || row < 0 || count < 1 || row + count > rowCount())
        return false;
    beginRemoveRows(parent, row, row + count - 1);
    for (int i = row + count - 1; i >= row; --i)
        m_results.removeAt(m_cache[i]);
    rebuildImageSequenceCache();
    endRemoveRows();
    Q_EMIT imageResultsChanged();
    return true;
}

QHash<int, QByteArray> ImageSequenceCandidateModel::roleNames() const
{
    return {{NameRole, "name"},
            {StartFrameRole, "startFrame"},
            {EndFrameRole, "endFrame"},
            {FpsRole, "fps"},
            {FrameCountRole, "frameCount"},
            {StillImageCountRole, "stillImageCount"},
            {DurationStringRole, "durationString"},
            {StillImageDurationRole, "stillImageDuration"},
            {ImageTypeRole, "imageType"},
            {MissingFrameCountRole, "missingFrameCount"}};
}

} // namespace vantrel
