#include "common/import/imagesequencecreator.h"

#include "common/filesystem/model/pathhelpers.h"
#include "common/media/address/medialogging.h"
#include "common/media/edit/mediacollectionmanager.h"
#include "common/media/items/guimediaslot.h"
#include "common/media/net/mediadataaggregator.h"
#include "common/session/session.h"
#include "tarn/media/imgseqanalyzer.h"

#include <algorithm>

namespace vantrel {

namespace {

constexpr double unknownRate = 60; // names tell none; the operator changes it before it is stored

} // namespace

ImageSequenceCreator::ImageSequenceCreator(Session* session, MediaCollectionManager* manager, QObject* parent)
    : QObject(parent)
    , m_session(session)
    , m_manager(manager)
{
}

void ImageSequenceCreator::setFileSystemReader(FileSystemReader* reader)
{
    if (reader == m_reader)
        return;
    m_reader = reader;
    Q_EMIT fileSystemReaderChanged();
}

/// What the analyser asks for, which also asks for what is no directory.
std::vector<std::filesystem::path> ImageSequenceCreator::list(const std::filesystem::path& path) const
{
    if (isMediaFile(QString::fromStdString(path.native())))
        return {};
    const QList<std::filesystem::path> content = m_reader->getFileSystemPaths(path);
    return {content.cbegin(), content.cend()};
}

QList<ImageSequenceCandidate> ImageSequenceCreator::fromPaths(const QList<QString>& paths) const
{
    qCDebug(lcMedia).noquote() << "Trying to fetch image sequences from paths: ["
                               << paths.join(QStringLiteral(", ")) << "]";
    if (!m_reader) {
        qCWarning(lcMedia) << "Failed to requests image sequences from paths since file system reader "
                              "doesn't exist";
        return {};
    }
    std::vector<std::filesystem::path> files;
    files.reserve(static_cast<std::size_t>(paths.size()));
    for (const QString& path : paths)
        files.emplace_back(path.toStdString());
    const auto infos = ImgSeqAnalyzer().findSequences(
        files, [this](const std::filesystem::path& path) { return list(path); });
    const QList<ImageSequenceCandidate> candidates = createCandidates(infos);
    qCDebug(lcMedia) << "Found" << candidates.size() << "image sequence(s):" << candidates << "for path(s)"
                     << paths;
    return candidates;
}

QList<ImageSequenceCandidate>
ImageSequenceCreator::createCandidates(const std::vector<ImageSequenceInfo>& infos) const
{
    QList<ImageSequenceCandidate> candidates;
    candidates.reserve(static_cast<qsizetype>(infos.size()));
    for (const ImageSequenceInfo& info : infos)
        candidates.append({QUrl::fromLocalFile(QString::fromStdString(info.format.toString())),
                           getNameInPath(QString::fromStdString(info.sourceName)), info.firstFrame,
                           info.lastFrame, unknownRate});
    return candidates;
}

bool ImageSequenceCreator::saveCandidates(const QList<ImageSequenceCandidate>& candidates, int collection,
                                          int startingSlot)
{
    if (candidates.isEmpty())
        return true;
    const qint64 last = qint64(startingSlot) + candidates.size() - 1;
    if (!m_manager || startingSlot < 0 || last > m_manager->lastSlotInCollection(collection)) {
        qCWarning(lcMedia) << "No room for" << candidates.size() << "image sequence(s) from slot"
                           << startingSlot << "of collection" << collection;
        return false;
    }
    m_manager->addMedias(collection, startingSlot, slotsOf(candidates, collection, startingSlot));
    fetchMetadata(candidates);
    return true;
}

QList<GuiMediaSlot> ImageSequenceCreator::slotsOf(const QList<ImageSequenceCandidate>& candidates,
                                                  int collection, int startingSlot)
{
    QList<GuiMediaSlot> medias;
    medias.reserve(candidates.size());
    for (const ImageSequenceCandidate& candidate : candidates) {
        const MediaAddress address(collection, startingSlot + static_cast<int>(medias.size()));
        if (medias.size() < mostLogged)
            qCInfo(lcMedia) << "Saving image sequence" << candidate << "to" << collection << ":"
                            << address.slot;
        GuiMediaSlot media;
        media.setAddress(address);
        media.setName(candidate.name);
        media.setContentUrl(candidate.id);
        media.setDuration(candidate.duration());
        media.setFrameRate(candidate.fps);
        media.setFirstFrame(static_cast<int>(candidate.startFrame));
        media.setLastFrame(static_cast<int>(candidate.endFrame));
        medias.append(std::move(media));
    }
    return medias;
}

void ImageSequenceCreator::fetchMetadata(const QList<ImageSequenceCandidate>& candidates) const
{
    MediaDataAggregator* const aggregator = m_session ? m_session->mediaDataAggregator() : nullptr;
    if (!aggregator)
        return;
    for (const ImageSequenceCandidate& candidate : candidates) {
        qCDebug(lcMedia) << "Requesting metadata for image sequence" << candidate.id;
        aggregator->invalidateData(candidate.id, false);
        aggregator->refreshData(candidate.id);
    }
}

} // namespace vantrel
