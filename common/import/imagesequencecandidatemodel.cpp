#include "common/import/imagesequencecandidatemodel.h"

#include "common/media/address/medialogging.h"
#include "tarn/media/imagesequenceformat.h"
#include "util/clocktime.h"

#include <algorithm>
#include <cmath>

namespace vantrel {

using images::ImageResultType;
using images::ImagesResult;

namespace {

int missingFrames(const ImagesResult& result)
{
    const ImageSequenceCandidate candidate = result.getImageSequence();
    const auto all = static_cast<int>(result.stillImages().size());
    const auto& found = result.foundSequence();
    if (found && candidate.startFrame <= found->startFrame && candidate.endFrame >= found->endFrame)
        return static_cast<int>(candidate.frameCount()) - all;
    const auto format = ImageSequenceFormat::parse(candidate.id.toLocalFile().toStdString());
    if (!format)
        return 0;
    const auto prefix = static_cast<qsizetype>(QString::fromStdString(format->prefix()).size());
    const auto suffix = static_cast<qsizetype>(QString::fromStdString(format->suffix()).size());
    const auto isShown = [&](const images::StillImage& picture) {
        const QStringView path(picture.filePath);
        const qulonglong number = path.mid(prefix, path.size() - prefix - suffix).toULongLong();
        return number >= candidate.startFrame && number <= candidate.endFrame;
    };
    const auto there = std::ranges::count_if(result.stillImages(), isShown);
    return static_cast<int>(candidate.frameCount()) - static_cast<int>(there);
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

QList<CandidateModel::Place> ImageSequenceCandidateModel::placesOf(const QList<ImagesResult>& results) const
{
    QList<Place> places;
    for (qsizetype i = 0; i < results.size(); ++i) {
        if (results[i].hasImageSequence())
            places.append(Place{i});
    }
    return places;
}

QVariant ImageSequenceCandidateModel::data(const QModelIndex& index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const ImagesResult& result = resultAt(index.row());
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
        return missingOf(result);
    default:
        qCWarning(lcMedia) << "Unable to handle role" << role << "request for row" << index.row()
                           << "and column" << index.column();
        return {};
    }
}

/// Counted once for each range: a row is read many times, and a million pictures take their time.
int ImageSequenceCandidateModel::missingOf(const ImagesResult& result) const
{
    const ImageSequenceCandidate candidate = result.getImageSequence();
    Counted& counted = m_counted[candidate.id];
    const qsizetype pictures = result.stillImages().size();
    if (counted.pictures != pictures || counted.first != candidate.startFrame ||
        counted.last != candidate.endFrame)
        counted = {candidate.startFrame, candidate.endFrame, pictures, missingFrames(result)};
    return counted.missing;
}

bool ImageSequenceCandidateModel::write(ImagesResult& result, qsizetype, const QVariant& value, int role)
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
